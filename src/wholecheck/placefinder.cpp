// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "placefinder.h"

#include "bandlevels.h"
#include "bitkernel.h"

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

constexpr qsizetype usualWords = 130; // of a stretch: eight seconds
constexpr qsizetype leastWords = 48; // three seconds; of less, strangers have the like
constexpr qsizetype stretches = 24;
constexpr double mostErrors = 0.32; // strangers' best places have 0.4 and more
constexpr qsizetype near = 12; // words: how far two speeds that differ by 0.3 % come apart in four minutes

double framesPerWord(const WordSequence &sequence)
{
    return sequence.msPerWord() / BandLevels::frameMs;
}

} // namespace

PlaceFinder::PlaceFinder(const Fingerprint &first, const Fingerprint &second)
{
    setWordSequence(m_first, first, FingerprintEngine::BuiltIn);
    setWordSequence(m_second, second, FingerprintEngine::BuiltIn);
}

// Every place of a stretch in the second is looked at: eight seconds against four minutes take a third of a
// millisecond.
std::optional<PlaceFinder::Place> PlaceFinder::find() const
{
    const qsizetype count = std::min({ usualWords, m_first.size(), m_second.size() });
    if (count == 0)
        return std::nullopt;
    std::vector<float> votes(static_cast<std::size_t>(m_first.size() + m_second.size()));
    const auto voteFor = [&](qsizetype offset) -> float & {
        return votes[static_cast<std::size_t>(offset + m_first.size())];
    };
    std::vector<Stretch> asked;
    for (qsizetype i = 0; i < stretches; ++i) {
        const Stretch stretch { (m_first.size() - count) * i / (stretches - 1), count };
        if (isMostlySilent(stretch) || (!asked.empty() && asked.back().begin == stretch.begin))
            continue;
        asked.push_back(stretch);
        for (qsizetype offset = -stretch.begin; offset + stretch.begin + count <= m_second.size(); ++offset)
            voteFor(offset) += static_cast<float>(std::pow(std::max(0.0, mostErrors - errorRate(stretch, offset)), 2));
    }
    const auto most = std::ranges::max_element(votes);
    const qsizetype chosen = most - votes.begin() - m_first.size();
    std::optional<Place> best;
    for (const Stretch &stretch : asked)
        for (qsizetype offset = chosen - near; offset <= chosen + near; ++offset)
            if (const double errors = errorRate(stretch, offset); errors < (best ? best->bitErrorRate : mostErrors)) {
                best = placeOf(stretch, offset);
                best->bitErrorRate = errors;
            }
    return best;
}

std::optional<PlaceFinder::Place> PlaceFinder::find(qsizetype begin, qsizetype end) const
{
    const double frames = framesPerWord(m_first);
    Stretch stretch { std::clamp(static_cast<qsizetype>(static_cast<double>(begin) / frames), qsizetype(0),
                                 m_first.size()) };
    stretch.count =
        std::min({ static_cast<qsizetype>(static_cast<double>(end) / frames), m_first.size() }) - stretch.begin;
    stretch.count = std::min({ stretch.count, usualWords, m_second.size() });
    if (stretch.count < leastWords || isMostlySilent(stretch))
        return std::nullopt;
    std::optional<Place> best;
    for (qsizetype offset = -stretch.begin; offset + stretch.begin + stretch.count <= m_second.size(); ++offset)
        if (const double errors = errorRate(stretch, offset); errors < (best ? best->bitErrorRate : mostErrors)) {
            best = placeOf(stretch, offset);
            best->bitErrorRate = errors;
        }
    return best;
}

double PlaceFinder::errorRate(const Stretch &stretch, qsizetype offset) const
{
    const qsizetype other = stretch.begin + offset;
    if (other < 0 || other + stretch.count > m_second.size())
        return 1;
    const MaskedBits bits =
        bitKernel().masked({ m_first.words.data() + stretch.begin, m_first.mask.data() + stretch.begin },
                           { m_second.words.data() + other, m_second.mask.data() + other }, stretch.count);
    return bits.trusted > 0 ? static_cast<double>(bits.differing) / static_cast<double>(bits.trusted) : 1;
}

bool PlaceFinder::isMostlySilent(const Stretch &stretch) const
{
    qsizetype silent = 0;
    for (qsizetype i = 0; i < stretch.count; ++i)
        silent += m_first.isSilent(stretch.begin + i) ? 1 : 0;
    return 2 * silent > stretch.count;
}

PlaceFinder::Place PlaceFinder::placeOf(const Stretch &stretch, qsizetype offset) const
{
    const auto toFrames = [this](qsizetype words) {
        return static_cast<qsizetype>(std::llround(static_cast<double>(words) * framesPerWord(m_first)));
    };
    return { toFrames(stretch.begin), toFrames(stretch.begin + stretch.count), toFrames(offset), 1 };
}

} // namespace epr
