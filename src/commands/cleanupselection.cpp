// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupselection.h"

#include "resultsmodel.h"

#include <QFileInfo>

namespace epr {

QList<TickedGroup> tickedGroups(const ResultsModel &results)
{
    const QList<TrackInfo> &tracks = results.tracks();
    QList<TickedGroup> groups;
    for (int g = 0; g < results.groups().size(); ++g) {
        const MatchGroup &group = results.groups().at(g);
        TickedGroup found { group.id, {}, {} };
        for (int m = 0; m < group.members.size(); ++m) {
            const qint32 index = group.members.at(m);
            if (index < 0 || index >= tracks.size())
                continue;
            const TrackInfo &track = tracks.at(index);
            (results.isTicked(g, m) ? found.ticked : found.unticked).append({ track.path, track.size, track.mtime });
        }
        if (!found.ticked.isEmpty())
            groups.append(found);
    }
    return groups;
}

int firstWhollyTickedGroup(const ResultsModel &results)
{
    for (int g = 0; g < results.groups().size(); ++g) {
        const auto members = static_cast<int>(results.groups().at(g).members.size());
        int ticked = 0;
        while (ticked < members && results.isTicked(g, ticked))
            ++ticked;
        if (ticked == members)
            return g;
    }
    return -1;
}

QStringList tickedPaths(const QList<TickedGroup> &groups)
{
    QStringList paths;
    for (const TickedGroup &group : groups) {
        for (const RemovalCandidate &candidate : group.ticked)
            paths.append(candidate.path);
    }
    return paths;
}

QSet<qint32> vanishedMembers(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    QSet<qint32> vanished;
    for (const MatchGroup &group : groups) {
        for (const qint32 member : group.members) {
            if (member >= 0 && member < tracks.size() && !QFileInfo::exists(tracks.at(member).path))
                vanished.insert(member);
        }
    }
    return vanished;
}

} // namespace epr
