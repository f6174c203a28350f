// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "acousticcomparison.h"

#include "bitkernel.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace epr {

namespace {

constexpr qsizetype bitsPerWord = 32;

// Both engines make a word of every 1365 samples at 11025 Hz, that is 8.08 in a second. Lengths are chosen as seconds
// of music.
constexpr qsizetype wordsPerSecond = 8;

constexpr qsizetype shortestMatched = 5 * wordsPerSecond; // what is shorter is a jingle's length, and matches by chance
constexpr qsizetype shortestUnshifted = 1 * wordsPerSecond;
constexpr qsizetype shortestFiltered = 5 * wordsPerSecond; // shorter beginnings say too little to reject a pair
constexpr qsizetype shortestFilterOverlap = 4 * wordsPerSecond;
constexpr qsizetype leastTrustedBits = 4; // per word: an eighth of its bits

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

/// An offset that scores this or more changes nothing, so that counting can stop there. A ceiling that is not a number
/// compares with nothing; the best score so far is then the only bound.
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

double berAtOffset(Words a, Words b, qsizetype start, qsizetype offset, qsizetype count)
{
    return ratio(bitKernel().differing(a.data() + start, b.data() + start + offset, count), bitsPerWord * count);
}

} // namespace

double berAligned(Words a, Words b, const OffsetSearch &search)
{
    const qsizetype shorter = std::min(lengthOf(a), lengthOf(b));
    if (shorter >= search.minOverlap)
        return smallestBer(a, b, search);
    return shorter >= shortestUnshifted ? berOf(a.data(), b.data(), shorter, 1.0) : 1.0;
}

double berMasked(const MaskedWords &a, const MaskedWords &b, const OffsetSearch &search)
{
    if (a.mask.size() == a.words.size() && b.mask.size() == b.words.size())
        if (const std::optional<double> score = smallestMaskedScore(a, b, search))
            return *score;
    return smallestBer(a.words, b.words, search);
}

// Words of strangers differ in half of their bits. A prefilter passes what its few offsets, some seconds apart, may
// have missed: with the default thresholds, up to 0.43 for built-in words and 0.24 for those of fpcalc, whose copies
// differ less. Half-words are shared by chance more easily than whole words are, but survive in fewer copies, hence
// three keys against five.
AcousticRules acousticRules(const ScanOptions &options)
{
    if (options.fingerprintEngine == FingerprintEngine::Fpcalc)
        return { .engine = FingerprintEngine::Fpcalc,
                 .minSharedKeys = 5,
                 .threshold = options.chromaprintThreshold,
                 .prefilterMargin = 0.12,
                 .prefilterPrefix = 20 * wordsPerSecond,
                 .prefilterStep = 5 * wordsPerSecond / 2,
                 .search = { 5 * wordsPerSecond, 10 * wordsPerSecond, options.chromaprintThreshold } };
    return { .engine = FingerprintEngine::BuiltIn,
             .minSharedKeys = 3,
             .threshold = options.threshold,
             .prefilterMargin = 0.18,
             .prefilterPrefix = 25 * wordsPerSecond,
             .prefilterStep = 3 * wordsPerSecond,
             .search = { 6 * wordsPerSecond, 5 * wordsPerSecond, options.threshold } };
}

bool isLongEnoughToCompare(const Fingerprint &fingerprint)
{
    return fingerprint.words.size() >= shortestMatched;
}

// Up to 60 %, silence alone makes no match at the default thresholds. The built-in engine looks at bits that it does
// not trust only where less than about a sixth of the words are music on both sides. Strangers must then be silent
// together in half of their words to differ in only a quarter of the bits, and for that each in two thirds. With fpcalc
// they must be silent together in three quarters.
bool isMostlySilent(const Fingerprint &fingerprint, FingerprintEngine engine)
{
    constexpr quint32 silentWord = 627964279; // fpcalc's; the built-in engine trusts no bit of a silent word
    constexpr qsizetype percent = 60;
    const bool fpcalc = engine == FingerprintEngine::Fpcalc;
    const qsizetype silent = fpcalc ? fingerprint.words.count(silentWord) : fingerprint.mask.count(0);
    return silent * 100 > fingerprint.words.size() * percent;
}

// The difference in hundredths may be no more than the longer duration in as many percent. Durations come from files
// and may be near the end of the 64-bit range, so the longer one is divided before it is multiplied; whole numbers lose
// nothing by that, since a whole difference exceeds a fraction exactly if it exceeds its whole part.
bool durationsAgree(qint64 aMs, qint64 bMs, qint32 tolerancePercent)
{
    if (aMs <= 0 || bMs <= 0)
        return true;
    if (tolerancePercent < 0 || tolerancePercent >= 100)
        return tolerancePercent > 0; // two known durations always differ by less than the longer one
    const auto [shorter, longer] = std::minmax(aMs, bMs);
    const qint64 allowed = longer / 100 * tolerancePercent + longer % 100 * tolerancePercent / 100;
    return longer - shorter <= allowed;
}

bool acousticPrefilter(Words a, Words b, const AcousticRules &rules)
{
    if (a.empty() || b.empty())
        return false;
    const qsizetype length = std::min({ lengthOf(a), lengthOf(b), rules.prefilterPrefix });
    if (length < shortestFiltered)
        return true;
    const double limit = rules.threshold + rules.prefilterMargin;
    double best = 1.0;
    for (const qsizetype steps : { 0, -1, 1, -2, 2 }) {
        const qsizetype offset = steps * rules.prefilterStep;
        const qsizetype start = std::max<qsizetype>(0, -offset);
        const qsizetype count = std::min(length, lengthOf(b) - offset) - start;
        if (count >= shortestFilterOverlap)
            best = std::min(best, berAtOffset(a, b, start, offset, count));
        if (best <= limit)
            return true;
    }
    return false;
}

// The alternative is not asked once the main words agree: the rate may then be a little above the lowest.
std::optional<double> sameRecording(const TrackInfo &a, const TrackInfo &b, const AcousticRules &rules)
{
    const Fingerprint &first = a.fingerprint;
    const Fingerprint &second = b.fingerprint;
    const auto unlessTooHigh = [&rules](double rate) {
        return rate <= rules.threshold ? std::optional(rate) : std::nullopt;
    };
    if (!acousticPrefilter(first.words, second.words, rules))
        return std::nullopt;
    if (rules.engine == FingerprintEngine::Fpcalc)
        return unlessTooHigh(berAligned(first.words, second.words, rules.search));
    const MaskedWords primary { first.words, first.mask };
    const auto rate = unlessTooHigh(berMasked(primary, { second.words, second.mask }, rules.search));
    if (rate || second.alternative.isEmpty())
        return rate;
    return unlessTooHigh(berMasked(primary, { second.alternative, second.alternativeMask }, rules.search));
}

} // namespace epr
