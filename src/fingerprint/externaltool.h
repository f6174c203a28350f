// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMutex>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace epr {

/// The file that the environment variable names, or the first of the candidates, names relative to the program's
/// folder, or what the search path has under the plain name. Only an executable file counts; empty when there is none.
[[nodiscard]] QString findTool(const char *variable, const QStringList &candidates, const QString &name);

/// A tool's path, looked for once in the life of the process. Safe to use from any thread.
class ToolPath final {
public:
    explicit ToolPath(QString (*find)());

    [[nodiscard]] QString get();

private:
    QMutex m_mutex;
    QString (*m_find)();
    QString m_path;
    bool m_resolved = false;
};

struct ToolTimeouts {
    int startMs = 5000;
    int waitMs = 30000; ///< for the result, or for the next piece of it
    int killMs = 2000; ///< what a killed tool is given to go
};

/// The waits for a tool that is asked for so many seconds of audio; fewer than 30 count as 30.
[[nodiscard]] ToolTimeouts toolTimeouts(int seconds);

/// One run of an external tool on the calling thread, which needs no event loop. Every step returns whether to go on;
/// when not, error() says why. A thread that is asked to interrupt kills its tool as if it had timed out.
class ToolProcess final {
public:
    ToolProcess(const QString &name, const ToolTimeouts &timeouts);

    [[nodiscard]] QString error() const { return m_error; }

    [[nodiscard]] bool start(const QString &program, const QStringList &arguments);

    /// Waits for the end and appends everything the tool wrote to output.
    [[nodiscard]] bool finish(QByteArray &output);

    /// The same for a tool that writes all the time: only a pause in its output that is too long counts as a hang.
    [[nodiscard]] bool readUntilFinished(QByteArray &output);

    /// Whether the tool, once finished, says that all went well.
    [[nodiscard]] bool succeeded();

private:
    [[nodiscard]] bool running() const { return m_process.state() != QProcess::NotRunning; }
    bool waitFor(bool (QProcess::*event)(int));
    bool giveUp();

    QString m_name;
    ToolTimeouts m_timeouts;
    QString m_error;
    QProcess m_process;
};

} // namespace epr
