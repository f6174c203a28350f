// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analyser.h"

#include <algorithm>
#include <array>

namespace epr {

namespace {

constexpr std::array<float, alternativeShift> silence {};

} // namespace

Analyser::Analyser()
    : m_resampled(Resampler::maxBlock)
{
    reset(analysisRate);
}

void Analyser::reset(int inputRate)
{
    m_resampler.reset(inputRate);
    m_main.reset();
    m_alternative.reset();
    m_alternativePrimed = false;
}

void Analyser::feed(const float *samples, qsizetype count)
{
    if (count <= 0)
        return;
    if (!m_alternativePrimed) {
        m_alternative.feed(silence);
        m_alternativePrimed = true;
    }
    std::span<const float> rest(samples, static_cast<std::size_t>(count));
    while (!rest.empty()) {
        const std::size_t size = std::min(rest.size(), Resampler::maxBlock);
        feedBlock(rest.first(size));
        rest = rest.subspan(size);
    }
}

void Analyser::feedBlock(std::span<const float> block)
{
    m_resampler.write(block);
    std::size_t count = 0;
    do {
        count = m_resampler.read(m_resampled);
        const std::span<const float> resampled(m_resampled.data(), count);
        m_main.feed(resampled);
        m_alternative.feed(resampled);
    } while (count == m_resampled.size());
}

} // namespace epr
