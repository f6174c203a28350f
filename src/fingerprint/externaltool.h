// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMutex>
#include <QStringList>
#include <tl/expected.hpp>

#include <atomic>
#include <functional>

namespace epr {

/// The file that the environment variable names, or the first of the candidates, names relative to the program's
/// folder, or what the search path has under the plain name. Only an executable file counts; empty when there is none.
QString findTool(const char *variable, const QStringList &candidates, const QString &name);

/// A tool's path, looked for once in the life of the process. Safe to use from any thread.
class ToolPath final {
public:
    explicit ToolPath(QString (*find)());

    QString get();

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
    int runMs = 120000; ///< for all the pieces
};

/// The waits for a tool that is asked for so many seconds of audio; fewer than 30 count as 30. All of a file, which is
/// what 0 seconds ask for, may take half a day.
ToolTimeouts toolTimeouts(int seconds);

struct ToolRun {
    QString name; ///< for messages
    QString program;
    QStringList arguments;
    ToolTimeouts timeouts;
    qint64 maxBytes = 0; ///< of output; a tool that writes more is ended
    bool writesAllTheTime = false; ///< a pause in its output that is too long counts as a hang then
    qsizetype expectedBytes = 0; ///< of output, to make room for
    const std::atomic<bool> *leaveOff = nullptr; ///< once true, the tool is killed as if it had timed out
    /// For a tool that writes results one by one: gets what it wrote, messages in their place between, as it comes, and
    /// takes away the results in it. Each result has waitMs and maxBytes to itself. False ends the tool.
    std::function<bool(QByteArray &unread)> take = {};
    QByteArray *messages = nullptr; ///< gets them, 64 KiB at most, and take() none of them
    bool isLowPriority = false; ///< on Windows; elsewhere a tool has the priority of the thread that starts it
};

/// Why a tool gave nothing.
struct ToolFailure {
    QString text;
    QByteArray output; ///< what it wrote all the same
    bool hasRefused = false; ///< it has had its chance with this file, unlike one that did not start or come to an end
    bool hasTimedOut = false; ///< and was not merely told to leave off
};

/// Runs a tool on the calling thread, which needs no event loop: what it wrote to its standard output, or why there is
/// nothing to be had. Whatever the tool does, it comes to an end, with all that it has started. A thread that is asked
/// to interrupt kills its tool as if it had timed out.
[[nodiscard]] tl::expected<QByteArray, ToolFailure> runTool(const ToolRun &run);

} // namespace epr
