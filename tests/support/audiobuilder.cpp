// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"

#include <algorithm>

namespace epr::test {

namespace {

constexpr char mpegHeader[] = { '\xFF', '\xFB', '\x90', 0 };

template <typename T> void put(QByteArray &bytes, qsizetype position, T value)
{
    qToLittleEndian(value, bytes.data() + position);
}

} // namespace

QByteArray syncsafe(quint32 value)
{
    return big<quint32>((value & 0x7F) | (value & 0x3F80) << 1 | (value & 0x1FC000) << 2 | (value & 0xFE00000) << 3);
}

QByteArray id3v2Frame(const QByteArray &identifier, const QByteArray &body, int version)
{
    const auto size = static_cast<quint32>(body.size());
    if (version == 2)
        return identifier + big(size).sliced(1) + body;
    return identifier + (version == 3 ? big(size) : syncsafe(size)) + QByteArray(2, '\0') + body;
}

QByteArray id3v2Text(const QByteArray &identifier, const QByteArray &text, int version)
{
    return id3v2Frame(identifier, QByteArray(1, '\0') + text, version);
}

QByteArray id3v2Tag(const QByteArray &body, int version, int flags)
{
    return "ID3" + QByteArray(1, char(version)) + QByteArray(1, '\0') + QByteArray(1, char(flags))
        + syncsafe(static_cast<quint32>(body.size())) + body;
}

QByteArray id3v1Tag(const QByteArray &title, const QByteArray &artist, quint8 track, quint8 genre)
{
    return "TAG" + title.leftJustified(30, '\0') + artist.leftJustified(30, '\0')
        + QByteArray("Album").leftJustified(30, ' ') + "1999" + QByteArray("not read").leftJustified(29, '\0')
        + big(track) + big(genre);
}

QByteArray apeTag(int flagsAt)
{
    const QByteArray items(100, 'i');
    QByteArray mark = "APETAGEX" + little<quint32>(2000) + QByteArray(20, '\0');
    put(mark, 12, static_cast<quint32>(items.size() + mark.size()));
    put(mark, flagsAt, quint32(0x80000000));
    return mark + items + mark;
}

QByteArray mpegAudio(qsizetype bytes)
{
    const QByteArray frame = QByteArray(mpegHeader, sizeof mpegHeader) + QByteArray(mpegFrameSize - 4, '\x55');
    return frame.repeated(bytes / mpegFrameSize + 1).left(bytes);
}

QByteArray mpegVbrFrame(qsizetype distance, const QByteArray &header)
{
    return mpegAudio(mpegFrameSize).replace(distance, header.size(), header);
}

QByteArray flacBlock(quint8 type, const QByteArray &body, bool last)
{
    return big<quint8>(type | (last ? 0x80 : 0)) + big(static_cast<quint32>(body.size())).sliced(1) + body;
}

QByteArray flacStreamInfo(quint64 sampleRate, quint64 channels, quint64 totalSamples)
{
    const quint64 sampleSize = 16 - 1;
    return QByteArray(10, '\0') + big(sampleRate << 44 | (channels - 1) << 41 | sampleSize << 36 | totalSamples)
        + QByteArray(16, '\0');
}

QByteArray vorbisComment(const QByteArrayList &comments)
{
    QByteArray bytes = little<quint32>(6) + "vendor" + little(static_cast<quint32>(comments.size()));
    for (const QByteArray &comment : comments)
        bytes += little(static_cast<quint32>(comment.size())) + comment;
    return bytes;
}

QByteArray vorbisIdentification(quint8 channels, quint32 sampleRate)
{
    return "\x01vorbis" + QByteArray(4, '\0') + big(channels) + little(sampleRate) + QByteArray(14, '\0');
}

QByteArray opusIdentification(quint8 channels, quint32 inputRate)
{
    return "OpusHead\x01" + big(channels) + little<quint16>(312) + little(inputRate) + QByteArray(3, '\0');
}

QByteArray oggPages(const QByteArrayList &packets, quint64 granule, quint32 serial, int maxSegments)
{
    QByteArray lacing;
    for (const QByteArray &packet : packets)
        lacing += QByteArray(packet.size() / 255, '\xFF') + char(packet.size() % 255);
    const QByteArray body = packets.join();

    QByteArray pages;
    qsizetype used = 0;
    qsizetype start = 0;
    do {
        const QByteArray table = lacing.mid(start, maxSegments);
        qsizetype size = 0;
        for (const char value : table)
            size += quint8(value);
        const bool continued = start > 0 && quint8(lacing[start - 1]) == 255;
        pages += QByteArray("OggS\0", 5) + char(continued) + little(granule) + little(serial) + QByteArray(8, '\0')
            + char(table.size()) + table + body.mid(used, size);
        used += size;
        start += maxSegments;
    } while (start < lacing.size());
    return pages;
}

QByteArray riffChunk(const QByteArray &id, const QByteArray &body)
{
    return id + little(static_cast<quint32>(body.size())) + body + QByteArray(body.size() % 2, '\0');
}

QByteArray waveFormat(quint16 channels, quint32 sampleRate, quint32 byteRate)
{
    return riffChunk(
        "fmt ", little<quint16>(1) + little(channels) + little(sampleRate) + little(byteRate) + QByteArray(4, '\0'));
}

QByteArray waveFile(const QByteArray &chunks)
{
    return riffChunk("RIFF", "WAVE" + chunks);
}

QByteArray formChunk(const QByteArray &id, const QByteArray &body)
{
    return id + big(static_cast<quint32>(body.size())) + body + QByteArray(body.size() % 2, '\0');
}

QByteArray aiffCommon(quint16 channels, quint32 frames, quint16 bits, quint16 exponent, quint64 mantissa)
{
    return formChunk("COMM", big(channels) + big(frames) + big(bits) + big(exponent) + big(mantissa));
}

QByteArray aiffFile(const QByteArray &chunks)
{
    return formChunk("FORM", "AIFF" + chunks);
}

QByteArray atom(const QByteArray &type, const QByteArray &body)
{
    return big(static_cast<quint32>(body.size() + 8)) + type + body;
}

QByteArray wideAtom(const QByteArray &type, const QByteArray &body)
{
    return big<quint32>(1) + type + big(static_cast<quint64>(body.size() + 16)) + body;
}

QByteArray movieHeader(quint32 timescale, quint32 duration)
{
    return atom("mvhd", QByteArray(12, '\0') + big(timescale) + big(duration) + QByteArray(80, '\0'));
}

QByteArray listItem(const QByteArray &type, const QByteArray &value)
{
    return atom(type, atom("data", QByteArray(8, '\0') + value));
}

QByteArray movie(const QByteArray &header, const QByteArray &items)
{
    return atom("moov", header + atom("udta", atom("meta", QByteArray(4, '\0') + atom("ilst", items))));
}

} // namespace epr::test
