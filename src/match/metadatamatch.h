// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

class MatchUnion;

/// The words of an artist or title that copies of one song share: lower-case ASCII letters, digits and single spaces,
/// without bracketed remarks that name a version ("(Live)", "[2009 Remaster]") and without a leading "the ".
QString normaliseForMatch(const QString &text);

/// Normalised artist, U+001F, normalised title.
QString metadataKey(const TrackInfo &track);

/// Links the tracks that carry the same song by their tags and whose durations differ by at most toleranceMs. A track
/// of unknown duration matches every other track of its song.
void linkEqualSongs(const QList<TrackInfo> &tracks, qint32 toleranceMs, MatchUnion &sets);

} // namespace epr
