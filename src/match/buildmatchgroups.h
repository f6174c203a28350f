// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"
#include "records.h"

#include <atomic>

namespace epr {

class MatchUnion;

/// Finds the duplicates among analysed tracks by the methods that the options enable. A cancelFlag other than zero
/// skips the passes that compare by similarity; what has been found by then is still returned. Progress is reported on
/// the calling thread.
QList<MatchGroup> buildMatchGroups(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                   const std::atomic<qint32> &cancelFlag, const ProgressFn &progress = {});

/// Turns the sets of two and more tracks into numbered groups: members in path order, the copy to keep chosen, groups
/// by certainty and then by the space they would free. Groups equal in both stand in the order of their lowest track
/// index, so that the same library always gives the same list.
QList<MatchGroup> groupSets(MatchUnion &sets, const QList<TrackInfo> &tracks, const ScanOptions &options);

} // namespace epr
