// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <chrono>
#include <functional>

namespace epr {

/// Waits for files that other programs have open. A virus scanner or an indexer lets go of a file at once, and playout
/// when the title ends.
class Patience final {
public:
    /// Asked many times a second during a wait, with a text around the path for the operator; false ends the wait.
    using GoesOnFn = std::function<bool(const QString &text)>;

    explicit Patience(GoesOnFn goesOn = {});

    /// Returns as soon as the file at an absolute path may go. After about a second it fails with the reason why it may
    /// not. Each wait in vain shortens the next, so that a run of any length waits for four seconds in all; one that
    /// was worth it restores the second.
    [[nodiscard]] Result<> awaitFree(const QString &path);

    [[nodiscard]] bool hasStopped() const { return m_hasStopped; } ///< a wait was ended

private:
    GoesOnFn m_goesOn;
    std::chrono::milliseconds m_limit;
    bool m_hasStopped = false;
};

} // namespace epr
