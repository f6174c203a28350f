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
constexpr double asGood = 0.02; // more errors mean nothing where a part is repeated
constexpr std::size_t mostPlaces = 3;
constexpr qsizetype sameOffset = 4; // frames
constexpr float worthATry = 0.3F; // of the votes that the likeliest place has
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

std::vector<PlaceFinder::Place> PlaceFinder::find() const
{
    const qsizetype count = std::min({ usualWords, m_first.size(), m_second.size() });
    if (count == 0)
        return {};
    std::vector<Stretch> asked;
    for (qsizetype i = 0; i < stretches; ++i) {
        const Stretch stretch { (m_first.size() - count) * i / (stretches - 1), count };
        if (!isMostlySilent(stretch) && (asked.empty() || asked.back().begin != stretch.begin))
            asked.push_back(stretch);
    }
    const std::span<const Stretch> all = asked;
    const std::span<const Stretch> late = all.subspan(all.size() / 2);
    std::vector<Place> places = likeliest(all, mostPlaces);
    for (const std::span<const Stretch> half : { all.first(all.size() - late.size()), late })
        for (const Place &place : likeliest(half, 1))
            if (std::ranges::none_of(
                    places, [&](const Place &other) { return std::abs(other.offset - place.offset) <= sameOffset; }))
                places.push_back(place);
    return places;
}

std::vector<PlaceFinder::Place> PlaceFinder::likeliest(std::span<const Stretch> asked, std::size_t most) const
{
    std::vector<float> left = votes(asked);
    const float least = *std::ranges::max_element(left) * worthATry;
    std::vector<Place> places;
    while (places.size() < most) {
        const qsizetype voted = std::ranges::max_element(left) - left.begin();
        const std::optional<Place> place = bestNear(asked, voted - m_first.size());
        if (!place || left[static_cast<std::size_t>(voted)] < least)
            break;
        places.push_back(*place);
        const qsizetype end = std::min(voted + near + 1, static_cast<qsizetype>(left.size()));
        for (qsizetype taken = std::max<qsizetype>(voted - near, 0); taken < end; ++taken)
            left[static_cast<std::size_t>(taken)] = 0;
    }
    return places;
}

// Every place of a stretch in the second is looked at: eight seconds against four minutes take a third of a
// millisecond. One vote list for all offsets from -m_first.size() on.
std::vector<float> PlaceFinder::votes(std::span<const Stretch> asked) const
{
    std::vector<float> votes(static_cast<std::size_t>(m_first.size() + m_second.size()));
    for (const Stretch &stretch : asked)
        for (qsizetype offset = -stretch.begin; offset + stretch.begin + stretch.count <= m_second.size(); ++offset)
            votes[static_cast<std::size_t>(offset + m_first.size())] +=
                static_cast<float>(std::pow(std::max(0.0, mostErrors - errorRate(stretch, offset)), 2));
    return votes;
}

std::optional<PlaceFinder::Place> PlaceFinder::bestNear(std::span<const Stretch> asked, qsizetype offset) const
{
    std::optional<Place> best;
    for (const Stretch &stretch : asked)
        for (qsizetype other = offset - near; other <= offset + near; ++other)
            if (const double errors = errorRate(stretch, other); errors < (best ? best->bitErrorRate : mostErrors)) {
                best = placeOf(stretch, other);
                best->bitErrorRate = errors;
            }
    return best;
}

std::optional<PlaceFinder::Place> PlaceFinder::find(qsizetype begin, qsizetype end, qsizetype offset) const
{
    const double frames = framesPerWord(m_first);
    Stretch stretch { std::clamp(static_cast<qsizetype>(static_cast<double>(begin) / frames), qsizetype(0),
                                 m_first.size()) };
    stretch.count =
        std::min({ static_cast<qsizetype>(static_cast<double>(end) / frames), m_first.size() }) - stretch.begin;
    stretch.count = std::min({ stretch.count, usualWords, m_second.size() });
    if (stretch.count < leastWords || isMostlySilent(stretch))
        return std::nullopt;
    std::vector<double> errors;
    for (qsizetype other = -stretch.begin; other + stretch.begin + stretch.count <= m_second.size(); ++other)
        errors.push_back(errorRate(stretch, other));
    const double least = *std::ranges::min_element(errors);
    if (least >= mostErrors)
        return std::nullopt;
    std::optional<Place> nearest;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        const Place place = placeOf(stretch, static_cast<qsizetype>(i) - stretch.begin);
        if (errors[i] <= least + asGood && errors[i] < mostErrors
            && (!nearest || std::abs(place.offset - offset) < std::abs(nearest->offset - offset)))
            nearest = place;
    }
    return nearest;
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
