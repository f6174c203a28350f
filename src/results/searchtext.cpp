// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "searchtext.h"

#include "displaytext.h"

namespace epr {

QString foldedSearchText(const TrackInfo &track)
{
    const QChar newline = u'\n';
    const QString text =
        displayArtist(track) + newline + displayTitle(track) + newline + track.fileName + newline + folderOf(track);
    return text.toCaseFolded();
}

QStringList foldedSearchTexts(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    QStringList texts;
    texts.resize(tracks.size());
    for (const MatchGroup &group : groups) {
        for (const qint32 member : group.members) {
            if (member >= 0 && member < tracks.size())
                texts[member] = foldedSearchText(tracks.at(member));
        }
    }
    return texts;
}

QStringList searchNeedles(const QString &typed)
{
    const QString folded = typed.trimmed().toCaseFolded();
    if (folded.isEmpty())
        return {};
    QString slashed = folded;
    slashed.replace(u'\\', u'/');
    return slashed == folded ? QStringList { folded } : QStringList { folded, slashed };
}

} // namespace epr
