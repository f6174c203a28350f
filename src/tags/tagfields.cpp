// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers.h"

#include <QStringDecoder>

#include <algorithm>

namespace epr {

void storeYear(Tags &tags, const QString &text)
{
    tags.year = text.left(4);
}

void storeTrack(Tags &tags, const QString &text)
{
    tags.trackNo = std::max(0, text.toInt());
}

void storeTrackOfTotal(Tags &tags, const QString &text)
{
    storeTrack(tags, text.left(text.indexOf(u'/')));
}

void storeTag(std::span<const TagField> fields, QStringView identifier, const QString &text, Tags &tags)
{
    const auto named = [identifier](const TagField &field) { return field.identifier == identifier; };
    if (const auto field = std::find_if(fields.begin(), fields.end(), named); field != fields.end())
        field->store(tags, text);
}

// A decoder keeps a character that is cut off to itself, where fromUtf8() puts a replacement for it.
QString utf8Text(QByteArrayView bytes)
{
    if (bytes.size() <= maxTextBytes)
        return QString::fromUtf8(bytes);
    QStringDecoder decoder(QStringDecoder::Utf8);
    return decoder(bytes.first(maxTextBytes));
}

QString cleanTagText(const QString &text)
{
    return text.left(text.indexOf(QChar(u'\0'))).trimmed();
}

} // namespace epr
