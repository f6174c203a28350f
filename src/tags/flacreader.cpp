// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filebytes.h"
#include "readers.h"

#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 blockHeaderSize = 4;
constexpr qint64 streamInfoSize = 18; ///< up to and with the sample count; the MD5 sum behind it is not needed
constexpr qint64 maxCommentSize = 8388607;

enum BlockType : quint8 {
    StreamInfo = 0,
    VorbisComment = 4,
};

struct Block {
    quint8 type = 0;
    bool last = false;
    qint64 start = 0; ///< of the body
    qint64 length = 0;
};

std::optional<Block> readBlockHeader(QIODevice &device, qint64 position)
{
    const QByteArray header = readAt(device, position, blockHeaderSize);
    if (header.size() < blockHeaderSize)
        return std::nullopt;
    ByteCursor cursor(header);
    Block block;
    const quint8 first = cursor.u8();
    block.type = first & 0x7F;
    block.last = first & 0x80;
    block.start = position + blockHeaderSize;
    block.length = cursor.u24be();
    return block;
}

void readStreamInfo(QIODevice &device, const Block &block, ProbeResult &result, quint64 &totalSamples)
{
    const QByteArray body = readAt(device, block.start, streamInfoSize);
    if (body.size() < streamInfoSize)
        return;
    // 20 bits of sample rate, 3 of channels, 5 of sample size, 36 of total samples.
    const quint64 packed = ByteCursor(body).at(10).u64be();
    result.stream.sampleRate = static_cast<qint32>(packed >> 44);
    result.stream.channels = static_cast<qint32>(packed >> 41 & 7) + 1;
    totalSamples = packed & 0xFFFFFFFFF;
}

void finish(qint64 audioStart, qint64 fileSize, quint64 totalSamples, ProbeResult &result)
{
    result.setPayload(audioStart, fileSize);
    if (result.stream.sampleRate > 0)
        result.stream.durationMs = mulDiv(totalSamples, 1000, static_cast<quint64>(result.stream.sampleRate));
    result.stream.bitrateKbps = averageKbps(result.audioLength, result.stream.durationMs);
}

constexpr TagField commentFields[] {
    { "TITLE"_L1, storeText<&Tags::title> },     { "ARTIST"_L1, storeText<&Tags::artist> },
    { "ALBUM"_L1, storeText<&Tags::album> },     { "ALBUMARTIST"_L1, storeText<&Tags::albumArtist> },
    { "GENRE"_L1, storeText<&Tags::genre> },     { "DATE"_L1, storeYear },
    { "COMMENT"_L1, storeText<&Tags::comment> }, { "DESCRIPTION"_L1, storeText<&Tags::comment> },
    { "TRACKNUMBER"_L1, storeTrackOfTotal },
};

constexpr qsizetype longestKey = 11;
constexpr qsizetype longestKeyBytes = 3 * longestKey; // what has a capital in ASCII takes three bytes at most

/// "KEY=value". The values of keys longer than any known one are not read: they are cover art more often than not.
void applyComment(QByteArrayView comment, Tags &tags)
{
    const qsizetype equals = comment.indexOf('=');
    if (equals < 1 || equals > longestKeyBytes)
        return;
    const QString key = QString::fromUtf8(comment.first(equals)).toUpper();
    if (key.size() > longestKey)
        return;
    const QString value = cleanTagText(utf8Text(comment.sliced(equals + 1)));
    if (!value.isEmpty())
        storeTag(commentFields, key, value, tags);
}

} // namespace

void readVorbisComment(QByteArrayView bytes, Tags &tags)
{
    ByteCursor cursor(bytes);
    cursor.skip(cursor.u32le()); // vendor
    // The count may claim four thousand million; every comment takes four bytes at the least.
    for (quint32 left = cursor.u32le(); left > 0 && cursor.ok(); --left)
        applyComment(cursor.take(cursor.u32le()), tags);
}

bool readFlac(QIODevice &device, ProbeResult &result)
{
    if (readAt(device, 0, 4) != "fLaC")
        return false;
    quint64 totalSamples = 0;
    qint64 position = 4;
    for (int count = 0; count < maxBlocks; ++count) {
        const std::optional<Block> block = readBlockHeader(device, position);
        if (!block)
            return false;
        if (block->type == StreamInfo && block->length >= streamInfoSize)
            readStreamInfo(device, *block, result, totalSamples);
        else if (block->type == VorbisComment && block->length <= maxCommentSize)
            readVorbisComment(readAt(device, block->start, block->length), result.tags);
        position = block->start + block->length;
        if (block->last) {
            finish(position, device.size(), totalSamples, result);
            return true;
        }
    }
    return false;
}

} // namespace epr
