// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectrum.h"

#include <QList>

#include <span>

namespace epr {

/// Low-pass filter that makes room for analysisRate: a Blackman-windowed sinc with a gain of 1 at 0 Hz. Empty when the
/// input rate in Hz needs none.
std::vector<float> antiAliasTaps(int inputRate);

/// Brings mono samples of any rate to analysisRate. The output depends on the samples alone, not on how they were cut
/// into blocks, and no block size or rate makes it allocate more than a few blocks.
class Resampler final {
public:
    Resampler();

    /// Starts a new signal of the given rate in Hz; below 1 the input is taken to be at analysisRate.
    void reset(int inputRate);

    /// Takes the next samples, at most maxBlock of them, once read() has given everything of those before.
    void write(std::span<const float> block);

    /// Fills output from the front and returns how many samples it wrote. Less than the whole output means that more
    /// input is needed.
    std::size_t read(std::span<float> output);

    static constexpr std::size_t maxBlock = 4096;

private:
    void appendFiltered(std::span<const float> block);
    void discardConsumed();
    double position() const { return static_cast<double>(m_produced) * m_ratio - m_consumed; }

    double m_ratio = 1.0;
    std::vector<float> m_taps;
    std::vector<float> m_filterInput; ///< the last samples of the blocks before, then the block
    std::vector<float> m_pending; ///< filtered samples that the interpolation still needs
    qint64 m_produced = 0; ///< output samples since reset()
    double m_consumed = 0.0; ///< pending samples discarded since reset()
};

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
