// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "soundprofile.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace epr {

namespace {

constexpr float silentBelow = 0.001F; // -60 dBFS
constexpr float fullScale = 0.9999F; // the highest value of 16 bits is 0.99997
constexpr qint64 leastInARow = 3; // fewer are peaks that were normalised to full scale
constexpr std::array<float, alternativeShift> silence {};

} // namespace

SoundProfiler::SoundProfiler(int channels, int sampleRate)
    : m_channels(channels)
    , m_sampleRate(sampleRate)
    , m_fullScale(static_cast<std::size_t>(channels))
    , m_loudness(channels, sampleRate)
    , m_spectrumEnd(sampleRate)
    , m_resampled(Resampler::maxBlock)
{
    m_resampler.reset(sampleRate);
    m_alternative.feed(silence);
}

void SoundProfiler::feed(std::span<const float> interleaved)
{
    const auto channels = static_cast<std::size_t>(m_channels);
    for (std::size_t left = interleaved.size() / channels; left > 0;) {
        const std::size_t frames = std::min(left, Resampler::maxBlock);
        const std::span<const float> block = interleaved.first(frames * channels);
        measure(block);
        m_loudness.add(block);
        m_mono.assign(frames, 0.0F);
        for (std::size_t i = 0; i < block.size(); ++i)
            m_mono[i / channels] += block[i] / static_cast<float>(m_channels);
        m_spectrumEnd.feed(m_mono);
        feedMono(m_mono);
        interleaved = interleaved.subspan(block.size());
        left -= frames;
    }
}

void SoundProfiler::measure(std::span<const float> interleaved)
{
    std::size_t channel = 0;
    for (const float sample : interleaved) {
        const float height = std::abs(sample);
        if (height > silentBelow) {
            m_lastSound = m_frames;
            if (m_firstSound < 0)
                m_firstSound = m_frames;
        }
        qint64 &inARow = m_fullScale[channel];
        inARow = height >= fullScale ? inARow + 1 : 0;
        if (inARow >= leastInARow)
            m_clipped += inARow == leastInARow ? leastInARow : 1;
        if (++channel == m_fullScale.size()) {
            channel = 0;
            ++m_frames;
        }
    }
}

void SoundProfiler::feedMono(std::span<const float> block)
{
    m_resampler.write(block);
    std::size_t count = 0;
    do {
        count = m_resampler.read(m_resampled);
        const std::span<const float> resampled(m_resampled.data(), count);
        m_main.feed(resampled);
        m_alternative.feed(resampled);
        m_levels.feed(resampled);
    } while (count == m_resampled.size());
}

SoundProfile SoundProfiler::finish()
{
    SoundProfile profile;
    profile.fingerprint = { m_main.words(), m_main.masks(), m_alternative.words(), m_alternative.masks() };
    profile.levels = m_levels.take();
    SoundMeasures &measures = profile.measures;
    measures.durationMs = toMs(m_frames);
    measures.loudness = m_loudness.loudness();
    measures.truePeak = m_loudness.truePeak();
    measures.clippedSamples = m_clipped;
    measures.silentStartMs = toMs(m_firstSound < 0 ? m_frames : m_firstSound);
    measures.silentEndMs = toMs(m_frames - 1 - m_lastSound);
    measures.bandwidthHz = m_spectrumEnd.endHz(75); // quieter, nobody hears anything
    measures.clearTrebleHz =
        m_spectrumEnd.endHz(60); // louder than what encoders put in the place of what they leave out
    return profile;
}

} // namespace epr
