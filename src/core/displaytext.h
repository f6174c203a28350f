// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

/// The title tag, or the file name without its last extension.
QString displayTitle(const TrackInfo &track);

/// The artist tag, else the album artist, else a translated "(unknown artist)".
QString displayArtist(const TrackInfo &track);

/// Bit rate, sample rate and channels as far as known, joined by ", ": "320 kbps, 44.1 kHz, stereo".
QString qualityText(const TrackInfo &track);

/// "3:07" or, from one hour, "1:02:09"; "-" when below 1 ms. Seconds are truncated.
QString durationText(qint64 durationMs);

/// The same; "~3:07" when it is a guess.
QString durationText(const StreamFacts &stream);

/// What a guess means, in a translated sentence; empty when it is none.
QString durationExplanation(const StreamFacts &stream);

/// "5.0 s", from ten seconds "42 s", from one minute as durationText().
QString lengthText(qint64 ms);

/// "0:03:07", as a player counts; seconds are truncated, below zero counts as zero.
QString positionText(qint64 positionMs);

/// A count with the locale's separators: "12,345".
QString countText(qint64 count);

/// Bytes in powers of 1024 with two decimals and the locale's separators: "4.21 MB".
QString sizeText(qint64 bytes);

/// Date and time of day in the locale's words: "7 Mar 2026 3:04 pm".
QString dateTimeText(const QDateTime &time);

/// Absolute path of the folder that holds the file.
QString folderOf(const TrackInfo &track);

/// A path as the operator's system writes it. Every path that is shown or reported goes through here; those that are
/// stored have forward slashes.
QString nativePath(const QString &path);

/// "message: reason", or the message alone while no reason is known.
QString withReason(const QString &message, const QString &reason);

/// Short translated name; any value that is not one of the first four is "Unmatched".
QString matchTypeLabel(MatchType type);

/// One translated sentence on what the match means and what is safe to do; empty for unmatched.
QString matchTypeExplanation(MatchType type);

} // namespace epr
