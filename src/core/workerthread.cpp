// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "workerthread.h"

#include <QDeadlineTimer>
#include <QThread>

namespace epr {

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
