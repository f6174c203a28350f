// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers.h"

#include "filebytes.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 id3v1Size = 128; ///< bytes, at the very end of a file
constexpr qint64 tagHeaderSize = 10;
constexpr qint64 maxTagSize = qint64(64) * 1024 * 1024;
constexpr qint64 maxFrameSize = maxTextBytes + 4096; ///< with a comment's language and description
constexpr quint8 extendedHeaderFlag = 0x40;
constexpr quint8 footerFlag = 0x10;

constexpr std::array<QLatin1StringView, 84> genres {
    "Blues"_L1,
    "Classic Rock"_L1,
    "Country"_L1,
    "Dance"_L1,
    "Disco"_L1,
    "Funk"_L1,
    "Grunge"_L1,
    "Hip-Hop"_L1,
    "Jazz"_L1,
    "Metal"_L1,
    "New Age"_L1,
    "Oldies"_L1,
    "Other"_L1,
    "Pop"_L1,
    "R&B"_L1,
    "Rap"_L1,
    "Reggae"_L1,
    "Rock"_L1,
    "Techno"_L1,
    "Industrial"_L1,
    "Alternative"_L1,
    "Ska"_L1,
    "Death Metal"_L1,
    "Pranks"_L1,
    "Soundtrack"_L1,
    "Euro-Techno"_L1,
    "Ambient"_L1,
    "Trip-Hop"_L1,
    "Vocal"_L1,
    "Jazz+Funk"_L1,
    "Fusion"_L1,
    "Trance"_L1,
    "Classical"_L1,
    "Instrumental"_L1,
    "Acid"_L1,
    "House"_L1,
    "Game"_L1,
    "Sound Clip"_L1,
    "Gospel"_L1,
    "Noise"_L1,
    "Alt. Rock"_L1,
    "Bass"_L1,
    "Soul"_L1,
    "Punk"_L1,
    "Space"_L1,
    "Meditative"_L1,
    "Instrumental Pop"_L1,
    "Instrumental Rock"_L1,
    "Ethnic"_L1,
    "Gothic"_L1,
    "Darkwave"_L1,
    "Techno-Industrial"_L1,
    "Electronic"_L1,
    "Pop-Folk"_L1,
    "Eurodance"_L1,
    "Dream"_L1,
    "Southern Rock"_L1,
    "Comedy"_L1,
    "Cult"_L1,
    "Gangsta Rap"_L1,
    "Top 40"_L1,
    "Christian Rap"_L1,
    "Pop/Funk"_L1,
    "Jungle"_L1,
    "Native American"_L1,
    "Cabaret"_L1,
    "New Wave"_L1,
    "Psychedelic"_L1,
    "Rave"_L1,
    "Showtunes"_L1,
    "Trailer"_L1,
    "Lo-Fi"_L1,
    "Tribal"_L1,
    "Acid Punk"_L1,
    "Acid Jazz"_L1,
    "Polka"_L1,
    "Retro"_L1,
    "Musical"_L1,
    "Rock & Roll"_L1,
    "Hard Rock"_L1,
    "Folk"_L1,
    "Folk/Rock"_L1,
    "National Folk"_L1,
    "Swing"_L1,
};

/// "(17)Rock" and "17" name genre 17; anything that is not a known number stays as written.
void storeGenre(Tags &tags, const QString &text)
{
    const QString genre = text.trimmed();
    QString number = genre;
    const qsizetype closing = genre.indexOf(u')');
    if (genre.startsWith(u'(') && closing > 0)
        number = genre.mid(1, closing - 1);
    bool isNumber = false;
    const QString name = id3Genre(number.toInt(&isNumber));
    tags.genre = isNumber && !name.isEmpty() ? name : genre;
}

constexpr TagField frameFields[] {
    { "TIT2"_L1, storeText<&Tags::title> },
    { "TT2"_L1, storeText<&Tags::title> },
    { "TPE1"_L1, storeText<&Tags::artist> },
    { "TP1"_L1, storeText<&Tags::artist> },
    { "TALB"_L1, storeText<&Tags::album> },
    { "TAL"_L1, storeText<&Tags::album> },
    { "TPE2"_L1, storeText<&Tags::albumArtist> },
    { "TP2"_L1, storeText<&Tags::albumArtist> },
    { "TCON"_L1, storeGenre },
    { "TCO"_L1, storeGenre },
    { "COMM"_L1, storeText<&Tags::comment> },
    { "COM"_L1, storeText<&Tags::comment> },
    { "TRCK"_L1, storeTrackOfTotal },
    { "TRK"_L1, storeTrackOfTotal },
    { "TYER"_L1, storeYear },
    { "TDRC"_L1, storeYear },
    { "TDRL"_L1, storeYear },
    { "TYE"_L1, storeYear },
};

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
    QString text = decoder(withoutWideZeros(bytes.first(std::min(bytes.size(), maxTextBytes))));
    if (bytes.size() > maxTextBytes && !text.isEmpty() && text.back().isHighSurrogate())
        text.chop(1); // the cut went through a character
    return text;
}

