// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace epr {

struct SpectrumTables;

/// The bins that a Spectrum computes: those below 2018 Hz, and so all of the highest band.
constexpr int spectrumBins = 750;

/// Power spectrum of one Hann-windowed frame of frameLength samples, up to spectrumBins.
class Spectrum final {
public:
    Spectrum();

    /// Replaces the spectrum by that of the frameLength samples at frame.
    void transform(const float *frame);

    /// Squared magnitude of a bin from 0 to spectrumBins - 1.
    [[nodiscard]] double power(int bin) const;

private:
    void load(const float *frame);
    void transformGroupsOfFour();
    void combine(int half);
    void combineLowBins(int half);

    const SpectrumTables &m_tables;
    std::vector<double> m_re;
    std::vector<double> m_im;
};

} // namespace epr
