// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

/// What a reader learned about one audio file. Empty text and 0 mean unknown; numbers are never negative.
struct ProbeResult {
    QString title;
    QString artist;
    QString album;
    QString albumArtist;
    QString genre;
    QString year; ///< kept as text
    QString comment;
    QString format; ///< container or codec name for the operator
    qint32 trackNo = 0;
    qint64 durationMs = 0;
    qint32 bitrateKbps = 0; ///< average
    qint32 sampleRate = 0; ///< Hz
    qint32 channels = 0;
    qint64 audioOffset = 0; ///< first byte of the audio payload
    qint64 audioLength = 0; ///< bytes
    bool audioRangeValid = false; ///< audioOffset and audioLength delimit a payload that is not empty

    bool operator==(const ProbeResult &) const = default;
};

} // namespace epr
