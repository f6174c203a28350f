// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"
#include "records.h"

#include <atomic>
#include <utility>

namespace epr {

class MatchUnion;

/// Pairs of tracks, in ascending order, of which one may be an edit of the other.
using EditPairs = QList<std::pair<qint32, qint32>>;

/// Finds the duplicates among analysed tracks by the methods that the options enable. A cancelFlag other than zero
/// skips the passes that compare by similarity; what has been found by then is still returned. Progress is reported on
/// the calling thread. What may be an edit is noted in the groups, or where neither is in one, in singleEdits.
QList<MatchGroup> buildMatchGroups(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                   const std::atomic<qint32> &cancelFlag, const ProgressFn &progress = {},
                                   EditPairs *singleEdits = nullptr);

/// Turns the sets of two and more tracks into numbered groups: members in path order, the copy to keep chosen, groups
/// by certainty and then by the space they would free. Groups equal in both stand in the order of their lowest track
/// index, so that the same library always gives the same list.
QList<MatchGroup> groupSets(MatchUnion &sets, const QList<TrackInfo> &tracks, const ScanOptions &options);

// The passes that compare by similarity: by sound, and by artist and title.

/// Links the tracks whose fingerprints are those of the same recording. Pairs are compared in ascending order, only if
/// they share some keys of their fingerprints and are not in one set yet. A cancelFlag other than zero ends the pass
/// within 1024 pairs; the links made by then stay.
void matchAcoustic(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                   const ProgressFn &progress, MatchUnion &unions);

/// Links what that leaves unlinked: copies that begin or end elsewhere, of whatever duration, and processed ones. The
/// links do not depend on the number of threads. A cancelFlag other than zero ends the pass within a few dozen pairs;
/// the links made by then stay.
void matchThoroughly(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                     const ProgressFn &progress, MatchUnion &unions);

/// Lays the members of a group on one time line, as their sounds lie to each other, and has one of those kept that lack
/// nothing of the longest.
void layOutMembers(MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options);

/// The words of an artist or title that copies of one song share: lower-case ASCII letters, digits and single spaces,
/// without bracketed remarks that name a version ("(Live)", "[2009 Remaster]") and without a leading "the ".
QString normaliseForMatch(const QString &text);

/// Normalised artist, U+001F, normalised title.
QString metadataKey(const TrackInfo &track);

/// Links the tracks that carry the same song by their tags and whose durations differ by at most toleranceMs. A track
/// of unknown duration matches every other track of its song.
void linkEqualSongs(const QList<TrackInfo> &tracks, qint32 toleranceMs, MatchUnion &sets);

} // namespace epr
