// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEventLoop>

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <thread>

class QThread;
class QTimer;

namespace epr {

/// A function at work on a thread of its own, while the thread that began it handles events.
class BackgroundJob final {
public:
    explicit BackgroundJob(const std::function<void()> &work);
    ~BackgroundJob() { finish(); }
    Q_DISABLE_COPY_MOVE(BackgroundJob)

    /// Handles events until the work is done, the time is over, or the program is told to end. True if it is done.
    bool wait(QEventLoop::ProcessEventsFlags events, std::optional<std::chrono::milliseconds> atMost = {});

    /// Blocks until the work is done.
    void finish();

private:
    QEventLoop m_loop;
    std::atomic<bool> m_isDone = false;
    std::thread m_thread; // after what it uses
};

/// A thread with an event loop for one worker, which must have no parent: it is moved there, and deleted there when the
/// loop has ended. The caller starts the thread, and ends it by quit() and waitOrLeave().
[[nodiscard]] QThread *createWorkerThread(const QString &name, QObject *worker, QObject *parent);

/// Started any number of times, it calls once, when control is back at the event loop: for work that is too much for
/// each of a thousand signals in a row.
[[nodiscard]] QTimer *createSoonTimer(QObject *owner, const std::function<void()> &call);

/// Waits for a thread that has been told to quit, of createWorkerThread() or another of Qt's. One that does not end in
/// time, stuck in the system on a network drive that is gone, say, is taken from its parent and left to itself:
/// destroying a running thread would end the program. False if so.
bool waitOrLeave(QThread *thread, std::chrono::milliseconds atMost = std::chrono::seconds(5));

} // namespace epr
