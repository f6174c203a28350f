// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "scanoptions.h"
#include "trackinfo.h"

namespace epr {

class MatchUnion;

/// Turns the sets of two and more tracks into numbered groups: members in path order, the copy to keep chosen, groups
/// by certainty and then by the space they would free. Groups equal in both stand in the order of their lowest track
/// index, so that the same library always gives the same list.
[[nodiscard]] QList<MatchGroup> groupSets(MatchUnion &sets, const QList<TrackInfo> &tracks, const ScanOptions &options);

} // namespace epr
