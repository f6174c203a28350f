// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "exactmatch.h"

#include "matchunion.h"

#include <QHash>

namespace epr {

// A link per track and not per pair: a library may hold thousands of files that are all empty or all silent.
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

} // namespace epr
