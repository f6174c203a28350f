// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "removalchecks.h"

namespace epr {

/// A group of duplicates with what the operator ticked in it. Numbers are not used twice in one list.
struct TickedGroup {
    qint32 id = 0;
    QList<RemovalCandidate> ticked;
    QList<RemovalCandidate> unticked;

    bool operator==(const TickedGroup &) const = default;
};

struct RemovalPlan {
    QStringList paths; ///< what may be removed, in the order of the groups
    qint32 refused = 0; ///< ticked files that are left alone
    QStringList errors; ///< why: a message for each file that changed and for each group that would lose its last copy

    bool operator==(const RemovalPlan &) const = default;
};

/// Decides by a look at the disk which ticked files may go. One that changed since the scan stays. All of a group stay
/// if none of its unticked copies is as it was scanned, can be read and stands on its own: a kept copy that changed is
/// no longer known to be the same music.
[[nodiscard]] RemovalPlan planRemoval(const QList<TickedGroup> &groups);

} // namespace epr
