// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "biterrorrate.h"

#include "bitkernel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace epr {

namespace {

constexpr qsizetype bitsPerWord = 32;
constexpr qsizetype shortestComparable = 8; // words
constexpr qsizetype leastTrustedBits = 4; // per word

// Words between two looks at whether an offset can still win: a division's worth of counting, and a small part of an
// overlap.
constexpr qsizetype blockLength = 64;

struct Overlap {
    qsizetype startA = 0;
    qsizetype startB = 0;
    qsizetype count = 0;
};

Overlap overlapAt(qsizetype offset, qsizetype lengthA, qsizetype lengthB)
{
    const qsizetype start = std::max<qsizetype>(0, -offset);
    return { start, start + offset, std::min(lengthA, lengthB - offset) - start };
}

/// Visits the alignments from the middle outwards. The order makes no difference to a minimum, and copies mostly align
/// near the middle, so that the rest is given up early.
template <typename Visit>
void forEachOverlap(qsizetype lengthA, qsizetype lengthB, const OffsetSearch &search, Visit visit)
{
    const qsizetype least = std::max<qsizetype>(1, search.minOverlap);
    for (qsizetype turn = 0; turn <= 2 * search.maxOffset; ++turn) {
        const qsizetype offset = turn % 2 != 0 ? (turn + 1) / 2 : -turn / 2;
        const Overlap overlap = overlapAt(offset, lengthA, lengthB);
        if (overlap.count >= least)
            visit(overlap);
    }
}

double ratio(qint64 part, qint64 whole)
{
    return static_cast<double>(part) / static_cast<double>(whole);
}

/// An offset that scores this or more changes nothing. Not a number as ceiling sets no bound.
double boundFor(double best, double ceiling)
{
    return std::min(best, std::nextafter(ceiling, std::numeric_limits<double>::infinity()));
}

/// The share of differing bits, or a part of it that has reached the bound already. Rounding keeps the order of
/// quotients, so that what is given up could not have come out below the bound.
double berOf(const quint32 *a, const quint32 *b, qsizetype count, double bound)
{
    const qint64 bits = bitsPerWord * count;
    qint64 differing = 0;
    for (qsizetype done = 0; done < count; done += blockLength) {
        differing += bitKernel().differing(a + done, b + done, std::min(blockLength, count - done));
        if (ratio(differing, bits) >= bound)
            break;
    }
    return ratio(differing, bits);
}

double smallestBer(Words a, Words b, const OffsetSearch &search)
{
    double best = 1.0;
    forEachOverlap(lengthOf(a), lengthOf(b), search, [&](const Overlap &at) {
        const double bound = boundFor(best, search.ceiling);
        best = std::min(best, berOf(a.data() + at.startA, b.data() + at.startB, at.count, bound));
    });
    return best;
}

MaskedBlock blockAt(const MaskedWords &of, qsizetype position)
{
    return { of.words.data() + position, of.mask.data() + position };
}

/// Nothing if too few bits are trusted, or once the score cannot come out below the bound: the words still to come can
/// add at most all their bits to the trusted ones, and none to the differing ones.
std::optional<double> maskedScore(const MaskedWords &a, const MaskedWords &b, const Overlap &at, double bound)
{
    MaskedBits sum;
    for (qsizetype done = 0; done < at.count; done += blockLength) {
        const MaskedBits bits = bitKernel().masked(blockAt(a, at.startA + done), blockAt(b, at.startB + done),
                                                   std::min(blockLength, at.count - done));
        sum.differing += bits.differing;
        sum.trusted += bits.trusted;
        const qsizetype remaining = std::max<qsizetype>(0, at.count - done - blockLength);
        if (ratio(sum.differing, sum.trusted + bitsPerWord * remaining) >= bound)
            return std::nullopt;
    }
    if (sum.trusted < leastTrustedBits * at.count)
        return std::nullopt;
    return ratio(sum.differing, sum.trusted);
}

std::optional<double> smallestMaskedScore(const MaskedWords &a, const MaskedWords &b, const OffsetSearch &search)
{
    std::optional<double> best;
    forEachOverlap(lengthOf(a.words), lengthOf(b.words), search, [&](const Overlap &at) {
        // The first to count is taken whatever it scores, because it decides that masks are used at all.
        const double bound = best ? boundFor(*best, search.ceiling) : std::numeric_limits<double>::infinity();
        if (const std::optional<double> score = maskedScore(a, b, at, bound); score && (!best || *score < *best))
            best = score;
    });
    return best;
}

} // namespace

double berAligned(Words a, Words b, const OffsetSearch &search)
{
    const qsizetype shorter = std::min(lengthOf(a), lengthOf(b));
    if (shorter >= search.minOverlap)
        return smallestBer(a, b, search);
    return shorter >= shortestComparable ? berOf(a.data(), b.data(), shorter, 1.0) : 1.0;
}

double berMasked(const MaskedWords &a, const MaskedWords &b, const OffsetSearch &search)
{
    if (a.mask.size() == a.words.size() && b.mask.size() == b.words.size())
        if (const std::optional<double> score = smallestMaskedScore(a, b, search))
            return *score;
    return smallestBer(a.words, b.words, search);
}

} // namespace epr
