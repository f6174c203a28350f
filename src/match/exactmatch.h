// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchtype.h"
#include "trackinfo.h"

namespace epr {

class MatchUnion;

/// Links every track to the first one in the list that has the same digest, TrackInfo::fullHash or
/// TrackInfo::audioHash. Tracks without a digest are left out.
void linkEqualDigests(const QList<TrackInfo> &tracks, QString TrackInfo::*digest, MatchType type, MatchUnion &sets);

} // namespace epr
