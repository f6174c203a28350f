// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <optional>
#include <span>

namespace epr {

using Words = std::span<const quint32>; ///< consecutive sub-fingerprints

inline qsizetype lengthOf(Words words)
{
    return static_cast<qsizetype>(words.size());
}

struct MaskedWords {
    Words words;
    Words mask; ///< the bits of each word that can be trusted; ignored unless there is one for every word
};

/// Where to look for the best alignment of two fingerprints.
struct OffsetSearch {
    qsizetype maxOffset = 0; ///< words, to either side
    qsizetype minOverlap = 0; ///< words; alignments that overlap less are not looked at
    double ceiling = 1.0; ///< above it a distance need not be exact, only above it too
};

/// The smallest share of differing bits over all offsets, 1.0 if no alignment overlaps enough. Fingerprints shorter
/// than the least overlap are compared as they stand if they have at least eight words in common.
double berAligned(Words a, Words b, const OffsetSearch &search);

/// The smallest share of differing bits among those that both masks trust. Alignments with fewer than four trusted bits
/// per word on average do not count; if none counts, or a mask is missing, all bits are compared.
double berMasked(const MaskedWords &a, const MaskedWords &b, const OffsetSearch &search);

/// How fingerprints of one engine are compared.
struct AcousticRules {
    FingerprintEngine engine = FingerprintEngine::BuiltIn;
    int minSharedKeys = 0; ///< of a pair that is worth comparing
    double threshold = 0; ///< highest bit error rate of a match
    double prefilterMargin = 0; ///< above the threshold
    qsizetype prefilterPrefix = 0; ///< words
    qsizetype prefilterStep = 0; ///< words; the prefilter looks at offsets of none, one and two steps
    OffsetSearch search; ///< of the full comparison
};

AcousticRules acousticRules(const ScanOptions &options);

/// Whether there is enough of a fingerprint for acoustic matching.
bool isLongEnoughToCompare(const Fingerprint &fingerprint);

/// Whether over 60 % of the words are what the engine makes of digital silence. Such fingerprints agree wherever both
/// are silent, whatever they are of, and do not belong into a comparison.
bool isMostlySilent(const Fingerprint &fingerprint, FingerprintEngine engine);

/// Whether two durations differ by at most so many percent of the longer one. An unknown duration agrees with any.
bool durationsAgree(qint64 aMs, qint64 bMs, qint32 tolerancePercent);

/// A quick look at the beginning of two fingerprints; false if they are surely of different recordings.
bool acousticPrefilter(Words a, Words b, const AcousticRules &rules);

/// The bit error rate of two tracks that are the same recording; nothing for others. Of the alternative fingerprints
/// only b's is tried, so that the order of the tracks matters: a is the one that comes first in the scan's list.
std::optional<double> sameRecording(const TrackInfo &a, const TrackInfo &b, const AcousticRules &rules);

} // namespace epr
