// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperpolicy.h"

namespace epr {

namespace {

/// What a policy looks at, and what decides between equals. The larger pair is the better copy.
using Score = std::pair<qint64, qint64>;

/// Turns "the smaller the better" into a score. Unlike negation it has a value for every number.
qint64 reversed(qint64 value)
{
    return ~value;
}

qint64 formatRank(const TrackInfo &track, const QStringList &preference)
{
    const qsizetype position = preference.indexOf(track.suffix);
    return position < 0 ? preference.size() : position;
}

qint64 folderDepth(const TrackInfo &track)
{
    return track.path.count(u'/') + track.path.count(u'\\');
}

// A file whose time is unknown is neither the oldest nor the newest.
Score timeScore(const TrackInfo &track, KeeperPolicy policy)
{
    if (!track.mtime.isValid())
        return { 0, 0 };
    const qint64 time = track.mtime.toMSecsSinceEpoch();
    return { 1, policy == KeeperPolicy::OldestFile ? reversed(time) : time };
}

Score scoreOf(const TrackInfo &track, const ScanOptions &options)
{
    const auto policy = static_cast<KeeperPolicy>(options.keeperPolicy);
    switch (policy) {
    case KeeperPolicy::HighestBitrate:
        return { track.stream.bitrateKbps, track.size };
    case KeeperPolicy::LongestDuration:
        return { track.stream.durationMs, 0 };
    case KeeperPolicy::LargestFile:
        return { track.size, 0 };
    case KeeperPolicy::PreferredFormat:
        return { reversed(formatRank(track, options.formatPreference)), track.stream.bitrateKbps };
    case KeeperPolicy::ShallowestFolder:
        return { reversed(folderDepth(track)), reversed(track.path.size()) };
    case KeeperPolicy::OldestFile:
    case KeeperPolicy::NewestFile:
        return timeScore(track, policy);
    case KeeperPolicy::MostCompleteTags:
        return { tagCompleteness(track), track.stream.bitrateKbps };
    }
    return { 0, 0 };
}

} // namespace

qint32 tagCompleteness(const TrackInfo &track)
{
    const auto points = [](bool present, qint32 worth) { return present ? worth : 0; };
    return points(!track.tags.title.isEmpty(), 3) + points(!track.tags.artist.isEmpty(), 3)
        + points(!track.tags.album.isEmpty(), 2) + points(!track.tags.albumArtist.isEmpty(), 1)
        + points(!track.tags.genre.isEmpty(), 1) + points(!track.tags.year.isEmpty(), 1)
        + points(track.tags.trackNo > 0, 1);
}

qint32 chooseKeeper(const QList<qint32> &members, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    if (members.isEmpty())
        return -1;
    qint32 best = members.first();
    Score bestScore = scoreOf(tracks[best], options);
    for (const qint32 member : members) {
        const Score score = scoreOf(tracks[member], options);
        if (score > bestScore) {
            best = member;
            bestScore = score;
        }
    }
    return best;
}

} // namespace epr
