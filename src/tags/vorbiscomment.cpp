// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "vorbiscomment.h"

#include "bytecursor.h"
#include "tagtext.h"

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct CommentField {
    QLatin1StringView key;
    QString Tags::*field;
};

constexpr std::array<CommentField, 7> textFields { {
    { "TITLE"_L1, &Tags::title },
    { "ARTIST"_L1, &Tags::artist },
    { "ALBUM"_L1, &Tags::album },
    { "ALBUMARTIST"_L1, &Tags::albumArtist },
    { "GENRE"_L1, &Tags::genre },
    { "COMMENT"_L1, &Tags::comment },
    { "DESCRIPTION"_L1, &Tags::comment },
} };

constexpr qsizetype longestKey = 11;

void storeValue(const QString &key, const QString &value, ProbeResult &result)
{
    if (value.isEmpty())
        return;
    if (key == "DATE"_L1)
        result.tags.year = yearOfDate(value);
    else if (key == "TRACKNUMBER"_L1)
        result.tags.trackNo = trackNumber(value);
    else if (const auto entry = std::find_if(textFields.begin(), textFields.end(),
                                             [&](const CommentField &field) { return field.key == key; });
             entry != textFields.end())
        result.tags.*entry->field = value;
}

/// "KEY=value". Keys longer than any known one are passed over unread: their values are cover art more often than not.
void applyComment(QByteArrayView comment, ProbeResult &result)
{
    const qsizetype equals = comment.indexOf('=');
    if (equals < 1 || equals > longestKey)
        return;
    const QString key = QString::fromUtf8(comment.first(equals)).toUpper();
    storeValue(key, cleanTagText(QString::fromUtf8(comment.sliced(equals + 1))), result);
}

} // namespace

void readVorbisComment(QByteArrayView bytes, ProbeResult &result)
{
    ByteCursor cursor(bytes);
    cursor.skip(cursor.u32le()); // vendor
    // The count may claim four thousand million; every comment takes four bytes at the least.
    for (quint32 left = cursor.u32le(); left > 0 && cursor.ok(); --left)
        applyComment(cursor.take(cursor.u32le()), result);
}

} // namespace epr
