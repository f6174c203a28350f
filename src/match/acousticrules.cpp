// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "acousticrules.h"

#include "bitkernel.h"
#include "scanoptions.h"

#include <algorithm>

namespace epr {

namespace {

constexpr qsizetype shortestUsable = 40; // words
constexpr qsizetype shortestFiltered = 40; // words; shorter beginnings say too little to reject a pair
constexpr qsizetype shortestFilterOverlap = 32; // words
constexpr double bitsPerWord = 32.0;

double berAtOffset(Words a, Words b, qsizetype start, qsizetype offset, qsizetype count)
{
    const qint64 differing = bitKernel().differing(a.data() + start, b.data() + start + offset, count);
    return static_cast<double>(differing) / (bitsPerWord * static_cast<double>(count));
}

MaskedWords primaryWords(const TrackInfo &track)
{
    return { track.fingerprint.words, track.fingerprint.mask };
}

MaskedWords alternativeWords(const TrackInfo &track)
{
    return { track.fingerprint.alternative, track.fingerprint.alternativeMask };
}

} // namespace

AcousticRules acousticRules(const ScanOptions &options)
{
    if (options.fingerprintEngine == FingerprintEngine::Fpcalc)
        return { true, 5, options.chromaprintThreshold, 0.12, 160, 20, { 40, 80, options.chromaprintThreshold } };
    return { false, 3, options.threshold, 0.18, 200, 24, { 48, 40, options.threshold } };
}

bool hasUsableFingerprint(const TrackInfo &track)
{
    return track.fingerprint.words.size() >= shortestUsable;
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

bool sameRecording(const TrackInfo &a, const TrackInfo &b, const AcousticRules &rules)
{
    if (!acousticPrefilter(a.fingerprint.words, b.fingerprint.words, rules))
        return false;
    if (rules.chromaprint)
        return berAligned(a.fingerprint.words, b.fingerprint.words, rules.search) <= rules.threshold;
    if (berMasked(primaryWords(a), primaryWords(b), rules.search) <= rules.threshold)
        return true;
    return !b.fingerprint.alternative.isEmpty()
        && berMasked(primaryWords(a), alternativeWords(b), rules.search) <= rules.threshold;
}

} // namespace epr
