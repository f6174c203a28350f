// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "externaltool.h"

#include "toolcage.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <limits>
#include <memory>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int leastSeconds = 30;
constexpr int patienceFactor = 4; // with a tool that keeps writing, but slowly
constexpr int wholeFileMs = 12 * 60 * 60 * 1000;
constexpr int sliceMs = 50; // how long a thread may take to notice that it is asked to stop
constexpr qsizetype maxMessageBytes = 65536;

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

/// One tool at work. What it writes is taken as it comes, and no more of it than is allowed, because QProcess by itself
/// would hold all of it.
class RunningTool final {
public:
    explicit RunningTool(const ToolRun &run);
    ~RunningTool();
    Q_DISABLE_COPY_MOVE(RunningTool)

    tl::expected<QByteArray, ToolFailure> waitForOutput();

private:
    void takeOutput();
    void takeMessages();
    bool hasHung() const;
    void judge();
    ToolFailure refusal() const;

    const ToolRun &m_run;
    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>();
    ToolCage m_cage { *m_process };
    QByteArray m_output;
    QByteArray m_messages;
    QDeadlineTimer m_pause; ///< how long it may be silent
    QDeadlineTimer m_end;
    QString m_verdict; ///< why it was killed; empty = it was not
    bool m_isUnderstood = true;
    bool m_hasTimedOut = false;
};

RunningTool::RunningTool(const ToolRun &run)
    : m_run(run)
{
    m_output.reserve(run.expectedBytes);
    if (run.take && run.messages == nullptr)
        m_process->setProcessChannelMode(QProcess::MergedChannels);
#ifdef Q_OS_WIN
    constexpr unsigned long belowNormal = 0x4000; // BELOW_NORMAL_PRIORITY_CLASS
    if (run.isLowPriority)
        m_process->setCreateProcessArgumentsModifier(
            [](QProcess::CreateProcessArguments *arguments) { arguments->flags |= belowNormal; });
#endif
    QObject::connect(m_process.get(), &QProcess::readyReadStandardOutput, [this] { takeOutput(); });
    QObject::connect(m_process.get(), &QProcess::readyReadStandardError, [this] { takeMessages(); });
}

// One that cannot be killed, because it waits in the system for a drive that is gone, is left to itself together with
// its object, whose destructor would wait for it.
RunningTool::~RunningTool()
{
    m_process->disconnect();
    if (!isRunning(*m_process))
        return;
    m_cage.kill();
    m_process->kill();
    if (!m_process->waitForFinished(0))
        static_cast<void>(m_process.release());
}

tl::expected<QByteArray, ToolFailure> RunningTool::waitForOutput()
{
    m_process->start(m_run.program, m_run.arguments, QIODevice::ReadOnly);
    if (!m_process->waitForStarted(m_run.timeouts.startMs))
        return tl::unexpected(ToolFailure { u"could not start %1"_s.arg(m_run.name), {}, false });
    m_cage.close(*m_process);
    m_pause.setRemainingTime(m_run.timeouts.waitMs);
    m_end.setRemainingTime(m_run.writesAllTheTime ? m_run.timeouts.runMs : m_run.timeouts.waitMs);
    while (isRunning(*m_process) && m_verdict.isEmpty()) {
        m_process->waitForFinished(sliceMs);
        judge();
    }
    if (!m_verdict.isEmpty())
        m_process->waitForFinished(m_run.timeouts.killMs);
    takeOutput();
    if (!m_run.take || m_run.messages != nullptr) // take() gets the messages as well
        takeMessages();
    if (m_run.messages != nullptr)
        *m_run.messages = m_messages;
    const bool isDone = m_process->exitStatus() == QProcess::NormalExit && m_process->exitCode() == 0;
    if (m_verdict.isEmpty() && isDone)
        return m_output;
    return tl::unexpected(refusal());
}

void RunningTool::takeOutput()
{
    m_output += m_process->readAllStandardOutput();
    m_pause.setRemainingTime(m_run.timeouts.waitMs);
    if (m_run.take && m_verdict.isEmpty()) {
        const qsizetype unread = m_output.size();
        m_isUnderstood = m_run.take(m_output);
        if (m_output.size() < unread)
            m_end.setRemainingTime(m_run.timeouts.waitMs);
    }
    judge();
}

void RunningTool::takeMessages()
{
    const QByteArray piece = m_process->readAllStandardError();
    m_messages += piece.first(std::min(piece.size(), maxMessageBytes - m_messages.size()));
    judge();
}

bool RunningTool::hasHung() const
{
    return m_end.hasExpired() || (m_run.writesAllTheTime && m_pause.hasExpired())
        || (m_run.leaveOff && m_run.leaveOff->load()) || QThread::currentThread()->isInterruptionRequested();
}

// Also asked whenever something was written: while a tool writes without end, QProcess never ceases to wait.
void RunningTool::judge()
{
    if (!m_verdict.isEmpty())
        return;
    if (m_output.size() > m_run.maxBytes)
        m_verdict = u"%1 printed too much"_s;
    else if (!m_isUnderstood)
        m_verdict = u"%1 printed something else"_s;
    else if (isRunning(*m_process) && hasHung())
        m_verdict = u"%1 timed out"_s;
    if (!m_verdict.isEmpty()) {
        m_hasTimedOut = m_end.hasExpired();
        m_cage.kill();
        m_process->kill();
    }
}

ToolFailure RunningTool::refusal() const
{
    if (!m_verdict.isEmpty())
        return { m_verdict.arg(m_run.name), m_output, m_output.size() > m_run.maxBytes, m_hasTimedOut };
    const QByteArray complaint = m_messages.trimmed();
    return { complaint.isEmpty() ? u"%1 failed (exit %2)"_s.arg(m_run.name).arg(m_process->exitCode())
                                 : QString::fromLocal8Bit(complaint),
             m_output, true };
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
    const auto clamped = [](qint64 ms) {
        return static_cast<int>(std::min<qint64>(ms, std::numeric_limits<int>::max()));
    };
    const qint64 waitMs = qint64(std::max(seconds, leastSeconds)) * 1000;
    ToolTimeouts timeouts;
    timeouts.waitMs = clamped(waitMs);
    timeouts.runMs = seconds < 1 ? wholeFileMs : clamped(waitMs * patienceFactor);
    return timeouts;
}

tl::expected<QByteArray, ToolFailure> runTool(const ToolRun &run)
{
    return RunningTool(run).waitForOutput();
}

} // namespace epr
