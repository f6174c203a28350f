// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analyser.h"

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

constexpr qsizetype expectedWords = 1024; // two minutes, the longest that is usual, without growing a list
constexpr std::array<float, alternativeShift> silence {};

constexpr int bitCount = bandCount - 1;
constexpr double reliableShare = 0.35; // of the mean change; smaller ones flip when the file is encoded again

/// One word of a fingerprint and the mask of its reliable bits. Bit 0 belongs to the lowest pair of bands.
struct SubFingerprint {
    quint32 word = 0;
    quint32 mask = 0;
};

/// Signs of how the difference of neighbouring bands changed from one frame to the next. Loudness and any fixed
/// equalisation cancel out. A change that is small beside the average one of its frame is left out of the mask.
SubFingerprint subFingerprint(const BandEnergies &previous, const BandEnergies &current)
{
    std::array<double, bitCount> change;
    double sum = 0.0;
    for (int i = 0; i < bitCount; ++i) {
        change[i] = (current[i] - current[i + 1]) - (previous[i] - previous[i + 1]);
        sum += std::abs(change[i]);
    }
    const double least = reliableShare * sum / bitCount;
    SubFingerprint result;
    for (int i = 0; i < bitCount; ++i) {
        result.word |= quint32(change[i] > 0.0) << i;
        result.mask |= quint32(std::abs(change[i]) > least) << i;
    }
    return result;
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

Fingerprinter::Fingerprinter()
    : m_frame(frameLength)
{
    reset();
}

void Fingerprinter::reset()
{
    m_filled = 0;
    m_hasPrevious = false;
    m_words.clear();
    m_masks.clear();
    m_words.reserve(expectedWords);
    m_masks.reserve(expectedWords);
}

void Fingerprinter::feed(std::span<const float> samples)
{
    while (!samples.empty()) {
        const std::size_t count = std::min(samples.size(), m_frame.size() - m_filled);
        std::copy_n(samples.begin(), count, m_frame.begin() + static_cast<std::ptrdiff_t>(m_filled));
        m_filled += count;
        samples = samples.subspan(count);
        if (m_filled == m_frame.size())
            processFrame();
    }
}

void Fingerprinter::processFrame()
{
    m_spectrum.transform(m_frame.data());
    const BandEnergies energies = bandEnergies(m_spectrum);
    if (m_hasPrevious) {
        const SubFingerprint sub = subFingerprint(m_previous, energies);
        m_words.append(sub.word);
        m_masks.append(sub.mask);
    }
    m_previous = energies;
    m_hasPrevious = true;
    std::copy(m_frame.begin() + hopLength, m_frame.end(), m_frame.begin());
    m_filled = frameLength - hopLength;
}

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
