// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectrumend.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace epr {

namespace {

constexpr std::size_t frameSize = 2048;
constexpr std::size_t between = 3 * frameSize; // a quarter of the sound tells as much as all of it
constexpr double bandHz = 250; // what is averaged to tell sound from a single tone's trace
constexpr double leastPeak = 1e-8; // -80 dB of full scale, in all frames: of less nothing can be told
constexpr double roundingNoise = 1.6e-11; // -108 dB: that of 16 bits lies at -126 dB in a bin, and more with dither

} // namespace

SpectrumEnd::SpectrumEnd(int sampleRate)
    : m_sampleRate(sampleRate)
    , m_spectrum(frameSize)
    , m_frame(frameSize)
    , m_sum(frameSize / 2 + 1)
{
}

void SpectrumEnd::feed(std::span<const float> samples)
{
    while (!samples.empty()) {
        if (m_skip > 0) {
            const std::size_t skipped = std::min(m_skip, samples.size());
            m_skip -= skipped;
            samples = samples.subspan(skipped);
            continue;
        }
        const std::size_t count = std::min(samples.size(), frameSize - m_filled);
        std::copy_n(samples.begin(), count, m_frame.begin() + static_cast<std::ptrdiff_t>(m_filled));
        m_filled += count;
        samples = samples.subspan(count);
        if (m_filled == frameSize)
            addFrame();
    }
}

void SpectrumEnd::addFrame()
{
    const std::span<const float> powers = m_spectrum.of(m_frame);
    std::transform(m_sum.begin(), m_sum.end(), powers.begin(), m_sum.begin(), std::plus<>());
    ++m_frames;
    m_filled = 0;
    m_skip = between;
}

int SpectrumEnd::endHz(double belowPeakDb) const
{
    const double binHz = static_cast<double>(m_sampleRate) / frameSize;
    const auto binsPerBand = static_cast<std::size_t>(std::max(1.0, std::round(bandHz / binHz)));
    std::vector<double> bands;
    for (std::size_t bin = 0; bin + binsPerBand <= m_sum.size(); bin += binsPerBand) {
        const auto begin = m_sum.begin() + static_cast<std::ptrdiff_t>(bin);
        bands.push_back(*std::min_element(begin, begin + static_cast<std::ptrdiff_t>(binsPerBand)));
    }
    const double peak = bands.empty() ? 0 : *std::max_element(bands.begin(), bands.end());
    if (peak < leastPeak)
        return 0;
    const double least = std::max(peak * std::pow(10, -belowPeakDb / 10), roundingNoise * m_frames);
    const auto last = std::find_if(bands.rbegin(), bands.rend(), [least](double power) { return power > least; });
    return static_cast<int>(
        std::lround(static_cast<double>(bands.rend() - last) * static_cast<double>(binsPerBand) * binHz));
}

} // namespace epr
