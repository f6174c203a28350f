// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "backgroundwork.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>

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

QThread *createWorkerThread(const QString &name, QObject *worker, QObject *parent)
{
    auto *thread = new QThread(parent);
    thread->setObjectName(name);
    worker->moveToThread(thread);
    QObject::connect(thread, &QThread::finished, worker, &QObject::deleteLater);
    return thread;
}

bool waitOrLeave(QThread *thread, std::chrono::milliseconds atMost)
{
    if (thread->wait(QDeadlineTimer(atMost)))
        return true;
    thread->setParent(nullptr);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    return false;
}

} // namespace epr
