// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"

#include <optional>

namespace epr {

/// Looks at a file and its kept copies directly before the file goes.
class RemovalGuard final {
public:
    /// Has no objections at all if nothing is said of kept copies.
    RemovalGuard(RemovalMode mode, const KeptCopies &kept);

    /// Why the file has to stay, for the operator; nothing if it may go.
    [[nodiscard]] std::optional<QString> objection(const QString &path) const;

    /// Whether one of the kept copies is still there, also when the file itself is not any more.
    [[nodiscard]] bool copyStays(const QString &path) const;

private:
    const RemovalMode m_mode;
    const KeptCopies m_kept;
};

} // namespace epr
