// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "powerspectrum.h"

namespace epr {

/// Finds out up to which frequency a sound has anything.
class SpectrumEnd final {
public:
    explicit SpectrumEnd(int sampleRate); ///< Hz

    void feed(std::span<const float> samples); ///< mono, at that rate

    /// In Hz, up to where there is anything that is quieter than the loudest band by at most so many dB; 0 = there was
    /// too little sound to tell.
    [[nodiscard]] int endHz(double belowPeakDb) const;

private:
    void addFrame();

    int m_sampleRate;
    PowerSpectrum m_spectrum;
    std::vector<float> m_frame;
    std::size_t m_filled = 0;
    std::size_t m_skip = 0; ///< samples that lie between two frames
    std::vector<double> m_sum; ///< of the powers of each bin
    int m_frames = 0;
};

} // namespace epr
