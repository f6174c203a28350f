// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "review.h"

#include <QStringList>

namespace epr::test {

constexpr qint64 mebibyte = 1 << 20;

struct Lists {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

/// Groups from a sketch such as "a* b / c d*": names of tracks, a star at the keeper. The first track has 1 MB, the
/// second 2 MB and so on; their artist is "Artist", the title "Title of " and the name.
inline Lists listsOf(const QString &sketch)
{
    Lists lists;
    for (const QString &names : sketch.split(QStringLiteral(" / "), Qt::SkipEmptyParts)) {
        MatchGroup group;
        group.id = static_cast<qint32>(lists.groups.size()) + 1;
        for (const QString &starred : names.split(u' ')) {
            const auto index = static_cast<qint32>(lists.tracks.size());
            const QString name = starred.section(u'*', 0, 0);
            TrackInfo track;
            track.fileName = name + QStringLiteral(".mp3");
            track.path = QStringLiteral("/music/") + track.fileName;
            track.tags.artist = QStringLiteral("Artist");
            track.tags.title = QStringLiteral("Title of ") + name;
            track.size = mebibyte * (index + 1);
            group.members << index;
            if (starred != name)
                group.keep = index;
            else
                group.reclaimableBytes += track.size;
            lists.tracks << track;
        }
        lists.groups << group;
    }
    return lists;
}

inline void fill(Review &review, const QString &sketch)
{
    const Lists lists = listsOf(sketch);
    review.setResults(lists.tracks, lists.groups);
}

/// A member as in such a sketch, with an exclamation mark if it is ticked.
inline QString sketchOf(const Review &review, int group, int member)
{
    return review.track(group, member)->fileName.section(u'.', 0, 0)
        + QStringLiteral("*").left(review.isKeeper(group, member))
        + QStringLiteral("!").left(review.isTicked(group, member));
}

inline QString sketchOf(const Review &review)
{
    QStringList groups;
    for (int g = 0; g < review.groups().size(); ++g) {
        QStringList members;
        for (int m = 0; m < review.groups().at(g).members.size(); ++m)
            members << sketchOf(review, g, m);
        groups << members.join(u' ');
    }
    return groups.join(QStringLiteral(" / "));
}

} // namespace epr::test