/// Clean text from the bytes of a text field. encoding: 0 Latin-1, 1 UTF-16 with byte-order mark, 2 UTF-16 big-endian,
/// anything else UTF-8.
QString decodeId3Text(quint8 encoding, QByteArrayView bytes)
{
    switch (encoding) {
    case 0:
        return cleanTagText(QString::fromLatin1(withoutZeros(bytes.first(std::min(bytes.size(), maxTextBytes)))));
    case 1:
        return cleanTagText(decodeWide(QStringDecoder::Utf16, bytes));
    case 2:
        return cleanTagText(decodeWide(QStringDecoder::Utf16BE, bytes));
    default:
        return cleanTagText(utf8Text(withoutZeros(bytes)));
    }
}

/// Stores the text of a frame (three- or four-letter identifier in upper case) unless it is empty.
void applyId3Frame(Tags &tags, const QString &identifier, const QString &text)
{
    if (!text.isEmpty())
        storeTag(frameFields, identifier, text, tags);
}

/// Four bytes of seven bits each.
quint32 syncsafe(quint32 raw)
{
    return (raw & 0x7F) | (raw >> 1 & 0x3F80) | (raw >> 2 & 0x1FC000) | (raw >> 3 & 0xFE00000);
}

/// Where the frames begin in the body, past an extended header.
qint64 firstFrame(QIODevice &device, quint8 version, quint8 flags)
{
    if (!(flags & extendedHeaderFlag))
        return 0;
    const QByteArray size = readAt(device, tagHeaderSize, 4);
    const quint32 raw = ByteCursor(size).u32be();
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

void applyCommentFrame(QByteArrayView frame, Tags &tags)
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
    applyId3Frame(tags, u"COMM"_s, decodeId3Text(encoding, text));
}

void applyFrame(const QString &identifier, QByteArrayView frame, Tags &tags)
{
    if (identifier.startsWith(u'T') && frame.size() >= 2)
        applyId3Frame(tags, identifier, decodeId3Text(static_cast<quint8>(frame.front()), frame.sliced(1)));
    else if (identifier.startsWith("COM"_L1) && frame.size() > 4)
        applyCommentFrame(frame, tags);
}

/// Walks the frames of a tag that ends at end; version and flags are those of its header. Only texts are read, not the
/// pictures between them.
void walkId3v2Frames(QIODevice &device, qint64 end, quint8 version, quint8 flags, Tags &tags)
{
    const qsizetype identifierSize = version < 3 ? 3 : 4;
    const qint64 headerSize = version < 3 ? 6 : 10;
    qint64 position = tagHeaderSize + firstFrame(device, version, flags);
    for (int count = 0; count < maxBlocks && end - position >= headerSize; ++count) {
        const QByteArray header = readAt(device, position, headerSize);
        if (header.size() < headerSize || header.front() == 0)
            return; // padding
        const qint64 size = frameSize(header, version);
        position += headerSize;
        if (size == 0 || size > end - position)
            return;
        const QString identifier = QString::fromLatin1(header.first(identifierSize)).toUpper();
        if (identifier.startsWith(u'T') || identifier.startsWith("COM"_L1))
            applyFrame(identifier, readAt(device, position, std::min(size, maxFrameSize)), tags);
        position += size;
    }
}

void fillText(QString &field, QByteArrayView bytes)
{
    if (field.isEmpty())
        field = cleanTagText(QString::fromLatin1(bytes));
}

} // namespace

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
        walkId3v2Frames(device, std::min(tagHeaderSize + size, device.size()), version, flags, result.tags);
    return tagHeaderSize + size + (flags & footerFlag ? tagHeaderSize : 0);
}

qint64 readId3v1(QIODevice &device, ProbeResult &result)
{
    const qint64 size = device.size();
    const QByteArray tag = size > id3v1Size ? readAt(device, size - id3v1Size, id3v1Size) : QByteArray();
    if (tag.size() != id3v1Size || !tag.startsWith("TAG"))
        return 0;
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
    return id3v1Size;
}

QString id3Genre(int number)
{
    if (number < 0 || number >= static_cast<int>(genres.size()))
        return {};
    return genres[static_cast<std::size_t>(number)];
}

} // namespace epr
