// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analyser.h"

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

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
