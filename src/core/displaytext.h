// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

namespace epr {

/// The title tag, or the file name without its last extension.
[[nodiscard]] QString displayTitle(const TrackInfo &track);

/// The artist tag, else the album artist, else a translated "(unknown artist)".
[[nodiscard]] QString displayArtist(const TrackInfo &track);

/// Bit rate, sample rate and channels as far as known, joined by ", ": "320 kbps, 44.1 kHz, stereo".
[[nodiscard]] QString qualityText(const TrackInfo &track);

/// "3:07" or, from one hour, "1:02:09"; "-" when below 1 ms. Seconds are truncated.
[[nodiscard]] QString durationText(qint64 durationMs);

/// "0:03:07", as a player counts; seconds are truncated, below zero counts as zero.
[[nodiscard]] QString positionText(qint64 positionMs);

/// Bytes in powers of 1024 with two decimals and the locale's separators: "4.21 MB".
[[nodiscard]] QString sizeText(qint64 bytes);

/// Date and time of day in the locale's words: "7 Mar 2026 3:04 pm".
QString dateTimeText(const QDateTime &time);

/// Absolute path of the folder that holds the file.
[[nodiscard]] QString folderOf(const TrackInfo &track);

} // namespace epr
