// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupselection.h"

#include "review.h"

namespace epr {

QList<TickedGroup> tickedGroups(const Review &review)
{
    QList<TickedGroup> groups;
    for (int g = 0; g < review.groups().size(); ++g) {
        TickedGroup found { review.groups().at(g).id, {}, {} };
        for (int m = 0; m < review.groups().at(g).members.size(); ++m) {
            if (const TrackInfo *track = review.track(g, m))
                (review.isTicked(g, m) ? found.ticked : found.unticked)
                    .append({ track->path, track->size, track->mtime });
        }
        if (!found.ticked.isEmpty())
            groups.append(found);
    }
    return groups;
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

} // namespace epr
