// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <span>
#include <vector>

namespace epr {

/// Hz; what the built-in analysis works at: a quarter of the CD rate, and still far above the highest band. As all its
/// figures, this one is in every fingerprint of the cache.
constexpr int analysisRate = 11025;

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

} // namespace epr
