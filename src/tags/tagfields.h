// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <span>

namespace epr {

/// What a format calls a tag, and how the tag's text is put into the record. A reader has a table of these.
struct TagField {
    QLatin1StringView identifier; ///< compared as it stands
    void (*store)(Tags &tags, const QString &text);
};

template <QString Tags::*field> void storeText(Tags &tags, const QString &text)
{
    tags.*field = text;
}

/// The year of a date that starts with it ("2004-05-01"): its first four characters.
void storeYear(Tags &tags, const QString &text);

/// The track number in "3"; 0 when the text is no decimal integer or it is negative.
void storeTrack(Tags &tags, const QString &text);

/// The track number in "3" or "3/12"; 0 when there is none.
void storeTrackOfTotal(Tags &tags, const QString &text);

/// Stores the text where the format's table says; an identifier that is not in it changes nothing. A later text
/// overwrites an earlier one.
void storeTag(std::span<const TagField> fields, QStringView identifier, const QString &text, Tags &tags);

/// The text up to its first NUL character, without white space at either end. Every tag value passes through here.
QString cleanTagText(const QString &text);

} // namespace epr
