// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"

class QWidget;

namespace epr {

/// What is to be done to files. It calls the progress function before each of them and obeys its answer.
using CleanupJob = std::function<void(const CleanupProgressFn &progress)>;

/// Does the job and returns when it is done. False if it was stopped before its last file.
///
/// The job has a thread of its own, while an event loop here paints the windows and lets nobody at them but a progress
/// dialog. Handling events between two files instead would freeze the window for as long as one big file takes from one
/// disk to another.
[[nodiscard]] bool runWithProgress(const QString &title, const CleanupJob &job, QWidget *parent);

/// The same for a job of seconds that cannot be stopped and shows no dialog: the windows are painted, their input
/// waits.
void runWaiting(const std::function<void()> &job);

} // namespace epr
