// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <span>

namespace epr {

using Words = std::span<const quint32>; ///< consecutive sub-fingerprints

[[nodiscard]] inline qsizetype lengthOf(Words words)
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
[[nodiscard]] double berAligned(Words a, Words b, const OffsetSearch &search);

/// The smallest share of differing bits among those that both masks trust. Alignments with fewer than four trusted bits
/// per word on average do not count; if none counts, or a mask is missing, all bits are compared.
[[nodiscard]] double berMasked(const MaskedWords &a, const MaskedWords &b, const OffsetSearch &search);

} // namespace epr
