// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagtext.h"

#include <QStringDecoder>

#include <algorithm>

namespace epr {

namespace {

/// A UTF-16 text ends in whole zero units: dropping single bytes would take the upper half of a last Latin letter
/// from little-endian text. An odd last byte is no unit and goes first.
QByteArrayView withoutWideZeros(QByteArrayView bytes)
{
    bytes.chop(bytes.size() % 2);
    while (bytes.size() >= 2 && bytes[bytes.size() - 1] == 0 && bytes[bytes.size() - 2] == 0)
        bytes.chop(2);
    return bytes;
}

QByteArrayView withoutZeros(QByteArrayView bytes)
{
    while (!bytes.isEmpty() && bytes.back() == 0)
        bytes.chop(1);
    return bytes;
}

QString decodeWide(QStringDecoder::Encoding encoding, QByteArrayView bytes)
{
    QStringDecoder decoder(encoding);
    return decoder(withoutWideZeros(bytes));
}

} // namespace

QString cleanTagText(const QString &text)
{
    return text.left(text.indexOf(QChar(u'\0'))).trimmed();
}

QString decodeId3Text(quint8 encoding, QByteArrayView bytes)
{
    switch (encoding) {
    case 0:
        return cleanTagText(QString::fromLatin1(withoutZeros(bytes)));
    case 1:
        return cleanTagText(decodeWide(QStringDecoder::Utf16, bytes));
    case 2:
        return cleanTagText(decodeWide(QStringDecoder::Utf16BE, bytes));
    default:
        return cleanTagText(QString::fromUtf8(withoutZeros(bytes)));
    }
}

QString yearOfDate(const QString &date)
{
    return date.left(4);
}

qint32 numberOrZero(const QString &text)
{
    return std::max(0, text.toInt());
}

qint32 trackNumber(const QString &text)
{
    return numberOrZero(text.left(text.indexOf(u'/')));
}

} // namespace epr
