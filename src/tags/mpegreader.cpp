// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filebytes.h"
#include "readers.h"

#include <array>

namespace epr {

namespace {

constexpr qint64 syncSearchSize = 262144;
constexpr qint64 firstSearchSize = 8192; ///< nearly always enough, and nearly always read already
constexpr qsizetype vbrInfoSize = 64; ///< from the frame's start, with all that is read of it
constexpr qint64 apeFooterSize = 32;
constexpr qsizetype vbriDistance = 36; ///< from the frame's start, whatever its side information takes

/// The four bytes that start an MPEG audio frame (ISO/IEC 11172-3 and 13818-3).
struct MpegFrameHeader {
    bool valid = false;
    int versionId = 0; ///< the two-bit field: 0 = MPEG 2.5, 2 = MPEG 2, 3 = MPEG 1
    int layer = 0; ///< 1 to 3
    int bitrateKbps = 0; ///< 0 in a free-format frame
    int sampleRate = 0; ///< Hz
    int channels = 0;
    int frameLength = 0; ///< bytes with the header; 0 in a free-format frame
    int samplesPerFrame = 0;
    int sideInfoLength = 0; ///< bytes; the Layer III figure, whatever the layer
    bool freeFormat = false;
};

constexpr int mpeg1 = 3;
constexpr int reservedVersion = 1;

using BitrateRow = std::array<int, 15>;

/// kbit/s by bit-rate index: MPEG 1 Layers I to III, then MPEG 2 and 2.5 Layers I to III.
constexpr std::array<BitrateRow, 6> bitrates { {
    { 0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448 },
    { 0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384 },
    { 0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320 },
    { 0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256 },
    { 0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160 },
    { 0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160 },
} };

/// Hz, three per version id; version id 1 is reserved.
constexpr std::array<int, 12> sampleRates { 11025, 12000, 8000, 0, 0, 0, 22050, 24000, 16000, 44100, 48000, 32000 };

int bitrateOf(int versionId, int layer, int index)
{
    const int row = (versionId == mpeg1 ? 0 : 3) + layer - 1;
    return bitrates[static_cast<std::size_t>(row)][static_cast<std::size_t>(index)];
}

/// A frame holds samplesPerFrame / 8 bytes per kbit/s and kHz; Layer I counts in slots of four bytes.
void setFrameSize(MpegFrameHeader &header, int padding)
{
    const int slotBytes = header.layer == 1 ? 4 : 1;
    header.samplesPerFrame = header.layer == 1 ? 384 : header.layer == 3 && header.versionId != mpeg1 ? 576 : 1152;
    if (header.freeFormat)
        return;
    const int slotsPerSecond = header.samplesPerFrame / 8 / slotBytes * 1000;
    header.frameLength = (slotsPerSecond * header.bitrateKbps / header.sampleRate + padding) * slotBytes;
}

/// Parses the first four bytes; not valid when there are fewer or they are no frame header.
MpegFrameHeader parseMpegFrameHeader(QByteArrayView bytes)
{
    if (bytes.size() < 4 || quint8(bytes[0]) != 0xFF || (quint8(bytes[1]) & 0xE0) != 0xE0)
        return {};
    const int versionId = quint8(bytes[1]) >> 3 & 3;
    const int layerBits = quint8(bytes[1]) >> 1 & 3;
    const int bitrateIndex = quint8(bytes[2]) >> 4;
    const int sampleRateIndex = quint8(bytes[2]) >> 2 & 3;
    if (versionId == reservedVersion || layerBits == 0 || bitrateIndex == 15 || sampleRateIndex == 3)
        return {};

    MpegFrameHeader header;
    header.valid = true;
    header.versionId = versionId;
    header.layer = 4 - layerBits;
    header.freeFormat = bitrateIndex == 0;
    header.bitrateKbps = bitrateOf(versionId, header.layer, bitrateIndex);
    header.sampleRate =
        sampleRates[static_cast<std::size_t>(versionId) * 3 + static_cast<std::size_t>(sampleRateIndex)];
    header.channels = quint8(bytes[3]) >> 6 == 3 ? 1 : 2;
    const bool mono = header.channels == 1;
    header.sideInfoLength = versionId == mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    setFrameSize(header, quint8(bytes[2]) >> 1 & 1);
    return header;
}

struct VbrInfo {
    bool found = false;
    quint32 frames = 0;
    quint32 bytes = 0;
};

/// Bytes of the APE tag whose footer this is, with its items and its header; 0 when it is none.
qint64 apeTagSize(QByteArrayView footer)
{
    constexpr quint32 hasHeader = 0x80000000;
    if (footer.size() < apeFooterSize || !footer.startsWith("APETAGEX"))
        return 0;
    ByteCursor cursor(footer);
    const qint64 size = cursor.at(12).u32le(); // items and footer
    // The bit counts in the item count's place as well: no tag has 2^31 items, so there it can only be the flags.
    const quint32 itemCount = cursor.u32le();
    const quint32 flags = cursor.u32le();
    return size + ((itemCount | flags) & hasHeader ? apeFooterSize : 0);
}

/// Applies an ID3v1 tag and measures it together with an APE tag in front of it.
qint64 readTrailingTags(QIODevice &device, ProbeResult &result)
{
    const qint64 id3 = readId3v1(device, result);
    const qint64 end = device.size() - id3;
    const qint64 ape = end > apeFooterSize ? apeTagSize(readAt(device, end - apeFooterSize, apeFooterSize)) : 0;
    return id3 + ape;
}

/// A header counts when the frame it starts is followed by another one, as far as the buffer can tell.
bool isFrameStart(QByteArrayView buffer, qsizetype position)
{
    const MpegFrameHeader header = parseMpegFrameHeader(buffer.sliced(position));
    if (!header.valid)
        return false;
    const qsizetype next = position + header.frameLength;
    return header.frameLength < 1 || next + 4 > buffer.size() || parseMpegFrameHeader(buffer.sliced(next)).valid;
}

/// Whether the frames from there on change the bit rate, as far as the bytes go.
bool changesBitrate(QByteArrayView bytes, const MpegFrameHeader &first)
{
    while (bytes.size() >= 4) {
        const MpegFrameHeader header = parseMpegFrameHeader(bytes);
        if (header.versionId != first.versionId || header.layer != first.layer || header.sampleRate != first.sampleRate)
            return false;
        if (header.bitrateKbps != first.bitrateKbps)
            return true;
        bytes = bytes.sliced(std::min<qsizetype>(header.frameLength, bytes.size()));
    }
    return false;
}

/// Position of the first frame; -1 when there is none.
qsizetype findFrame(QByteArrayView buffer)
{
    for (qsizetype position = 0; position + 4 <= buffer.size(); ++position) {
        if (isFrameStart(buffer, position))
            return position;
    }
    return -1;
}

/// Whether more bytes behind the buffer could tell anything else of a frame there.
bool isSettled(QByteArrayView buffer, qsizetype position)
{
    if (position < 0)
        return false;
    const int length = parseMpegFrameHeader(buffer.sliced(position)).frameLength;
    return std::max<qsizetype>(length + 4, vbrInfoSize) <= buffer.size() - position;
}

/// frame is the buffer from the first frame on.
VbrInfo readXing(QByteArrayView frame, const MpegFrameHeader &header)
{
    const qsizetype mark = 4 + header.sideInfoLength;
    VbrInfo info;
    if (mark + 16 > frame.size())
        return info;
    ByteCursor cursor(frame.sliced(mark));
    const QByteArrayView name = cursor.take(4);
    if (name != "Xing" && name != "Info")
        return info;
    info.found = true;
    const quint32 flags = cursor.u32be();
    if (flags & 1)
        info.frames = cursor.u32be();
    if (flags & 2)
        info.bytes = cursor.u32be();
    return info;
}

VbrInfo readVbri(QByteArrayView frame)
{
    VbrInfo info;
    if (frame.size() < vbriDistance + 26)
        return info;
    ByteCursor cursor(frame.sliced(vbriDistance));
    if (cursor.take(4) != "VBRI")
        return info;
    info.found = true;
    info.bytes = cursor.at(10).u32be();
    info.frames = cursor.u32be();
    return info;
}

VbrInfo readVbrInfo(QByteArrayView frame, const MpegFrameHeader &header)
{
    const VbrInfo xing = readXing(frame, header);
    if (xing.frames != 0)
        return xing;
    const VbrInfo vbri = readVbri(frame);
    return vbri.found ? vbri : xing;
}

/// Without a count of the frames the duration follows from the first one's bit rate. That is right if the others have
/// it too, of which some at the start and in the middle are looked at: a file may begin with a long silence.
bool isGuess(QIODevice &device, QByteArrayView frames, const MpegFrameHeader &first, const ProbeResult &result)
{
    if (changesBitrate(frames, first))
        return true;
    if (result.audioLength <= 2 * frames.size())
        return false;
    const QByteArray middle = readAt(device, result.audioOffset + result.audioLength / 2, firstSearchSize);
    const qsizetype position = findFrame(middle);
    return position >= 0 && changesBitrate(QByteArrayView(middle).sliced(position), first);
}

void setDuration(const MpegFrameHeader &header, const VbrInfo &vbr, ProbeResult &result)
{
    if (vbr.frames == 0) {
        if (header.bitrateKbps > 0) {
            result.stream.bitrateKbps = header.bitrateKbps;
            result.stream.durationMs =
                mulDiv(static_cast<quint64>(result.audioLength), 8, static_cast<quint64>(header.bitrateKbps));
        }
        return;
    }
    const quint64 samples = static_cast<quint64>(header.samplesPerFrame) * vbr.frames;
    result.stream.durationMs = mulDiv(samples, 1000, static_cast<quint64>(header.sampleRate));
    result.stream.bitrateKbps = averageKbps(vbr.bytes == 0 ? result.audioLength : vbr.bytes, result.stream.durationMs);
}

} // namespace

bool readMpeg(QIODevice &device, ProbeResult &result)
{
    const qint64 tagEnd = readId3v2(device, result);
    QByteArray buffer = readAt(device, tagEnd, firstSearchSize); // now, while the device holds what begins the file
    const qint64 payloadEnd = device.size() - readTrailingTags(device, result);
    result.setPayload(tagEnd, payloadEnd);
    if (!result.audioRangeValid)
        return false;

    buffer.truncate(std::min<qint64>(result.audioLength, buffer.size()));
    qsizetype position = findFrame(buffer);
    if (!isSettled(buffer, position) && result.audioLength > buffer.size()) {
        buffer = readAt(device, tagEnd, std::min(result.audioLength, syncSearchSize));
        position = findFrame(buffer);
    }
    if (position < 0)
        return false;
    const QByteArrayView frame = QByteArrayView(buffer).sliced(position);
    const MpegFrameHeader header = parseMpegFrameHeader(frame);
    result.stream.sampleRate = header.sampleRate;
    result.stream.channels = header.channels;

    // The frame that carries the VBR information holds no audio, and encoders rewrite it.
    const VbrInfo vbr = readVbrInfo(frame, header);
    result.setPayload(tagEnd + position + (vbr.found ? header.frameLength : 0), payloadEnd);
    if (!result.audioRangeValid)
        return false;
    setDuration(header, vbr, result);
    result.stream.durationIsGuess = vbr.frames == 0 && !header.freeFormat && isGuess(device, frame, header, result);
    return true;
}

} // namespace epr
