// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "copyrelation.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QMultiHash>

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

struct Words {
    Q_DECLARE_TR_FUNCTIONS(epr::CopyRelation)
};

/// What the links between the kept copy and another one say.
struct Path {
    MatchType weakest = MatchType::IdenticalFile;
    int inexact = 0; ///< links by likeness, not by digest
    bool keepsTags = true; ///< all its files carry one artist and title
    double errorRate = 0; ///< the highest
    qint32 through = -1; ///< the copy on the way at which the weakest link nearest to its end begins
};

Path extended(Path path, const MatchLink &link, qint32 between)
{
    if (link.type >= path.weakest)
        path.through = between;
    path.weakest = std::max(path.weakest, link.type);
    path.inexact += link.type > MatchType::SameAudio ? 1 : 0;
    path.keepsTags = path.keepsTags && (link.type == MatchType::SameSong || link.type == MatchType::IdenticalFile);
    path.errorRate = std::max(path.errorRate, link.errorRate);
    return path;
}

/// From the kept copy to every other one. The links make no rings, so that there is one way to each.
QHash<qint32, Path> pathsFromKept(const MatchGroup &group)
{
    QMultiHash<qint32, const MatchLink *> linksOf;
    for (const MatchLink &link : group.links) {
        linksOf.insert(link.first, &link);
        linksOf.insert(link.second, &link);
    }
    QHash<qint32, Path> paths { { group.keep, {} } };
    QList<qint32> reached { group.keep };
    for (qsizetype next = 0; next < reached.size(); ++next) {
        const qint32 from = reached.at(next);
        const auto [begin, end] = linksOf.equal_range(from);
        for (auto link = begin; link != end; ++link) {
            const qint32 to = (*link)->first == from ? (*link)->second : (*link)->first;
            if (paths.contains(to))
                continue;
            paths.insert(to, extended(paths.value(from), **link, from == group.keep ? to : from));
            reached.append(to);
        }
    }
    return paths;
}

CopyRelation relationByPath(const Path &path, const TrackInfo &own, const TrackInfo &kept)
{
    if (path.weakest <= MatchType::SameAudio)
        return { .type = path.weakest };
    if (path.weakest == MatchType::SameRecording && path.inexact == 1) // equal audio sounds the same
        return { .type = path.weakest, .errorRate = path.errorRate };
    if (path.weakest == MatchType::SameRecording || !path.keepsTags)
        return { .type = path.weakest, .through = path.through };
    CopyRelation relation { .type = path.weakest };
    const auto isCertain = [](const StreamFacts &stream) { return stream.durationMs > 0 && !stream.durationIsGuess; };
    if (isCertain(own.stream) && isCertain(kept.stream))
        relation.longerMs = own.stream.durationMs - kept.stream.durationMs;
    return relation;
}

CopyRelation relationByDigest(const TrackInfo &own, const TrackInfo &kept)
{
    if (!own.fullHash.isEmpty() && own.fullHash == kept.fullHash)
        return { .type = MatchType::IdenticalFile };
    if (!own.audioHash.isEmpty() && own.audioHash == kept.audioHash)
        return { .type = MatchType::SameAudio };
    return {};
}

// Without the copy of the record that value() makes: this is asked for every copy of a review.
const TrackInfo &trackAt(const QList<TrackInfo> &tracks, qint32 index)
{
    static const TrackInfo none;
    return index >= 0 && index < tracks.size() ? tracks.at(index) : none;
}

CopyRelation relationOf(qint32 member, const TrackInfo &kept, const QList<TrackInfo> &tracks,
                        const QHash<qint32, Path> &paths)
{
    const TrackInfo &own = trackAt(tracks, member);
    const CopyRelation known = relationByDigest(own, kept);
    const auto path = paths.constFind(member);
    return known.type != MatchType::Unmatched || path == paths.cend() ? known : relationByPath(*path, own, kept);
}

QString songText(const CopyRelation &relation)
{
    if (!relation.longerMs)
        return Words::tr("same artist and title");
    constexpr qint64 unseenMs = 50; // would be shown as nothing
    const QString length = lengthText(std::abs(*relation.longerMs));
    if (std::abs(*relation.longerMs) < unseenMs)
        return Words::tr("same artist and title, as long");
    return *relation.longerMs > 0 ? Words::tr("same artist and title, %1 longer").arg(length)
                                  : Words::tr("same artist and title, %1 shorter").arg(length);
}

} // namespace

CopyRelation relationToKept(const MatchGroup &group, qint32 member, const QList<TrackInfo> &tracks)
{
    if (member == group.keep)
        return {};
    const TrackInfo &kept = trackAt(tracks, group.keep);
    const CopyRelation known = relationByDigest(trackAt(tracks, member), kept);
    return known.type != MatchType::Unmatched ? known : relationOf(member, kept, tracks, pathsFromKept(group));
}

QHash<qint32, CopyRelation> relationsToKept(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    const QHash<qint32, Path> paths = pathsFromKept(group);
    const TrackInfo &kept = trackAt(tracks, group.keep);
    QHash<qint32, CopyRelation> relations;
    for (const qint32 member : group.members) {
        if (member != group.keep)
            relations.insert(member, relationOf(member, kept, tracks, paths));
    }
    return relations;
}

// What cannot be told from a whole number counts as that, so that 3 % of unlike bits leave 97.
int percentAlike(double errorRate)
{
    constexpr double rounding = 1e-9;
    return 100 - static_cast<int>(std::ceil(errorRate * 100 - rounding));
}

QString relationText(const CopyRelation &relation, const QList<TrackInfo> &tracks)
{
    const QString between = tracks.value(relation.through).fileName;
    switch (relation.type) {
    case MatchType::IdenticalFile:
        return Words::tr("identical to the kept copy");
    case MatchType::SameAudio:
        return Words::tr("same audio, other tags");
    case MatchType::SameRecording:
        return relation.through < 0 ? Words::tr("same recording, %1 % alike").arg(percentAlike(relation.errorRate))
            : between.isEmpty()     ? Words::tr("same recording, through another copy")
                                    : Words::tr("same recording, through %1").arg(between);
    case MatchType::SameSong:
        return relation.through < 0 ? songText(relation)
            : between.isEmpty()     ? Words::tr("same artist and title, through another copy")
                                    : Words::tr("same artist and title, through %1").arg(between);
    case MatchType::Unmatched:
        break;
    }
    return {};
}

} // namespace epr
