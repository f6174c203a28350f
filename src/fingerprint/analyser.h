// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "resampler.h"
#include "spectrum.h"

#include <QList>

namespace epr {

constexpr int hopLength = frameLength / 3; ///< samples between frames, so that they overlap by two thirds
constexpr int alternativeShift = hopLength / 2; ///< samples by which the alternative frames start earlier

/// Cuts a signal at analysisRate into overlapping frames and makes a word of every two neighbouring ones: n frames give
/// n - 1 words. What does not fill the last frame is ignored.
class Fingerprinter final {
public:
    Fingerprinter();

    const QList<quint32> &words() const { return m_words; }
    const QList<quint32> &masks() const { return m_masks; }

    void reset();
    void feed(std::span<const float> samples);

private:
    void processFrame();

    std::vector<float> m_frame;
    std::size_t m_filled = 0; ///< samples at the front of m_frame that are in
    Spectrum m_spectrum;
    BandEnergies m_previous {};
    bool m_hasPrevious = false;
    QList<quint32> m_words;
    QList<quint32> m_masks;
};

/// The built-in analysis of one signal: mono samples in, two fingerprints out. The alternative one is made on frames
/// that start half a hop earlier, so that a copy that is cut differently is never more than a quarter of a hop off one
/// of the two. Deterministic, and independent of how the samples are cut into chunks.
class Analyser final {
public:
    Analyser();

    const Fingerprinter &main() const { return m_main; }
    const Fingerprinter &alternative() const { return m_alternative; }

    /// Forgets everything and expects samples at inputRate Hz from now on; a rate below 1 counts as analysisRate.
    void reset(int inputRate);

    /// Takes the next count samples; a count of 0 or less is ignored.
    void feed(const float *samples, qsizetype count);

private:
    void feedBlock(std::span<const float> block);

    Resampler m_resampler;
    Fingerprinter m_main;
    Fingerprinter m_alternative;
    std::vector<float> m_resampled;
    bool m_alternativePrimed = false;
};

} // namespace epr
