// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "aiffreader.h"

#include "bytecursor.h"
#include "checkedmath.h"
#include "chunkwalk.h"
#include "readat.h"
#include "tagtext.h"

#include <QIODevice>

#include <algorithm>
#include <limits>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 commonSize = 18;
constexpr quint32 maxTextSize = 4095;
constexpr qint64 soundHeaderSize = 8; ///< the chunk's own offset and block size

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

void readSound(const Chunk &chunk, ProbeResult &result)
{
    result.audioOffset = chunk.body + soundHeaderSize;
    result.audioLength = std::max<qint64>(chunk.size - soundHeaderSize, 0);
    result.audioRangeValid = result.audioLength > 0;
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

bool readAiff(QIODevice &device, ProbeResult &result)
{
    result.format = u"AIFF"_s;
    const QByteArray header = readAt(device, 0, 12);
    if (header.size() < 12 || !header.startsWith("FORM"))
        return false;
    CommonChunk common;
    walkChunks(device, QSysInfo::BigEndian, [&](const Chunk &chunk) {
        if (chunk.overruns)
            return;
        if (chunk.id == "COMM" && chunk.size >= commonSize)
            readCommon(device, chunk, common, result);
        else if (chunk.id == "SSND")
            readSound(chunk, result);
        else if (chunk.id == "NAME" && chunk.size <= maxTextSize)
            result.tags.title = readText(device, chunk);
        else if (chunk.id == "AUTH" && chunk.size <= maxTextSize)
            result.tags.artist = readText(device, chunk);
    });
    setDuration(common, result);
    return result.stream.durationMs > 0;
}

} // namespace epr
