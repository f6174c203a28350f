// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bandlevels.h"

#include "spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace epr {

namespace {

constexpr std::size_t frameSize = 2 * BandLevels::hop;

static_assert(BandLevels::frameMs == 1000.0 * BandLevels::hop / analysisRate);

/// Bins of 21.5 Hz: even steps at first, where a band cannot be narrower, then by about a quarter each.
constexpr std::array<std::size_t, BandLevels::bands + 1> edges { 5,  8,  11, 14, 18,  23,  29,  36, 44,
                                                                 54, 66, 80, 97, 118, 143, 175, 220 };

quint8 levelOf(float power)
{
    const double db = 10 * std::log10(std::max(static_cast<double>(power), 1e-12));
    return static_cast<quint8>(std::clamp((db - BandLevels::leastDb) / BandLevels::stepDb, 0.0, 255.0));
}

} // namespace

// The first frame is half before the beginning, so that frame n is around n hops.
BandLevelMeter::BandLevelMeter()
    : m_spectrum(frameSize)
    , m_frame(frameSize)
    , m_filled(BandLevels::hop)
{
}

void BandLevelMeter::feed(std::span<const float> samples)
{
    while (!samples.empty()) {
        const std::size_t count = std::min(samples.size(), frameSize - m_filled);
        std::copy_n(samples.begin(), count, m_frame.begin() + static_cast<std::ptrdiff_t>(m_filled));
        m_filled += count;
        samples = samples.subspan(count);
        if (m_filled == frameSize)
            measureFrame();
    }
}

void BandLevelMeter::measureFrame()
{
    const std::span<const float> powers = m_spectrum.of(m_frame);
    for (std::size_t band = 0; band < BandLevels::bands; ++band) {
        float sum = 0;
        for (std::size_t bin = edges[band]; bin < edges[band + 1]; ++bin)
            sum += powers[bin];
        m_result.levels.push_back(levelOf(sum));
    }
    std::copy(m_frame.begin() + BandLevels::hop, m_frame.end(), m_frame.begin());
    m_filled = frameSize - BandLevels::hop;
}

} // namespace epr
