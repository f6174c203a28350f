// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace epr {

namespace {

using std::numbers::pi;

constexpr double cutOffHz = 0.45 * analysisRate; // leaves a tenth of the band for the filter to fall off
constexpr double tapsPerRatio = 8.0;
constexpr long minTaps = 15;
constexpr long maxTaps = 193; // reached at 265 kHz; keeps the cost bounded for absurd rates
constexpr double unfilteredRatio = 1.0001; // up to here there is nothing above the new Nyquist frequency

double blackman(int n, int count)
{
    const double phase = 2.0 * pi * n / (count - 1);
    return 0.42 - 0.5 * std::cos(phase) + 0.08 * std::cos(2.0 * phase);
}

double sinc(double x)
{
    return std::abs(x) < 1e-9 ? 1.0 : std::sin(pi * x) / (pi * x);
}

int tapCount(double ratio)
{
    return static_cast<int>(std::clamp(std::lround(tapsPerRatio * ratio) | 1L, minTaps, maxTaps));
}

} // namespace

std::vector<float> antiAliasTaps(int inputRate)
{
    const double ratio = static_cast<double>(inputRate) / analysisRate;
    if (ratio <= unfilteredRatio)
        return {};
    const int count = tapCount(ratio);
    const double width = 2.0 * cutOffHz / inputRate;
    std::vector<double> taps(static_cast<std::size_t>(count));
    double sum = 0.0;
    for (int n = 0; n < count; ++n) {
        const double x = (n - (count - 1) / 2.0) * width;
        const double tap = width * blackman(n, count) * sinc(x);
        taps[static_cast<std::size_t>(n)] = tap;
        sum += tap;
    }
    std::vector<float> normalised(taps.size());
    std::transform(taps.begin(), taps.end(), normalised.begin(),
                   [sum](double tap) { return static_cast<float>(sum != 0.0 ? tap / sum : tap); });
    return normalised;
}

Resampler::Resampler()
{
    m_filterInput.reserve(maxTaps + maxBlock);
    m_pending.reserve(2 * maxBlock);
}

void Resampler::reset(int inputRate)
{
    m_ratio = inputRate < 1 ? 1.0 : static_cast<double>(inputRate) / analysisRate;
    m_taps = antiAliasTaps(inputRate);
    m_filterInput.assign(m_taps.empty() ? 0 : m_taps.size() - 1, 0.0F);
    m_pending.clear();
    m_produced = 0;
    m_consumed = 0.0;
}

void Resampler::write(std::span<const float> block)
{
    Q_ASSERT(block.size() <= maxBlock);
    if (m_taps.empty())
        m_pending.insert(m_pending.end(), block.begin(), block.end());
    else
        appendFiltered(block);
}

// Tap by tap over the whole block rather than sample by sample: every output is still summed in the order of the taps,
// but the compiler can work on several outputs at once.
void Resampler::appendFiltered(std::span<const float> block)
{
    m_filterInput.insert(m_filterInput.end(), block.begin(), block.end());
    const std::size_t begin = m_pending.size();
    m_pending.resize(begin + block.size(), 0.0F);
    float *const output = m_pending.data() + begin;
    for (std::size_t k = 0; k < m_taps.size(); ++k) {
        const float tap = m_taps[k];
        const float *const input = m_filterInput.data() + k;
        for (std::size_t n = 0; n < block.size(); ++n)
            output[n] += tap * input[n];
    }
    m_filterInput.erase(m_filterInput.begin(), m_filterInput.begin() + static_cast<std::ptrdiff_t>(block.size()));
}

std::size_t Resampler::read(std::span<float> output)
{
    for (std::size_t written = 0; written < output.size(); ++written, ++m_produced) {
        const double p = position();
        const double i = std::floor(p);
        if (i + 1.0 >= static_cast<double>(m_pending.size())) {
            discardConsumed();
            return written;
        }
        const float *const sample = m_pending.data() + static_cast<std::size_t>(i);
        output[written] = static_cast<float>((p - i) * sample[1] + (1.0 - (p - i)) * sample[0]);
    }
    return output.size();
}

// The count discarded is whole, so position() stays exact: what it subtracts from the absolute position loses no bit.
void Resampler::discardConsumed()
{
    const double whole = std::min(std::floor(position()), static_cast<double>(m_pending.size()));
    m_pending.erase(m_pending.begin(), m_pending.begin() + static_cast<std::ptrdiff_t>(whole));
    m_consumed += whole;
}

} // namespace epr
