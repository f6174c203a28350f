// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filebytes.h"
#include "readers.h"

#include <QSysInfo>

#include <functional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 containerHeaderSize = 12;
constexpr qint64 chunkHeaderSize = 8;
constexpr quint32 formatSize = 16;
constexpr quint32 minListSize = 5;
constexpr quint32 maxListSize = 1048575;
constexpr quint32 commonSize = 18;
constexpr quint32 maxTextSize = 4095;
constexpr qint64 soundHeaderSize = 8; ///< the chunk's own offset and block size

constexpr TagField infoFields[] {
    { "INAM"_L1, storeText<&Tags::title> },
    { "IART"_L1, storeText<&Tags::artist> },
    { "IPRD"_L1, storeText<&Tags::album> },
    { "ICRD"_L1, storeYear },
    { "IGNR"_L1, storeText<&Tags::genre> },
    { "ICMT"_L1, storeText<&Tags::comment> },
    { "ITRK"_L1, storeTrack },
};

struct Chunk {
    QByteArray id; ///< four bytes
    quint32 size = 0; ///< as declared, of the body
    qint64 body = 0; ///< offset of the body in the file
    bool overruns = false; ///< the body would end past the file
};

/// Visits the chunks of a RIFF (little-endian) or FORM (big-endian) file. One that overruns is visited and ends the
/// walk; a single byte of overrun is the missing pad byte of the last chunk and does not count.
void walkChunks(QIODevice &device, QSysInfo::Endian endian, const std::function<void(const Chunk &chunk)> &visit)
{
    const qint64 fileSize = device.size();
    qint64 position = containerHeaderSize;
    for (int count = 0; count < maxBlocks && position + chunkHeaderSize <= fileSize; ++count) {
        const QByteArray header = readAt(device, position, chunkHeaderSize);
        if (header.size() < chunkHeaderSize)
            return;
        ByteCursor cursor(header);
        Chunk chunk;
        chunk.id = cursor.take(4).toByteArray();
        chunk.size = endian == QSysInfo::BigEndian ? cursor.u32be() : cursor.u32le();
        chunk.body = position + chunkHeaderSize;
        chunk.overruns = chunk.body + chunk.size > fileSize + 1;
        visit(chunk);
        if (chunk.overruns)
            return;
        position = chunk.body + chunk.size + (chunk.size & 1);
    }
}

/// Nothing changes when the chunk is cut off: an earlier one may have been whole.
void readFormat(QIODevice &device, const Chunk &chunk, quint32 &byteRate, ProbeResult &result)
{
    const QByteArray body = readAt(device, chunk.body, formatSize);
    if (body.size() < qsizetype(formatSize))
        return;
    ByteCursor cursor(body);
    result.stream.channels = cursor.at(2).u16le();
    result.stream.sampleRate = int32OrZero(cursor.u32le());
    byteRate = cursor.u32le();
}

/// A size beyond the file is what a recorder leaves that was stopped hard, and what a writer into a pipe puts down:
/// the audio that is there counts.
void readData(const Chunk &chunk, qint64 fileSize, quint32 byteRate, ProbeResult &result)
{
    result.setPayload(chunk.body, std::min(chunk.body + chunk.size, fileSize));
    if (byteRate != 0)
        result.stream.durationMs = mulDiv(static_cast<quint64>(result.audioLength), 1000, byteRate);
}

void readList(QIODevice &device, const Chunk &chunk, Tags &tags)
{
    const QByteArray body = readAt(device, chunk.body, chunk.size);
    if (body.size() < 12 || !body.startsWith("INFO"))
        return;
    ByteCursor cursor(body);
    cursor.skip(4);
    while (cursor.remaining() >= 8) {
        const QByteArrayView id = cursor.take(4);
        const quint32 size = cursor.u32le();
        const QByteArrayView value = cursor.take(size);
        if (!cursor.ok())
            return;
        if (const QString text = cleanTagText(QString::fromLatin1(value)); !text.isEmpty())
            storeTag(infoFields, QString::fromLatin1(id), text, tags);
        cursor.skip(size & 1);
    }
}

