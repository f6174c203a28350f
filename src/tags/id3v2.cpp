// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "id3v2.h"

#include "bytecursor.h"
#include "id3genres.h"
#include "readat.h"
#include "tagtext.h"

#include <QIODevice>

#include <algorithm>
#include <array>
#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 tagHeaderSize = 10;
constexpr qint64 maxTagSize = qint64(64) * 1024 * 1024;
constexpr quint8 extendedHeaderFlag = 0x40;
constexpr quint8 footerFlag = 0x10;

struct FrameField {
    QLatin1StringView identifier;
    QString Tags::*field;
};

constexpr std::array<FrameField, 10> textFields { {
    { "TIT2"_L1, &Tags::title },
    { "TT2"_L1, &Tags::title },
    { "TPE1"_L1, &Tags::artist },
    { "TP1"_L1, &Tags::artist },
    { "TALB"_L1, &Tags::album },
    { "TAL"_L1, &Tags::album },
    { "TPE2"_L1, &Tags::albumArtist },
    { "TP2"_L1, &Tags::albumArtist },
    { "COMM"_L1, &Tags::comment },
    { "COM"_L1, &Tags::comment },
} };

/// Four bytes of seven bits each.
quint32 syncsafe(quint32 raw)
{
    return (raw & 0x7F) | (raw >> 1 & 0x3F80) | (raw >> 2 & 0x1FC000) | (raw >> 3 & 0xFE00000);
}

/// Where the frames begin in the body, past an extended header; nothing when that cannot be read.
std::optional<qint64> firstFrame(QByteArrayView body, quint8 version, quint8 flags)
{
    if (!(flags & extendedHeaderFlag))
        return 0;
    ByteCursor cursor(body);
    const quint32 raw = cursor.u32be();
    if (!cursor.ok())
        return std::nullopt;
    // From version 4 the extended header's size counts its own four bytes.
    const qint64 start = version < 4 ? qint64(raw) + 4 : qint64(syncsafe(raw));
    return std::max<qint64>(start, 6);
}

qint64 frameSize(QByteArrayView header, quint8 version)
{
    ByteCursor cursor(header);
    if (version < 3)
        return cursor.at(3).u24be();
    const quint32 raw = cursor.at(4).u32be();
    return version == 3 ? raw : syncsafe(raw);
}

void applyCommentFrame(QByteArrayView frame, ProbeResult &result)
{
    constexpr qsizetype encodingAndLanguage = 4;
    const auto encoding = static_cast<quint8>(frame.front());
    QByteArrayView text = frame.sliced(encodingAndLanguage);
    // The terminator of a wide descriptor is looked for at odd positions too. Descriptors are nearly always empty,
    // and then the first pair found is the right one.
    const bool wide = encoding == 1 || encoding == 2;
    const QByteArrayView terminator("\0\0", wide ? 2 : 1);
    const qsizetype found = text.indexOf(terminator);
    if (found >= 0)
        text = text.sliced(found + terminator.size());
    applyId3Frame(result, u"COMM"_s, decodeId3Text(encoding, text));
}

void applyFrame(const QString &identifier, QByteArrayView frame, ProbeResult &result)
{
    if (identifier.startsWith(u'T') && frame.size() >= 2)
        applyId3Frame(result, identifier, decodeId3Text(static_cast<quint8>(frame.front()), frame.sliced(1)));
    else if (identifier.startsWith("COM"_L1) && frame.size() > 4)
        applyCommentFrame(frame, result);
}

/// "(17)Rock" and "17" name genre 17; anything that is not a known number stays as written.
QString resolveGenre(const QString &text)
{
    const QString genre = text.trimmed();
    QString number = genre;
    const qsizetype closing = genre.indexOf(u')');
    if (genre.startsWith(u'(') && closing > 0)
        number = genre.mid(1, closing - 1);
    bool isNumber = false;
    const QString name = id3Genre(number.toInt(&isNumber));
    return isNumber && !name.isEmpty() ? name : genre;
}

} // namespace

void applyId3Frame(ProbeResult &result, const QString &identifier, const QString &text)
{
    if (text.isEmpty())
        return;
    const QString id = identifier.toUpper();
    if (id == "TCON"_L1 || id == "TCO"_L1)
        result.tags.genre = resolveGenre(text);
    else if (id == "TRCK"_L1 || id == "TRK"_L1)
        result.tags.trackNo = trackNumber(text);
    else if (id == "TYER"_L1 || id == "TDRC"_L1 || id == "TDRL"_L1 || id == "TYE"_L1)
        result.tags.year = yearOfDate(text);
    else if (const auto entry = std::find_if(textFields.begin(), textFields.end(),
                                             [&](const FrameField &field) { return field.identifier == id; });
             entry != textFields.end())
        result.tags.*entry->field = text;
}

void walkId3v2Frames(QByteArrayView body, quint8 version, quint8 flags, ProbeResult &result)
{
    const std::optional<qint64> start = firstFrame(body, version, flags);
    if (!start)
        return;
    const qsizetype identifierSize = version < 3 ? 3 : 4;
    const qsizetype headerSize = version < 3 ? 6 : 10;
    ByteCursor cursor(body);
    cursor.skip(*start);
    while (cursor.remaining() >= headerSize) {
        const QByteArrayView header = cursor.take(headerSize);
        if (header.front() == 0)
            return; // padding
        const QByteArrayView frame = cursor.take(frameSize(header, version));
        if (frame.isEmpty())
            return; // of no size, or it would end past the body
        applyFrame(QString::fromLatin1(header.first(identifierSize)).toUpper(), frame, result);
    }
}

qint64 readId3v2(QIODevice &device, ProbeResult &result)
{
    const QByteArray header = readAt(device, 0, tagHeaderSize);
    if (header.size() < tagHeaderSize || !header.startsWith("ID3"))
        return 0;
    ByteCursor cursor(header);
    const quint8 version = cursor.at(3).u8();
    const quint8 flags = cursor.at(5).u8();
    const qint64 size = syncsafe(cursor.u32be());
    if (size >= 1 && size <= maxTagSize)
        walkId3v2Frames(readAt(device, tagHeaderSize, size), version, flags, result);
    return tagHeaderSize + size + (flags & footerFlag ? tagHeaderSize : 0);
}

} // namespace epr
