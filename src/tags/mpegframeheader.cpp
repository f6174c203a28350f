// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mpegframeheader.h"

#include <array>

namespace epr {

namespace {

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

} // namespace

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
    header.sampleRate = sampleRates[static_cast<std::size_t>(versionId * 3 + sampleRateIndex)];
    header.channels = quint8(bytes[3]) >> 6 == 3 ? 1 : 2;
    const bool mono = header.channels == 1;
    header.sideInfoLength = versionId == mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    setFrameSize(header, quint8(bytes[2]) >> 1 & 1);
    return header;
}

} // namespace epr
