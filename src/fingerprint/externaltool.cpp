// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "externaltool.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <limits>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int leastSeconds = 30;
constexpr qint64 sliceMs = 200; // how long a thread may take to notice that it is asked to stop

// Folders are executable too, and one with a tool's name may well lie beside the program.
bool isTool(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

bool isRunning(const QProcess &process)
{
    return process.state() != QProcess::NotRunning;
}

// In slices, so that a pool that is being destroyed does not sit out a tool that hangs.
bool waitFor(QProcess &process, bool (QProcess::*event)(int), int waitMs)
{
    const QDeadlineTimer deadline(waitMs);
    while (isRunning(process)) {
        const qint64 slice = std::min(deadline.remainingTime(), sliceMs);
        if ((process.*event)(static_cast<int>(slice)))
            return true;
        if (deadline.hasExpired() || QThread::currentThread()->isInterruptionRequested())
            return false;
    }
    return false;
}

/// Adds to output what the tool writes until it ends. False if it hung and had to be killed.
bool readToEnd(QProcess &process, const ToolRun &run, QByteArray &output)
{
    const auto event = run.writesAllTheTime ? &QProcess::waitForReadyRead : &QProcess::waitForFinished;
    while (isRunning(process)) {
        if (waitFor(process, event, run.timeouts.waitMs)) {
            output += process.readAllStandardOutput();
        } else if (isRunning(process)) {
            process.kill();
            process.waitForFinished(run.timeouts.killMs);
            return false;
        }
    }
    output += process.readAllStandardOutput();
    return true;
}

} // namespace

QString findTool(const char *variable, const QStringList &candidates, const QString &name)
{
    QString chosen = qEnvironmentVariable(variable);
    if (!chosen.isEmpty() && isTool(chosen))
        return chosen;
    for (const QString &candidate : candidates) {
        QString path = QCoreApplication::applicationDirPath() + u'/' + candidate;
        if (isTool(path))
            return path;
    }
    return QStandardPaths::findExecutable(name);
}

ToolPath::ToolPath(QString (*find)())
    : m_find(find)
{
}

QString ToolPath::get()
{
    const QMutexLocker lock(&m_mutex);
    if (!m_resolved) {
        m_path = m_find();
        m_resolved = true;
    }
    return m_path;
}

ToolTimeouts toolTimeouts(int seconds)
{
    const qint64 waitMs = qint64(std::max(seconds, leastSeconds)) * 1000;
    ToolTimeouts timeouts;
    timeouts.waitMs = static_cast<int>(std::min<qint64>(waitMs, std::numeric_limits<int>::max()));
    return timeouts;
}

Result<QByteArray> runTool(const ToolRun &run)
{
    QProcess process;
    process.start(run.program, run.arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted(run.timeouts.startMs))
        return failure(u"could not start %1"_s.arg(run.name));
    QByteArray output;
    output.reserve(run.expectedBytes);
    if (!readToEnd(process, run, output))
        return failure(u"%1 timed out"_s.arg(run.name));
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return output;
    const QByteArray complaint = process.readAllStandardError().trimmed();
    return failure(complaint.isEmpty() ? u"%1 failed (exit %2)"_s.arg(run.name).arg(process.exitCode())
                                       : QString::fromLocal8Bit(complaint));
}

} // namespace epr
