// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "id3v1.h"

#include "bytecursor.h"
#include "id3genres.h"
#include "tagtext.h"

namespace epr {

namespace {

void fillText(QString &field, QByteArrayView bytes)
{
    if (field.isEmpty())
        field = cleanTagText(QString::fromLatin1(bytes));
}

} // namespace

bool applyId3v1(QByteArrayView tag, ProbeResult &result)
{
    if (tag.size() != id3v1Size || !tag.startsWith("TAG"))
        return false;
    ByteCursor cursor(tag);
    cursor.skip(3);
    fillText(result.tags.title, cursor.take(30));
    fillText(result.tags.artist, cursor.take(30));
    fillText(result.tags.album, cursor.take(30));
    fillText(result.tags.year, cursor.take(4));
    cursor.skip(28);
    // A zero where the comment's 29th character stood says that the 30th is a track number.
    const bool hasTrack = cursor.u8() == 0;
    const quint8 track = cursor.u8();
    if (hasTrack && result.tags.trackNo == 0)
        result.tags.trackNo = track;
    if (result.tags.genre.isEmpty())
        result.tags.genre = id3Genre(cursor.u8());
    return true;
}

} // namespace epr
