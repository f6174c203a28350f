// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperpolicy.h"

#include "keeperrules.h"
#include "missingpart.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <limits>

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
    case KeeperPolicy::OwnRules:
        break; // chooses among all at once
    }
    return { 0, 0 };
}

struct Words {
    Q_DECLARE_TR_FUNCTIONS(epr::KeeperPolicy)
};

struct Reason {
    const char *first; ///< what the policy looks at decided
    const char *second; ///< what decides between equals
};

constexpr auto highestBitrate = QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: highest bit rate");
constexpr auto oldest = QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: oldest file");
constexpr auto newest = QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: newest file");
constexpr auto firstOfEqual = QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: first of equal copies");

// In the order of the policies.
constexpr std::array<Reason, 8> reasons { {
    { highestBitrate, QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: larger file of one bit rate") },
    { QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: longest"), nullptr },
    { QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: largest file"), nullptr },
    { QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: preferred format"), highestBitrate },
    { QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: shallowest folder"),
      QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: shortest path") },
    { oldest, oldest }, // an unknown time, or a later one
    { newest, newest },
    { QT_TRANSLATE_NOOP("epr::KeeperPolicy", "kept: most complete tags"), highestBitrate },
} };

bool hasOwnRules(const ScanOptions &options)
{
    return options.keeperPolicy == static_cast<qint32>(KeeperPolicy::OwnRules);
}

RuleChoice choiceByRules(const QList<qint32> &members, const QList<TrackInfo> &tracks, const ScanOptions &options,
                         const GroupCheck &check = {})
{
    return chooseByRules(members, { tracks, check, options, KeeperRules(options.keeperRules) });
}

/// The score of the kept copy beside the best of the others.
QString policyText(qint32 keep, const QList<qint32> &members, const QList<TrackInfo> &tracks,
                   const ScanOptions &options)
{
    const auto policy = static_cast<std::size_t>(options.keeperPolicy);
    const Score kept = scoreOf(tracks.value(keep), options);
    Score next { std::numeric_limits<qint64>::min(), 0 };
    for (const qint32 member : members) {
        if (member != keep)
            next = std::max(next, scoreOf(tracks.value(member), options));
    }
    if (policy >= reasons.size() || kept == next)
        return Words::tr(firstOfEqual);
    return Words::tr(kept.first != next.first ? reasons[policy].first : reasons[policy].second);
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
    if (hasOwnRules(options))
        return choiceByRules(members, tracks, options).keep;
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

qint32 chooseKeeperAgain(const MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    QList<qint32> members = group.members;
    members.removeIf([&](qint32 member) {
        return missingPart(group, member).isAny() || checkState(group, member) == CheckState::Differs;
    });
    return hasOwnRules(options) ? choiceByRules(members, tracks, options, group.check).keep
                                : chooseKeeper(members, tracks, options);
}

QString keepText(const MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    QList<qint32> members = group.members;
    members.removeIf([&group](qint32 member) { return missingPart(group, member).isAny(); });
    if (!members.contains(group.keep))
        return {};
    if (members.size() == 1)
        return Words::tr("kept: the only complete copy");
    if (!hasOwnRules(options))
        return chooseKeeper(members, tracks, options) == group.keep ? policyText(group.keep, members, tracks, options)
                                                                    : QString();
    // What was measured since the copy was chosen may have changed nothing.
    for (const GroupCheck &check : { GroupCheck(), group.check }) {
        if (const RuleChoice choice = choiceByRules(members, tracks, options, check); choice.keep == group.keep)
            return choice.reason.isEmpty() ? Words::tr(firstOfEqual) : choice.reason;
    }
    return {};
}

} // namespace epr
