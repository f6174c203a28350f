// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"

#include "commonpath.h"
#include "differences.h"

#include <algorithm>
#include <cmath>

namespace epr {

PairCheck compareWhole(const SoundProfile &first, const SoundProfile &second)
{
    const PlaceFinder finder(first.fingerprint, second.fingerprint);
    const std::optional<PlaceFinder::Place> place = finder.find();
    if (!place)
        return {};
    LevelDistance distance(first.levels, second.levels);
    distance.learnBias(place->begin, place->end, place->offset);
    const CommonPath path(distance, finder, *place);
    const auto middle = static_cast<std::size_t>(std::midpoint(place->begin, place->end));
    PairCheck check;
    check.isAligned = middle < path.offsets().size() && path.offsets()[middle] != CommonPath::nowhere;
    if (!check.isAligned)
        return check;
    check.offsetMs = std::llround(static_cast<double>(path.offsets()[middle]) * BandLevels::frameMs);
    check.differences = differencesOf(distance, path.offsets());
    return check;
}

} // namespace epr
