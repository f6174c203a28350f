// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "backgroundwork.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>

#include <memory>

namespace epr {

BackgroundJob::BackgroundJob(const std::function<void()> &work)
    : m_thread([this, work] {
        work();
        m_isDone = true;
        // By name, not as a function object: that would be ours, and handed over by a lock that ThreadSanitizer does
        // not see.
        QMetaObject::invokeMethod(&m_loop, "quit", Qt::QueuedConnection);
    })
{
}

bool BackgroundJob::wait(QEventLoop::ProcessEventsFlags events, std::optional<std::chrono::milliseconds> atMost)
{
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
    if (atMost)
        timer.start(*atMost);
    if (!m_isDone)
        m_loop.exec(events);
    return m_isDone;
}

void BackgroundJob::finish()
{
    if (m_thread.joinable())
        m_thread.join();
}

namespace {

class WorkerThread final : public QThread {
public:
    WorkerThread(QObject *worker, QObject *parent)
        : QThread(parent)
        , m_worker(worker)
    {
    }

    /// Whoever asks after waiting has before it all that the thread did, by the rules of the language. Qt's own wait
    /// orders the two by a lock inside Qt, which ThreadSanitizer does not see.
    bool hasRun() const { return m_hasRun.load(std::memory_order_acquire); }

protected:
    void run() override
    {
        exec();
        m_worker.reset();
        m_hasRun.store(true, std::memory_order_release);
    }

private:
    std::unique_ptr<QObject> m_worker;
    std::atomic<bool> m_hasRun = false;
};

} // namespace

QThread *createWorkerThread(const QString &name, QObject *worker, QObject *parent)
{
    auto *thread = new WorkerThread(worker, parent);
    thread->setObjectName(name);
    worker->moveToThread(thread);
    return thread;
}

QTimer *createSoonTimer(QObject *owner, const std::function<void()> &call)
{
    auto *timer = new QTimer(owner);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, owner, call);
    return timer;
}

bool waitOrLeave(QThread *thread, std::chrono::milliseconds atMost)
{
    if (thread->wait(QDeadlineTimer(atMost))) {
        if (const auto *worker = dynamic_cast<const WorkerThread *>(thread))
            static_cast<void>(worker->hasRun());
        return true;
    }
    thread->setParent(nullptr);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    return false;
}

} // namespace epr
