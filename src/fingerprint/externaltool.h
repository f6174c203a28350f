// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QMutex>
#include <QStringList>

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
};

/// The waits for a tool that is asked for so many seconds of audio; fewer than 30 count as 30.
ToolTimeouts toolTimeouts(int seconds);

struct ToolRun {
    QString name; ///< for messages
    QString program;
    QStringList arguments;
    ToolTimeouts timeouts;
    bool writesAllTheTime = false; ///< only a pause in its output that is too long counts as a hang then
    qsizetype expectedBytes = 0; ///< of output, to make room for
};

/// Runs a tool on the calling thread, which needs no event loop: what it wrote to its standard output, or why there is
/// nothing to be had. A thread that is asked to interrupt kills its tool as if it had timed out.
Result<QByteArray> runTool(const ToolRun &run);

} // namespace epr
