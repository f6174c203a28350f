// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "alignment.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

namespace epr {

namespace {

constexpr double hopMs = 1365 * 1000.0 / 11025; // between words, with both engines
constexpr qsizetype wordsPerBlock = 16; // about two seconds
constexpr qsizetype leastOverlap = 80; // words, about ten seconds
constexpr quint32 mostRepeats = 8; // of a key in one recording; a held tone votes for everything
constexpr quint32 leastVotes = 3;
constexpr std::size_t peakCount = 3; // that may be alignments
constexpr std::size_t mostParts = 4; // of an edit
constexpr qsizetype stepsAround = 2; // a peak

struct BlockCounts {
    MaskedBits bits;
    qint64 compared = 0; ///< words
    qint64 blocks = 0;
    qint64 agreeing = 0;
};

/// What is silent in both says nothing; it is counted as agreeing bits before.
qint64 silentInBoth(const WordSequence &a, qsizetype atA, const WordSequence &b, qsizetype atB, qsizetype count)
{
    qint64 both = 0;
    for (qsizetype i = 0; i < count && !a.silent.empty() && !b.silent.empty(); ++i)
        both += a.isSilent(atA + i) && b.isSilent(atB + i) ? 1 : 0;
    return both;
}

quint64 hashOf(quint32 key)
{
    return key * 0x9E3779B97F4A7C15U >> 32;
}

double ratio(qint64 part, qint64 whole)
{
    return whole > 0 ? static_cast<double>(part) / static_cast<double>(whole) : 1.0;
}

} // namespace

// Strangers differ in half of their bits. The built-in words of copies differ in up to a fifth, those of fpcalc in up
// to a seventh where the sound was processed. What the operator holds to be a match is never exceeded.
AlignmentRules alignmentRules(const ScanOptions &options)
{
    if (options.fingerprintEngine == FingerprintEngine::Fpcalc)
        return { .engine = FingerprintEngine::Fpcalc, .threshold = 0.16, .blockThreshold = 0.25 };
    return { .engine = FingerprintEngine::BuiltIn,
             .threshold = std::min(options.threshold, 0.25),
             .blockThreshold = 0.33 };
}

double WordSequence::msPerWord() const
{
    return hopMs / perHop;
}

qint64 WordSequence::leadingSilenceMs() const
{
    const auto sound = std::find(silent.begin(), silent.end(), false);
    return std::llround(static_cast<double>(sound - silent.begin()) * msPerWord());
}

void setWordSequence(WordSequence &sequence, const Fingerprint &fingerprint, FingerprintEngine engine)
{
    const bool isMasked = engine != FingerprintEngine::Fpcalc && fingerprint.mask.size() == fingerprint.words.size();
    const bool hasAlternative = isMasked && fingerprint.alternative.size() >= fingerprint.words.size()
        && fingerprint.alternativeMask.size() == fingerprint.alternative.size();
    sequence.perHop = hasAlternative ? 2 : 1;
    const auto size = static_cast<std::size_t>(fingerprint.words.size() * sequence.perHop);
    sequence.words.resize(size);
    sequence.mask.resize(size);
    sequence.silent.clear();
    sequence.silentCount = 0;
    const auto place = [&](std::size_t position, quint32 word, quint32 mask) {
        const bool silent = isSilentWord(word, mask, engine);
        sequence.words[position] = word;
        sequence.mask[position] = silent ? ~0U : mask;
        if (!silent)
            return;
        sequence.silent.resize(size);
        sequence.silent[position] = true;
        ++sequence.silentCount;
    };
    std::size_t position = 0;
    for (qsizetype i = 0; i < fingerprint.words.size(); ++i) {
        if (hasAlternative)
            place(position++, fingerprint.alternative[i], fingerprint.alternativeMask[i]);
        place(position++, fingerprint.words[i], isMasked ? fingerprint.mask[i] : ~0U);
    }
}

void Aligner::setFirst(const Fingerprint &fingerprint)
{
    setWordSequence(m_first, fingerprint, m_rules.engine);
    m_nextPlace.assign(2 * m_first.words.size(), -1);
    m_slots.assign(std::bit_ceil(4 * m_first.words.size() + 1), {});
    m_known.assign(std::bit_ceil(m_first.words.size() / 2 + 1), 0);
    for (qsizetype position = 0; position < m_first.size(); ++position) {
        if (m_first.isSilent(position))
            continue;
        auto place = static_cast<qint32>(2 * position);
        for (const quint32 key : alignmentKeys(m_first.words[static_cast<std::size_t>(position)])) {
            Key &slot = m_slots[slotOf(key)];
            slot.value = key;
            m_known[hashOf(key) / 64 & (m_known.size() - 1)] |= quint64(1) << hashOf(key) % 64;
            ++slot.count;
            m_nextPlace[static_cast<std::size_t>(place)] = std::exchange(slot.firstPlace, place);
            ++place;
        }
    }
}

/// Most keys of a stranger are known to be none of the first's by a look into a few kilobytes.
inline bool Aligner::mayHave(quint32 key) const
{
    return (m_known[hashOf(key) / 64 & (m_known.size() - 1)] >> hashOf(key) % 64 & 1) != 0;
}

inline std::size_t Aligner::slotOf(quint32 key) const
{
    const std::size_t last = m_slots.size() - 1;
    std::size_t slot = hashOf(key) & last;
    while (m_slots[slot].count > 0 && m_slots[slot].value != key)
        slot = (slot + 1) & last;
    return slot;
}

std::optional<Alignment> Aligner::alignWith(const Fingerprint &second)
{
    setWordSequence(m_second, second, m_rules.engine);
    m_peaks.clear();
    if (m_first.words.empty() || m_second.words.empty() || m_second.perHop != m_first.perHop)
        return std::nullopt;
    vote();
    takePeaks();
    std::optional<Alignment> best;
    for (const qsizetype peak : std::span(m_peaks).first(std::min(m_peaks.size(), peakCount)))
        for (qsizetype offset = peak - stepsAround; offset <= peak + stepsAround; ++offset)
            if (const std::optional<Alignment> found = compare(offset))
                if (!best || found->bitErrorRate < best->bitErrorRate)
                    best = found;
    return best;
}

/// A vote for each pair of equal keys, at the difference of their positions.
void Aligner::vote()
{
    m_votes.assign(m_first.words.size() + m_second.words.size(), 0);
    m_shared.clear();
    for (qsizetype position = 0; position < m_second.size(); ++position) {
        if (m_second.isSilent(position))
            continue;
        for (const quint32 key : alignmentKeys(m_second.words[static_cast<std::size_t>(position)])) {
            if (!mayHave(key))
                continue;
            const std::size_t slot = slotOf(key);
            if (m_slots[slot].count == 0)
                continue;
            ++m_slots[slot].seen;
            m_shared.emplace_back(static_cast<quint32>(slot), static_cast<qint32>(position));
        }
    }
    for (const auto &[slot, position] : m_shared) {
        const Key &key = m_slots[slot];
        if (key.count > mostRepeats || key.seen > mostRepeats)
            continue;
        for (qint32 place = key.firstPlace; place >= 0; place = m_nextPlace[static_cast<std::size_t>(place)])
            ++m_votes[static_cast<std::size_t>(position - place / 2 + m_first.size() - 1)];
    }
    for (const auto &[slot, position] : m_shared)
        m_slots[slot].seen = 0;
}

/// The offsets with the most votes, their neighbours' included. What lies around one that was taken is not taken again.
void Aligner::takePeaks()
{
    const auto votesAt = [this](std::size_t i) {
        return (i > 0 ? m_votes[i - 1] : 0) + m_votes[i] + (i + 1 < m_votes.size() ? m_votes[i + 1] : 0);
    };
    while (m_peaks.size() < mostParts) {
        quint32 most = leastVotes - 1;
        qsizetype peak = 0;
        for (std::size_t i = 0; i < m_votes.size(); ++i)
            if (const quint32 votes = votesAt(i); votes > most)
                std::tie(most, peak) = std::pair(votes, static_cast<qsizetype>(i));
        if (most < leastVotes)
            break;
        const auto end = std::min(peak + stepsAround + 1, static_cast<qsizetype>(m_votes.size()));
        std::fill(m_votes.begin() + std::max<qsizetype>(0, peak - stepsAround), m_votes.begin() + end, 0);
        m_peaks.push_back(peak - m_first.size() + 1);
    }
}

MaskedBits Aligner::bitsOf(qsizetype at, qsizetype offset, qsizetype count, qsizetype silent) const
{
    MaskedBits bits =
        bitKernel().masked({ m_first.words.data() + at, m_first.mask.data() + at },
                           { m_second.words.data() + at + offset, m_second.mask.data() + at + offset }, count);
    bits.trusted -= 32 * silent;
    return bits;
}

/// Strangers are given up as soon as too many blocks differ, whatever may come.
std::optional<Alignment> Aligner::compare(qsizetype offset) const
{
    const qsizetype begin = std::max<qsizetype>(0, -offset);
    const qsizetype end = std::min(m_first.size(), m_second.size() - offset);
    const qsizetype block = wordsPerBlock * m_first.perHop;
    const qsizetype mostBlocks = (end - begin) / block + 1;
    const double mostDiffering = (1 - m_rules.agreeingShare) * static_cast<double>(mostBlocks);
    BlockCounts sum;
    for (qsizetype at = begin; at < end; at += block) {
        const qsizetype count = std::min(block, end - at);
        const qint64 silent = silentInBoth(m_first, at, m_second, at + offset, count);
        if (silent == count)
            continue;
        const MaskedBits bits = bitsOf(at, offset, count, silent);
        sum.bits.differing += bits.differing;
        sum.bits.trusted += bits.trusted;
        sum.compared += count - silent;
        ++sum.blocks;
        sum.agreeing += ratio(bits.differing, bits.trusted) <= m_rules.blockThreshold ? 1 : 0;
        if (static_cast<double>(sum.blocks - sum.agreeing) > mostDiffering)
            return std::nullopt;
    }
    const qint64 longer = std::max(m_first.size() - m_first.silentCount, m_second.size() - m_second.silentCount);
    const qint64 shorter = std::min(m_first.size() - m_first.silentCount, m_second.size() - m_second.silentCount);
    const qint64 least = std::max(std::min<qint64>(leastOverlap * m_first.perHop, shorter), longer / 2);
    const double differing = ratio(sum.bits.differing, sum.bits.trusted);
    const double agreeing = ratio(sum.agreeing, sum.blocks);
    if (sum.compared < least || differing > m_rules.threshold || agreeing < m_rules.agreeingShare)
        return std::nullopt;
    return Alignment { .offsetMs = std::llround(static_cast<double>(offset) * m_first.msPerWord()),
                       .bitErrorRate = differing };
}

/// For each block of the second.
std::vector<bool> Aligner::agreeingBlocks(qsizetype offset) const
{
    const qsizetype block = wordsPerBlock * m_first.perHop;
    std::vector<bool> agreeing(static_cast<std::size_t>(m_second.size() / block));
    qsizetype at = -offset;
    for (std::size_t i = 0; i < agreeing.size(); ++i, at += block) {
        if (at < 0 || at + block > m_first.size())
            continue;
        const qint64 silent = silentInBoth(m_first, at, m_second, at + offset, block);
        const MaskedBits bits = bitsOf(at, offset, block, silent);
        agreeing[i] = silent < block && ratio(bits.differing, bits.trusted) <= m_rules.blockThreshold;
    }
    return agreeing;
}

/// The offset near a peak at which the most blocks agree that lie at no other yet, and which these are; nothing if that
/// are too few.
std::vector<bool> Aligner::partNear(qsizetype peak, const Places &places) const
{
    constexpr qsizetype leastGain = 2; // blocks
    qsizetype mostGained = leastGain - 1;
    std::vector<bool> best;
    for (qsizetype offset = peak - stepsAround; offset <= peak + stepsAround; ++offset) {
        std::vector<bool> agreeing = agreeingBlocks(offset);
        qsizetype gained = 0;
        for (std::size_t i = 0; i < agreeing.size(); ++i)
            gained += agreeing[i] && !places[i] ? 1 : 0;
        if (gained > mostGained)
            std::tie(mostGained, best) = std::pair(gained, std::move(agreeing));
    }
    return best;
}

// What one of the two has beyond the other's ends is not compared, so that it does not count, nor what the longer one
// has between the parts.
bool Aligner::mayBeEdit() const
{
    constexpr qsizetype leastApart = 8; // hops, about a second
    constexpr double leastCovered = 0.8;
    const qsizetype block = wordsPerBlock * m_first.perHop;
    Places places(static_cast<std::size_t>(m_second.size() / block));
    std::vector<qsizetype> parts;
    for (const qsizetype peak : m_peaks) {
        const auto isNear = [&](qsizetype part) { return qAbs(peak - part) < leastApart * m_first.perHop; };
        const auto agreeing = std::ranges::any_of(parts, isNear) ? std::vector<bool>() : partNear(peak, places);
        for (std::size_t i = 0; i < agreeing.size(); ++i)
            if (agreeing[i] && !places[i])
                places[i] = peak;
        if (!agreeing.empty())
            parts.push_back(peak);
    }
    if (parts.size() < 2)
        return false;
    const auto isPlaced = [](const std::optional<qsizetype> &offset) { return offset.has_value(); };
    const qsizetype firstOffset = **std::ranges::find_if(places, isPlaced);
    const qsizetype lastOffset = **std::find_if(places.rbegin(), places.rend(), isPlaced);
    const qsizetype length =
        std::min(m_second.size(), m_first.size() + lastOffset) - std::max<qsizetype>(0, firstOffset);
    const qsizetype shorter = std::min(length, length - lastOffset + firstOffset) - block;
    const qsizetype covered = block * std::ranges::count_if(places, isPlaced);
    return 2 * covered >= std::max(m_first.size(), m_second.size())
        && static_cast<double>(covered) >= leastCovered * static_cast<double>(shorter);
}

} // namespace epr
