// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fingerprinter.h"

#include "subfingerprint.h"

#include <algorithm>

namespace epr {

namespace {

constexpr qsizetype expectedWords = 1024; // two minutes, the longest that is usual, without growing a list

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

} // namespace epr
