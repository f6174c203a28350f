// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "grouping.h"

#include "keeperpolicy.h"
#include "matchunion.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace epr {

namespace {

double confidenceOf(MatchType type)
{
    switch (type) {
    case MatchType::IdenticalFile:
        return 1.0;
    case MatchType::SameAudio:
        return 0.99;
    case MatchType::SameRecording:
        return 0.9;
    default:
        return 0.65;
    }
}

std::vector<qint32> countMembers(MatchUnion &sets)
{
    std::vector<qint32> countOf(static_cast<std::size_t>(sets.trackCount()));
    for (qint32 track = 0; track < sets.trackCount(); ++track)
        ++countOf[static_cast<std::size_t>(sets.findRoot(track))];
    return countOf;
}

/// Members and match type only, by lowest track index. Counting first spares the allocations for the many tracks that
/// are alone.
QList<MatchGroup> collectSets(MatchUnion &sets)
{
    const std::vector<qint32> countOf = countMembers(sets);
    std::vector<qsizetype> groupOf(countOf.size(), -1);
    QList<MatchGroup> groups;
    for (qint32 track = 0; track < sets.trackCount(); ++track) {
        const auto root = static_cast<std::size_t>(sets.findRoot(track));
        if (countOf[root] < 2)
            continue;
        if (groupOf[root] < 0) {
            groupOf[root] = groups.size();
            groups.emplaceBack().members.reserve(countOf[root]);
        }
        MatchGroup &group = groups[groupOf[root]];
        group.members.append(track);
        group.matchType = leastCertain(group.matchType, sets.method(track));
    }
    return groups;
}

// Paths that the locale finds equal (one may be composed, the other decomposed) still need an order of their own.
void sortByPath(QList<qint32> &members, const QList<TrackInfo> &tracks)
{
    std::sort(members.begin(), members.end(), [&tracks](qint32 a, qint32 b) {
        const QString &pathA = tracks[a].path;
        const QString &pathB = tracks[b].path;
        const int order = QString::localeAwareCompare(pathA, pathB);
        return order != 0 ? order < 0 : std::tie(pathA, a) < std::tie(pathB, b);
    });
}

qint64 bytesWithout(qint32 keep, const QList<qint32> &members, const QList<TrackInfo> &tracks)
{
    qint64 bytes = 0;
    for (const qint32 member : members)
        bytes += member == keep ? 0 : tracks[member].size;
    return bytes;
}

void finishGroup(MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    sortByPath(group.members, tracks);
    if (group.matchType == MatchType::Unmatched)
        group.matchType = MatchType::SameRecording;
    group.keep = chooseKeeper(group.members, tracks, options);
    group.reclaimableBytes = bytesWithout(group.keep, group.members, tracks);
    group.confidence = confidenceOf(group.matchType);
}

bool comesBefore(const MatchGroup &a, const MatchGroup &b)
{
    return a.matchType != b.matchType ? a.matchType < b.matchType : a.reclaimableBytes > b.reclaimableBytes;
}

} // namespace

QList<MatchGroup> groupSets(MatchUnion &sets, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    QList<MatchGroup> groups = collectSets(sets);
    for (MatchGroup &group : groups)
        finishGroup(group, tracks, options);
    std::stable_sort(groups.begin(), groups.end(), comesBefore);
    qint32 id = 0;
    for (MatchGroup &group : groups)
        group.id = ++id;
    return groups;
}

} // namespace epr
