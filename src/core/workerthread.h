// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

class QObject;
class QString;
class QThread;

namespace epr {

/// A thread with an event loop for one worker, which must have no parent: it is moved there, and deleted there when the
/// thread has finished. The caller starts the thread, and ends it by quit() and waitOrLeave().
[[nodiscard]] QThread *createWorkerThread(const QString &name, QObject *worker, QObject *parent);

/// Waits for a thread that has been told to quit. One that does not end in time, stuck in the system on a network drive
/// that is gone, say, is taken from its parent and left to itself: destroying a running thread would end the program.
/// False if so.
bool waitOrLeave(QThread *thread, std::chrono::milliseconds atMost);

} // namespace epr
