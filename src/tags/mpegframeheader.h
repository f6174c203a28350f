// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

namespace epr {

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

    bool operator==(const MpegFrameHeader &) const = default;
};

/// Parses the first four bytes; not valid when there are fewer or they are no frame header.
[[nodiscard]] MpegFrameHeader parseMpegFrameHeader(QByteArrayView bytes);

} // namespace epr
