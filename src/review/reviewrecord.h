// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

/// How far the operator is with a group. The stored numbers.
enum class GroupState : qint32 {
    Undecided = 0,
    Done = 1,
    NotDuplicates = 2, ///< nothing of it is ticked, and it is not counted
};

/// Whether a file is still what the scan saw.
enum class FileState {
    AsScanned, ///< or nobody has looked since
    Changed,
    Vanished,
};

/// What was decided of a group. The lists are as long as its members.
struct GroupDecision {
    GroupState state = GroupState::Undecided;
    qint32 keep = -1; ///< track index
    bool keeperByHand = false;
    QList<bool> ticked;
    QList<bool> byHand; ///< whether the tick, or that there is none, was set for this copy by the operator

    bool operator==(const GroupDecision &) const = default;
};

/// A review as it is stored and taken up again. Decisions are in the order of the groups.
struct ReviewRecord {
    ScanOptions options; ///< of the scan, with its roots
    QDateTime scanned;
    int unreadableFolders = 0; ///< that the scan met
    qint64 files = 0; ///< that it looked at
    QList<TrackInfo> tracks; ///< those that no group refers to may be empty; none has a fingerprint
    QList<MatchGroup> groups;
    QList<GroupDecision> decisions;
    qint32 currentGroup = 0; ///< where the operator was: number of the group, 0 = nowhere
    qint32 currentTrack = -1; ///< -1 = on the group's own row
};

} // namespace epr
