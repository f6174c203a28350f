// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mpegreader.h"

#include "bytecursor.h"
#include "checkedmath.h"
#include "id3v1.h"
#include "id3v2.h"
#include "mpegframeheader.h"
#include "readat.h"

#include <QIODevice>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 syncSearchSize = 262144;
constexpr qint64 apeFooterSize = 32;
constexpr qsizetype vbriDistance = 36; ///< from the frame's start, whatever its side information takes

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
    qint64 end = device.size();
    qint64 trailing = 0;
    if (end > id3v1Size && applyId3v1(readAt(device, end - id3v1Size, id3v1Size), result)) {
        trailing = id3v1Size;
        end -= id3v1Size;
    }
    if (end > apeFooterSize)
        trailing += apeTagSize(readAt(device, end - apeFooterSize, apeFooterSize));
    return trailing;
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

/// Position of the first frame; -1 when there is none.
qsizetype findFrame(QByteArrayView buffer)
{
    for (qsizetype position = 0; position + 4 <= buffer.size(); ++position) {
        if (isFrameStart(buffer, position))
            return position;
    }
    return -1;
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

void setPayload(qint64 start, qint64 end, ProbeResult &result)
{
    result.audioOffset = start;
    result.audioLength = std::max<qint64>(end - start, 0);
    result.audioRangeValid = result.audioLength > 0;
}

} // namespace

bool readMpeg(QIODevice &device, ProbeResult &result)
{
    result.format = u"MPEG Audio"_s;
    const qint64 tagEnd = readId3v2(device, result);
    const qint64 payloadEnd = device.size() - readTrailingTags(device, result);
    setPayload(tagEnd, payloadEnd, result);
    if (!result.audioRangeValid)
        return false;

    const QByteArray buffer = readAt(device, tagEnd, std::min(result.audioLength, syncSearchSize));
    const qsizetype position = findFrame(buffer);
    if (position < 0)
        return false;
    const QByteArrayView frame = QByteArrayView(buffer).sliced(position);
    const MpegFrameHeader header = parseMpegFrameHeader(frame);
    result.stream.sampleRate = header.sampleRate;
    result.stream.channels = header.channels;

    // The frame that carries the VBR information holds no audio, and encoders rewrite it.
    const VbrInfo vbr = readVbrInfo(frame, header);
    setPayload(tagEnd + position + (vbr.found ? header.frameLength : 0), payloadEnd, result);
    if (!result.audioRangeValid)
        return false;
    setDuration(header, vbr, result);
    return true;
}

} // namespace epr
