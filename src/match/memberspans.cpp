// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "alignment.h"
#include "keeperpolicy.h"
#include "matching.h"
#include "missingpart.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace epr {

namespace {

MemberSpan spanOf(const TrackInfo &track, const std::optional<Alignment> &toLongest, FingerprintEngine engine)
{
    WordSequence words;
    setWordSequence(words, track.fingerprint, engine);
    const qint64 start = toLongest ? -toLongest->offsetMs : 0;
    return { .startMs = start,
             .soundMs = start + words.leadingSilenceMs(),
             .endMs = start + track.stream.durationMs,
             .isPlaced = toLongest.has_value(),
             .isEndGuess = track.stream.durationIsGuess };
}

} // namespace

void layOutMembers(MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    const AlignmentRules rules = alignmentRules(options);
    const bool neverKeepsUnreadable = options.keeperPolicy == static_cast<qint32>(KeeperPolicy::OwnRules);
    const qint32 longest = *std::ranges::max_element(group.members, {}, [&](qint32 member) {
        const StreamFacts &stream = tracks[member].stream;
        const bool mayBeKept = !neverKeepsUnreadable || tracks[member].error.isEmpty();
        return std::tuple(mayBeKept, stream.durationMs > 0 && !stream.durationIsGuess, stream.durationMs);
    });
    Aligner aligner(rules);
    aligner.setFirst(tracks[longest].fingerprint);
    for (const qint32 member : std::as_const(group.members)) {
        const TrackInfo &track = tracks[member];
        if (track.stream.durationMs > 0)
            group.spans.insert(member, spanOf(track, aligner.alignWith(track.fingerprint), rules.engine));
    }
    group.keep = longest;
    QList<qint32> complete = group.members;
    complete.removeIf([&group](qint32 member) { return missingPart(group, member).isAny(); });
    group.keep = chooseKeeper(complete, tracks, options);
}

} // namespace epr