struct CommonChunk {
    quint32 frames = 0;
    quint16 bitsPerSample = 16;
};

/// The whole part of an IEEE 754 80-bit extended value: mantissa * 2^(exponent - 16446), the sign ignored. 0 when it
/// does not fit.
qint32 wholeOfExtended(quint16 signAndExponent, quint64 mantissa)
{
    const int shift = 16446 - (signAndExponent & 0x7FFF);
    if (shift >= 64)
        return 0;
    if (shift >= 0)
        return int32OrZero(mantissa >> shift);
    // Only a mantissa that is not normalised can still be small enough.
    constexpr quint64 limit = static_cast<quint64>(std::numeric_limits<qint32>::max());
    return shift <= -32 || mantissa > limit >> -shift ? 0 : int32OrZero(mantissa << -shift);
}

void readCommon(QIODevice &device, const Chunk &chunk, CommonChunk &common, ProbeResult &result)
{
    const QByteArray body = readAt(device, chunk.body, commonSize);
    if (body.size() < qsizetype(commonSize))
        return;
    ByteCursor cursor(body);
    result.stream.channels = cursor.u16be();
    common.frames = cursor.u32be();
    common.bitsPerSample = cursor.u16be();
    const quint16 signAndExponent = cursor.u16be();
    result.stream.sampleRate = wholeOfExtended(signAndExponent, cursor.u64be());
}

QString readText(QIODevice &device, const Chunk &chunk)
{
    return cleanTagText(QString::fromLatin1(readAt(device, chunk.body, chunk.size)));
}

void setDuration(const CommonChunk &common, ProbeResult &result)
{
    if (common.frames == 0 || result.stream.sampleRate < 1)
        return;
    const auto rate = static_cast<quint64>(result.stream.sampleRate);
    result.stream.durationMs = mulDiv(common.frames, 1000, rate);
    const quint64 bitsPerSecond = rate * static_cast<quint64>(result.stream.channels) * common.bitsPerSample;
    if (bitsPerSecond <= std::numeric_limits<quint32>::max())
        result.stream.bitrateKbps = int32OrZero(bitsPerSecond / 1000);
}

} // namespace

bool readWave(QIODevice &device, ProbeResult &result)
{
    const QByteArray header = readAt(device, 0, containerHeaderSize);
    if (header.size() < containerHeaderSize || !header.startsWith("RIFF") || !header.endsWith("WAVE"))
        return false;
    quint32 byteRate = 0;
    walkChunks(device, QSysInfo::LittleEndian, [&](const Chunk &chunk) {
        if (chunk.id == "data")
            readData(chunk, device.size(), byteRate, result);
        else if (chunk.overruns)
            return;
        else if (chunk.id == "fmt " && chunk.size >= formatSize)
            readFormat(device, chunk, byteRate, result);
        else if (chunk.id == "LIST" && chunk.size >= minListSize && chunk.size <= maxListSize)
            readList(device, chunk, result.tags);
    });
    result.stream.bitrateKbps = int32OrZero(static_cast<quint64>(byteRate) * 8 / 1000);
    return result.audioRangeValid;
}

bool readAiff(QIODevice &device, ProbeResult &result)
{
    const QByteArray header = readAt(device, 0, containerHeaderSize);
    if (header.size() < containerHeaderSize || !header.startsWith("FORM"))
        return false;
    CommonChunk common;
    walkChunks(device, QSysInfo::BigEndian, [&](const Chunk &chunk) {
        if (chunk.overruns)
            return;
        if (chunk.id == "COMM" && chunk.size >= commonSize)
            readCommon(device, chunk, common, result);
        else if (chunk.id == "SSND")
            result.setPayload(chunk.body + soundHeaderSize, chunk.body + chunk.size);
        else if (chunk.id == "NAME" && chunk.size <= maxTextSize)
            result.tags.title = readText(device, chunk);
        else if (chunk.id == "AUTH" && chunk.size <= maxTextSize)
            result.tags.artist = readText(device, chunk);
    });
    setDuration(common, result);
    return result.stream.durationMs > 0;
}

} // namespace epr
