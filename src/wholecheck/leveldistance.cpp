// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "leveldistance.h"

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

constexpr float maskedBelow = 30; // dB under the loudest band around; what is quieter, encoders do as they like with
constexpr float leastDb = -80; // of full scale
constexpr qsizetype masksFor = 2; // frames to either side
constexpr float gainLeeway = 6; // dB; a compressor turns a sound up and down by so much within a moment
constexpr float dominantWithin = 6; // dB under the loudest band at the moment: no encoder gets those bands wrong
constexpr float dominantLeeway = 8; // dB
constexpr float silentDb = -70;
constexpr qsizetype sampling = 3; // frames, for a mean

float decibels(quint8 level)
{
    return static_cast<float>(level) * static_cast<float>(BandLevels::stepDb) + static_cast<float>(BandLevels::leastDb);
}

float loudest(const BandLevels &levels, qsizetype frame)
{
    return decibels(*std::ranges::max_element(levels.frame(frame)));
}

std::vector<float> peaksOf(const BandLevels &levels)
{
    std::vector<float> peaks(static_cast<std::size_t>(levels.frames()));
    for (qsizetype frame = 0; frame < levels.frames(); ++frame) {
        float &peak = peaks[static_cast<std::size_t>(frame)];
        peak = static_cast<float>(BandLevels::leastDb);
        const qsizetype end = std::min(frame + masksFor + 1, levels.frames());
        for (qsizetype near = std::max<qsizetype>(frame - masksFor, 0); near < end; ++near)
            peak = std::max(peak, loudest(levels, near));
    }
    return peaks;
}

template <typename Values> float median(Values &values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

LevelDistance::LevelDistance(const BandLevels &first, const BandLevels &second)
    : m_first(first)
    , m_second(second)
    , m_firstPeaks(peaksOf(first))
    , m_secondPeaks(peaksOf(second))
{
}

bool LevelDistance::isInBoth(qsizetype frame, qsizetype offset) const
{
    return frame >= 0 && frame < firstFrames() && frame + offset >= 0 && frame + offset < secondFrames();
}

void LevelDistance::learnBias(qsizetype begin, qsizetype end, qsizetype offset)
{
    std::array<std::vector<float>, BandLevels::bands> differences;
    for (qsizetype frame = begin; frame < end; ++frame) {
        if (!isInBoth(frame, offset) || firstLevel(frame) < silentDb || secondLevel(frame + offset) < silentDb)
            continue;
        for (std::size_t band = 0; band < BandLevels::bands; ++band)
            differences[band].push_back(decibels(m_first.frame(frame)[band])
                                        - decibels(m_second.frame(frame + offset)[band]));
    }
    if (differences[0].empty())
        return;
    std::ranges::transform(differences, m_bias.begin(), median<std::vector<float>>);
    Bands sorted = m_bias;
    m_gain = median(sorted);
}

LevelDistance::Moment LevelDistance::inFirst(qsizetype frame) const
{
    return { m_first.frame(frame), m_firstPeaks[static_cast<std::size_t>(frame)] };
}

LevelDistance::Moment LevelDistance::inSecond(qsizetype frame) const
{
    return { m_second.frame(frame), m_secondPeaks[static_cast<std::size_t>(frame)] };
}

float LevelDistance::at(qsizetype frame, qsizetype offset) const
{
    const Moment first = inFirst(frame);
    float least = between(first, inSecond(frame + offset), m_bias, m_gain);
    for (const qsizetype other : { frame + offset - 1, frame + offset + 1 })
        if (other >= 0 && other < secondFrames())
            least = std::min(least, between(first, inSecond(other), m_bias, m_gain));
    return least;
}

float LevelDistance::within(bool isInSecond, qsizetype frame, qsizetype other) const
{
    return isInSecond ? between(inSecond(frame), inSecond(other), {}, 0)
                      : between(inFirst(frame), inFirst(other), {}, 0);
}

// The middle one of the bands' differences is what the sound was turned up or down by at this moment.
float LevelDistance::between(const Moment &first, const Moment &second, const Bands &bias, float gain)
{
    const float peak = std::max(first.peak, second.peak + gain);
    const float floor = std::max(peak - maskedBelow, leastDb);
    Bands louder; // of the two
    Bands differences;
    for (std::size_t band = 0; band < BandLevels::bands; ++band) {
        const float one = decibels(first.levels[band]);
        const float other = decibels(second.levels[band]) + bias[band];
        louder[band] = std::max(one, other);
        differences[band] = std::max(one, floor) - std::max(other, floor);
    }
    Bands sorted = differences;
    const float change = median(sorted);
    const float leastDominant = *std::ranges::max_element(louder) - dominantWithin;
    float sum = 0;
    float dominant = 0;
    for (std::size_t band = 0; band < BandLevels::bands; ++band) {
        const float difference = std::abs(differences[band] - change);
        sum += difference;
        if (louder[band] > leastDominant)
            dominant = std::max(dominant, difference);
    }
    return sum / BandLevels::bands + std::max(std::abs(change) - gainLeeway, 0.0F)
        + std::max(dominant - dominantLeeway, 0.0F);
}

float LevelDistance::mean(qsizetype begin, qsizetype end, qsizetype offset) const
{
    begin = std::max({ begin, qsizetype(0), -offset });
    end = std::min({ end, firstFrames(), secondFrames() - offset });
    float sum = 0;
    int count = 0;
    for (qsizetype frame = begin; frame < end; frame += sampling, ++count)
        sum += at(frame, offset);
    return count > 0 ? sum / static_cast<float>(count) : 0;
}

float LevelDistance::firstLevel(qsizetype frame) const
{
    return loudest(m_first, frame);
}

float LevelDistance::secondLevel(qsizetype frame) const
{
    return loudest(m_second, frame);
}

} // namespace epr
