// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <array>
#include <bit>
#include <cmath>

// Fingerprints with the statistics of music, without music: a random walk per frequency band, from which the built-in
// words come as they come from real bands, and a random walk per bit for the words of fpcalc. Neighbouring words
// resemble each other, silence and some other values are common to many tracks, copies differ where a band's sign was
// close to a change.
namespace epr::bench {

class Random final {
public:
    explicit Random(quint64 seed)
        : m_state(mixed(seed)) // neighbouring seeds would give one sequence, shifted by a step
    {
    }

    quint64 bits()
    {
        m_state += 0x9E3779B97F4A7C15U;
        return mixed(m_state);
    }

    int below(int limit) { return static_cast<int>((bits() >> 32) * static_cast<quint64>(limit) >> 32); }

    /// Nearly normal, of variance 1: four uniform numbers added up.
    float normal()
    {
        const quint64 r = bits();
        const auto sum = static_cast<qint32>((r & 0xFFFF) + (r >> 16 & 0xFFFF) + (r >> 32 & 0xFFFF) + (r >> 48));
        return static_cast<float>(sum - 2 * 0xFFFF) / 37837.0F;
    }

private:
    static quint64 mixed(quint64 z)
    {
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9U;
        z = (z ^ z >> 27) * 0x94D049BB133111EBU;
        return z ^ z >> 31;
    }

    quint64 m_state;
};

/// The band energies of one recording as they change from half a hop to the next.
class Bands final {
public:
    static constexpr std::size_t count = 33;
    using Energies = std::array<float, count>;

    explicit Bands(quint64 seed)
        : m_random(seed)
    {
        for (int i = 0; i < 40; ++i)
            next();
    }

    const Energies &next()
    {
        float shared = 0; // what neighbouring bands have in common
        for (std::size_t band = 0; band < count; ++band) {
            shared = bandMemory * shared + m_random.normal();
            m_slow[band] = memory * m_slow[band] + shared;
            m_energies[band] = memory * m_energies[band] + m_slow[band];
        }
        return m_energies;
    }

private:
    static constexpr float memory = 0.8F; // of half a hop
    static constexpr float bandMemory = 0.15F;

    Random m_random;
    Energies m_slow {};
    Energies m_energies {};
};

struct WordAndMask {
    quint32 word = 0;
    quint32 mask = 0;
};

inline WordAndMask wordOf(const Bands::Energies &now, const Bands::Energies &before)
{
    std::array<float, 32> difference {};
    float sum = 0;
    for (std::size_t i = 0; i < 32; ++i) {
        difference[i] = now[i] - now[i + 1] - (before[i] - before[i + 1]);
        sum += std::fabs(difference[i]);
    }
    WordAndMask result;
    for (std::size_t i = 0; i < 32; ++i) {
        result.word |= difference[i] > 0 ? 1U << i : 0;
        result.mask |= std::fabs(difference[i]) > 0.35F * sum / 32 ? 1U << i : 0;
    }
    return result;
}

/// The recording of the given number in a given encoding; encoding 0 is the original.
inline TrackInfo builtinTrack(quint64 recording, quint64 encoding, qsizetype wordCount)
{
    constexpr float codingNoise = 0.35F; // against energies of a standard deviation of about 3
    Bands bands(recording);
    Random noise(recording ^ encoding << 40 ^ 0x5555);
    Random traits(recording + 77);
    const qsizetype silence = traits.below(10) == 0 ? traits.below(20) : 0;
    TrackInfo track;
    track.stream.durationMs = 90000 + static_cast<qint64>(90000 * std::exp(0.5F * traits.normal())) + noise.below(60);
    std::array<Bands::Energies, 3> heard {}; // the last three half hops
    for (qsizetype half = 0; half < 2 * wordCount + 2; ++half) {
        heard = { heard[1], heard[2], bands.next() };
        for (float &energy : heard[2])
            energy += encoding != 0 ? codingNoise * noise.normal() : 0;
        if (half < 2)
            continue;
        const WordAndMask made = half / 2 <= silence ? WordAndMask() : wordOf(heard[2], heard[0]);
        (half % 2 == 0 ? track.fingerprint.alternative : track.fingerprint.words) << made.word;
        (half % 2 == 0 ? track.fingerprint.alternativeMask : track.fingerprint.mask) << made.mask;
    }
    return track;
}

inline TrackInfo fpcalcTrack(quint64 recording, quint64 encoding, qsizetype wordCount)
{
    Random random(recording);
    Random noise(recording ^ encoding << 40 ^ 0x5555);
    TrackInfo track;
    track.stream.durationMs = 90000 + static_cast<qint64>(90000 * std::exp(0.5F * random.normal())) + noise.below(60);
    auto word = static_cast<quint32>(random.bits());
    track.fingerprint.words.reserve(wordCount);
    while (track.fingerprint.words.size() < wordCount) {
        // An eighth of the bits change from word to word; one word in fifty is one of a thousand that everybody has.
        word ^= static_cast<quint32>(random.bits() & random.bits() & random.bits());
        const bool common = random.below(50) == 0;
        const quint32 value = common ? static_cast<quint32>(Random(random.below(1000)).bits()) : word;
        quint32 flips = 0;
        for (int i = noise.below(3); encoding != 0 && i > 0; --i) // a thirtieth of the bits on average
            flips |= 1U << noise.below(32);
        track.fingerprint.words << (value ^ flips);
    }
    return track;
}

} // namespace epr::bench
