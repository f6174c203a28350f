// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewrecord.h"

namespace epr {

/// What a new scan's groups take over from an earlier review.
struct CarriedOver {
    QHash<int, GroupDecision> decisions; ///< by position, of the groups that take anything over
    qint64 keepers = 0; ///< that the operator chose
    qint64 ticks = 0; ///< that the operator set or took away
    qint64 doneGroups = 0;
    qint64 lostGroups = 0; ///< that were decided, and whose files the scan did not find together as they were

    bool isAny() const { return keepers > 0 || ticks > 0 || doneGroups > 0; }
};

/// A decision is taken over with its file: that is the one at the same path, of the same size and time. What the
/// operator did not decide is as the new scan proposes. Nothing is ticked that is kept, lacks a part of what is kept,
/// or is doubted by a check; and a group is done only if it has no member that the done one had not.
CarriedOver carryOver(const ReviewRecord &earlier, const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

/// Whether anything in it was decided by the operator.
bool hasDecisions(const ReviewRecord &review);

} // namespace epr
