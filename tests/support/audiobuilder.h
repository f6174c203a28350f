// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "temporarylibrary.h"

#include <QByteArrayList>

/// Builds audio files byte by byte. Every function returns the bytes of one structure; files are their concatenation.
namespace epr::test {

template <typename T> QByteArray big(T value)
{
    const T stored = qToBigEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&stored), sizeof stored);
}

/// Four bytes of seven bits.
inline QByteArray syncsafe(quint32 value)
{
    return big<quint32>((value & 0x7F) | (value & 0x3F80) << 1 | (value & 0x1FC000) << 2 | (value & 0xFE00000) << 3);
}

/// An ID3v2 frame; version is 2, 3 or 4 and decides the form of the header.
inline QByteArray frame(const QByteArray &identifier, const QByteArray &body, int version = 3)
{
    const auto size = static_cast<quint32>(body.size());
    if (version == 2)
        return identifier + big(size).sliced(1) + body;
    return identifier + (version == 3 ? big(size) : syncsafe(size)) + QByteArray(2, '\0') + body;
}

/// An ID3v2 text frame in Latin-1.
inline QByteArray text(const QByteArray &identifier, const QByteArray &text, int version = 3)
{
    return frame(identifier, QByteArray(1, '\0') + text, version);
}

inline QByteArray id3v2Tag(const QByteArray &body, char version = 3, char flags = 0)
{
    return QByteArray("ID3") + version + '\0' + flags + syncsafe(static_cast<quint32>(body.size())) + body;
}

/// 128 bytes; title and artist are padded with zeros, the album with spaces.
inline QByteArray id3v1Tag(const QByteArray &title, const QByteArray &artist, char track, char genre)
{
    return "TAG" + title.leftJustified(30, '\0') + artist.leftJustified(30, '\0')
        + QByteArray("Album").leftJustified(30) + "1999" + QByteArray("not read").leftJustified(29, '\0') + track
        + genre;
}

/// An APE tag with a header and 100 bytes of items. The flags stand at flagsAt in header and footer.
inline QByteArray apeTag(int flagsAt)
{
    const QByteArray mark = "APETAGEX" + little<quint32>(2000) + little<quint32>(132) + QByteArray(16, '\0');
    const QByteArray flagged = QByteArray(mark).replace(flagsAt, 4, little<quint32>(0x80000000));
    return flagged + QByteArray(100, 'i') + flagged;
}

/// MPEG 1 Layer III, 128 kbit/s, 44100 Hz, stereo: frames of 417 bytes and the beginning of one more.
inline QByteArray mpegAudio(qsizetype bytes)
{
    return (QByteArray("\xFF\xFB\x90\0", 4) + QByteArray(413, 'U')).repeated(bytes / 417 + 1).left(bytes);
}

inline QByteArray flacBlock(int type, const QByteArray &body, bool last = false)
{
    return char(type | (last ? 0x80 : 0)) + big(static_cast<quint32>(body.size())).sliced(1) + body;
}

inline QByteArray flacStreamInfo(quint64 sampleRate, quint64 channels, quint64 totalSamples)
{
    return QByteArray(10, '\0') + big(sampleRate << 44 | (channels - 1) << 41 | quint64(15) << 36 | totalSamples)
        + QByteArray(16, '\0');
}

inline QByteArray vorbisComment(const QByteArrayList &comments)
{
    QByteArray bytes = little<quint32>(6) + "vendor" + little(static_cast<quint32>(comments.size()));
    for (const QByteArray &comment : comments)
        bytes += little(static_cast<quint32>(comment.size())) + comment;
    return bytes;
}

inline QByteArray vorbisIdentification(char channels, quint32 sampleRate)
{
    return "\x01vorbis" + QByteArray(4, '\0') + channels + little(sampleRate) + QByteArray(14, '\0');
}

/// As few pages as hold the packets one after the other.
inline QByteArray oggPages(const QByteArrayList &packets, quint64 granule, quint32 serial = 1)
{
    QByteArray lacing;
    for (const QByteArray &packet : packets)
        lacing += QByteArray(packet.size() / 255, '\xFF') + char(packet.size() % 255);
    const QByteArray body = packets.join();
    QByteArray pages;
    qsizetype used = 0;
    for (bool continued = false; !lacing.isEmpty();) {
        const QByteArray table = lacing.left(255);
        qsizetype size = 0;
        for (const char value : table)
            size += quint8(value);
        pages += QByteArray("OggS\0", 5) + char(continued) + little(granule) + little(serial) + QByteArray(8, '\0')
            + char(table.size()) + table + body.mid(used, size);
        used += size;
        continued = table.back() == '\xFF';
        lacing.remove(0, table.size());
    }
    return pages;
}

/// 44.1 kHz, stereo, 16 bits.
inline QByteArray waveFormat()
{
    return riffChunk("fmt ", QByteArray("\1\0\2\0", 4) + little(44100) + little(176400) + QByteArray(4, '\0'));
}

/// A chunk of an AIFF file, or the file, with its pad byte.
inline QByteArray formChunk(const QByteArray &id, const QByteArray &body)
{
    return id + big(static_cast<quint32>(body.size())) + body + QByteArray(body.size() % 2, '\0');
}

inline QByteArray aiffCommon(quint16 channels, quint32 frames, quint16 bits, quint16 exponent, quint64 mantissa)
{
    return formChunk("COMM", big(channels) + big(frames) + big(bits) + big(exponent) + big(mantissa));
}

inline QByteArray atom(const QByteArray &type, const QByteArray &body)
{
    return big(static_cast<quint32>(body.size() + 8)) + type + body;
}

inline QByteArray movieHeader(quint32 timescale, quint32 duration)
{
    return atom("mvhd", QByteArray(12, '\0') + big(timescale) + big(duration) + QByteArray(80, '\0'));
}

inline QByteArray listItem(const QByteArray &type, const QByteArray &value)
{
    return atom(type, atom("data", QByteArray(8, '\0') + value));
}

/// A movie atom with a header and, under "udta" and "meta", the items.
inline QByteArray movie(const QByteArray &header, const QByteArray &items)
{
    return atom("moov", header + atom("udta", atom("meta", QByteArray(4, '\0') + atom("ilst", items))));
}

} // namespace epr::test
