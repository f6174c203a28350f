// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "externaltool.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace epr {

namespace {

constexpr int leastSeconds = 30;
constexpr qint64 sliceMs = 200; // how long a thread may take to notice that it is asked to stop

// Folders are executable too, and one with a tool's name may well lie beside the program.
bool isTool(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
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

ToolProcess::ToolProcess(const QString &name, const ToolTimeouts &timeouts)
    : m_name(name)
    , m_timeouts(timeouts)
{
}

bool ToolProcess::start(const QString &program, const QStringList &arguments)
{
    m_process.start(program, arguments, QIODevice::ReadOnly);
    if (m_process.waitForStarted(m_timeouts.startMs))
        return true;
    m_error = u"could not start %1"_s.arg(m_name);
    return false;
}

bool ToolProcess::finish(QByteArray &output)
{
    while (running()) {
        if (!waitFor(&QProcess::waitForFinished) && running())
            return giveUp();
    }
    output += m_process.readAllStandardOutput();
    return true;
}

bool ToolProcess::readUntilFinished(QByteArray &output)
{
    while (running()) {
        if (waitFor(&QProcess::waitForReadyRead))
            output += m_process.readAllStandardOutput();
        else if (running())
            return giveUp();
    }
    output += m_process.readAllStandardOutput();
    return true;
}

bool ToolProcess::succeeded()
{
    if (m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0)
        return true;
    m_error = QString::fromLocal8Bit(m_process.readAllStandardError().trimmed());
    if (m_error.isEmpty())
        m_error = u"%1 failed (exit %2)"_s.arg(m_name).arg(m_process.exitCode());
    return false;
}

// In slices, so that a pool that is being destroyed does not sit out a tool that hangs.
bool ToolProcess::waitFor(bool (QProcess::*event)(int))
{
    const QDeadlineTimer deadline(m_timeouts.waitMs);
    while (running()) {
        const qint64 slice = std::min(deadline.remainingTime(), sliceMs);
        if ((m_process.*event)(static_cast<int>(slice)))
            return true;
        if (deadline.hasExpired() || QThread::currentThread()->isInterruptionRequested())
            return false;
    }
    return false;
}

bool ToolProcess::giveUp()
{
    m_process.kill();
    m_process.waitForFinished(m_timeouts.killMs);
    m_error = u"%1 timed out"_s.arg(m_name);
    return false;
}

} // namespace epr
