// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matching.h"

#include "keeperpolicy.h"
#include "matchunion.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <tuple>

namespace epr {

namespace {

/// Where the driver's own progress stands as each pass begins. The acoustic pass comes third and reports for itself.
enum Step { MatchingFiles = 0, MatchingAudio = 1, MatchingMetadata = 3, Complete = 4 };

void report(const ProgressFn &progress, Step step, const char *text)
{
    if (progress)
        progress(step, Complete, QCoreApplication::translate("QObject", text));
}

/// Links every track to the first one in the list that has the same digest. Tracks without a digest are left out. A
/// link per track and not per pair: a library may hold thousands of files that are all empty or all silent.
void linkEqualDigests(const QList<TrackInfo> &tracks, QString TrackInfo::*digest, MatchType type, MatchUnion &sets)
{
    QHash<QStringView, qint32> firstWith;
    firstWith.reserve(tracks.size());
    for (qint32 track = 0; track < sets.trackCount(); ++track) {
        const QString &key = tracks[track].*digest;
        if (key.isEmpty())
            continue;
        const qint32 first = firstWith.value(key, track);
        if (first == track)
            firstWith.insert(key, track);
        else
            sets.link(first, track, type);
    }
}

/// How much a match of each type can be relied on, as a fixed figure for the reports: not measured for each group.
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

/// Members, match type and links only, by lowest track index. Counting first spares the allocations for the many tracks
/// that are alone.
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
    for (const MatchLink &link : sets.links())
        groups[groupOf[static_cast<std::size_t>(sets.findRoot(link.first))]].links.append(link);
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

void finishGroup(MatchGroup &group, bool aligned, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    sortByPath(group.members, tracks);
    if (group.matchType == MatchType::Unmatched)
        group.matchType = MatchType::SameRecording;
    group.keep = chooseKeeper(group.members, tracks, options);
    if (aligned)
        layOutMembers(group, tracks, options);
    group.reclaimableBytes = bytesWithout(group.keep, group.members, tracks);
    group.confidence = confidenceOf(group.matchType);
}

/// Notes in each group what may be an edit of a member, and returns the pairs of which neither is in a group.
EditPairs noteEdits(QList<MatchGroup> &groups, MatchUnion &sets)
{
    QHash<qint32, MatchGroup *> groupOf;
    for (MatchGroup &group : groups)
        groupOf.insert(sets.findRoot(group.members.first()), &group);
    EditPairs single;
    for (const auto &[a, b] : sets.edits()) {
        MatchGroup *const groupOfA = groupOf.value(sets.findRoot(a));
        MatchGroup *const groupOfB = groupOf.value(sets.findRoot(b));
        if (!groupOfA && !groupOfB)
            single.append({ a, b });
        if (groupOfA == groupOfB)
            continue;
        if (groupOfA && !groupOfA->edits.contains(a))
            groupOfA->edits.insert(a, b);
        if (groupOfB && !groupOfB->edits.contains(b))
            groupOfB->edits.insert(b, a);
    }
    return single;
}

bool comesBefore(const MatchGroup &a, const MatchGroup &b)
{
    return a.matchType != b.matchType ? a.matchType < b.matchType : a.reclaimableBytes > b.reclaimableBytes;
}

} // namespace

QList<MatchGroup> groupSets(MatchUnion &sets, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    QList<MatchGroup> groups = collectSets(sets);
    for (MatchGroup &group : groups) {
        const bool aligned =
            std::ranges::any_of(group.members, [&sets](qint32 member) { return sets.isAligned(member); });
        finishGroup(group, aligned, tracks, options);
    }
    std::stable_sort(groups.begin(), groups.end(), comesBefore);
    qint32 id = 0;
    for (MatchGroup &group : groups)
        group.id = ++id;
    return groups;
}

// From the most certain method to the least. Each pass looks at all tracks, also at those already linked: a group takes
// the type of its weakest link.
QList<MatchGroup> buildMatchGroups(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                   const std::atomic<qint32> &cancelFlag, const ProgressFn &progress,
                                   EditPairs *singleEdits)
{
    if (tracks.size() < 2)
        return {};
    const auto cancelled = [&cancelFlag] { return cancelFlag.load(std::memory_order_relaxed) != 0; };
    MatchUnion sets(tracks.size());
    if (options.detectIdentical) {
        report(progress, MatchingFiles, QT_TRANSLATE_NOOP("QObject", "Matching identical files"));
        linkEqualDigests(tracks, &TrackInfo::fullHash, MatchType::IdenticalFile, sets);
    }
    if (options.detectSameAudio) {
        report(progress, MatchingAudio, QT_TRANSLATE_NOOP("QObject", "Matching audio payloads"));
        linkEqualDigests(tracks, &TrackInfo::audioHash, MatchType::SameAudio, sets);
    }
    if (options.detectAcoustic && !cancelled())
        matchAcoustic(tracks, options, cancelFlag, progress, sets);
    if (options.detectAcoustic && options.compareThoroughly && !cancelled())
        matchThoroughly(tracks, options, cancelFlag, progress, sets);
    if (options.detectMetadata && !cancelled()) {
        report(progress, MatchingMetadata, QT_TRANSLATE_NOOP("QObject", "Comparing metadata"));
        linkEqualSongs(tracks, options.metadataTolerance, sets);
    }
    QList<MatchGroup> groups = groupSets(sets, tracks, options);
    EditPairs single = noteEdits(groups, sets);
    if (singleEdits)
        *singleEdits = std::move(single);
    report(progress, Complete, QT_TRANSLATE_NOOP("QObject", "Grouping complete"));
    return groups;
}

} // namespace epr
