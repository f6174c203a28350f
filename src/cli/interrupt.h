// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace epr {

class ScanController;

/// While one exists, Ctrl-C (or a polite request to terminate) cancels the controller's scan. A second one ends the
/// process at once. At most one at a time.
class InterruptGuard final {
public:
    explicit InterruptGuard(ScanController &controller);
    ~InterruptGuard();

    /// Whether a request came, however late: the controller itself takes no notice of one while it groups.
    [[nodiscard]] bool wasInterrupted() const;

    InterruptGuard(const InterruptGuard &) = delete;
    InterruptGuard &operator=(const InterruptGuard &) = delete;
};

} // namespace epr
