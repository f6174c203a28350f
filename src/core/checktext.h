// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

// What the check over the whole length found, in translated words. Times of a copy are those of its own file; what is
// said of the kept copy has the times of that one.

/// Of a copy: "alike to the end", or each difference, "silent 0:20-0:21", or why it could not be checked. Of the copy
/// to keep only the latter. Empty where nothing was checked.
QStringList checkTexts(const MatchGroup &group, qint32 member);

/// The same for a row: the first of them and how many more there are.
QString checkText(const MatchGroup &group, qint32 member);

/// How a copy compares with the one to keep in what was measured, where that is worth a word: "2.1 dB louder than the
/// kept copy".
/// What is wrong with a member by the check: it cannot be decoded, or with errors. Empty if nothing is.
QString damageText(const MatchGroup &group, qint32 member);
QStringList measureTexts(const MatchGroup &group, qint32 member);

/// Of a group: "checked: alike to the end". Empty while a copy is unchecked.
QString groupCheckText(const MatchGroup &group);

/// Why another copy would be the better one to keep: "the FLAC has more above 11 kHz than the kept MP3". Mostly empty.
QString betterCopyText(const MatchGroup &group, const QList<TrackInfo> &tracks);

/// A measure with its unit; empty where it is not known.
QString loudnessText(double loudness); ///< "-9.3 LUFS"
QString truePeakText(double truePeak); ///< "0.4 dBTP"
QString bandwidthText(qint32 hertz); ///< "16.0 kHz"

} // namespace epr
