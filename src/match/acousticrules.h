// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "biterrorrate.h"
#include "trackinfo.h"

namespace epr {

struct ScanOptions;

/// How fingerprints of one engine are compared.
struct AcousticRules {
    bool chromaprint = false; ///< the words come from fpcalc, without masks and alternatives
    int minSharedKeys = 0; ///< of a pair that is worth comparing
    double threshold = 0; ///< highest bit error rate of a match
    double prefilterMargin = 0; ///< above the threshold
    qsizetype prefilterPrefix = 0; ///< words
    qsizetype prefilterStep = 0; ///< words; the prefilter looks at offsets of none, one and two steps
    OffsetSearch search; ///< of the full comparison
};

/// The rules for the fingerprints that ScanOptions::fingerprintEngine names.
[[nodiscard]] AcousticRules acousticRules(const ScanOptions &options);

/// Whether a track's fingerprint is long enough for acoustic matching.
[[nodiscard]] bool hasUsableFingerprint(const TrackInfo &track);

/// Whether two durations differ by at most so many percent of the longer one. An unknown duration agrees with any.
[[nodiscard]] bool durationsAgree(qint64 aMs, qint64 bMs, qint32 tolerancePercent);

/// A quick look at the beginning of two fingerprints; false if they are surely of different recordings.
[[nodiscard]] bool acousticPrefilter(Words a, Words b, const AcousticRules &rules);

/// Whether two tracks are the same recording. Of the alternative fingerprints only b's is tried, so that the order of
/// the tracks matters: a is the one that comes first in the scan's list.
[[nodiscard]] bool sameRecording(const TrackInfo &a, const TrackInfo &b, const AcousticRules &rules);

} // namespace epr
