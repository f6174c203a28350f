// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <vector>

namespace epr {

/// Hz; what the built-in analysis works at: a quarter of the CD rate, and still far above the highest band. As all its
/// figures, this one is in every fingerprint of the cache.
constexpr int analysisRate = 11025;

constexpr int frameLength = 4096; ///< samples, 372 ms; one spectrum bin is 2.7 Hz wide
constexpr int bandCount = 33; ///< one more than a word has bits: every bit compares two neighbouring bands

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
    double power(int bin) const;

private:
    void load(const float *frame);
    void transformGroupsOfFour();
    void combine(int half);
    void combineLowBins(int half);

    const SpectrumTables &m_tables;
    std::vector<double> m_re;
    std::vector<double> m_im;
};

using BandEnergies = std::array<double, bandCount>;

/// First bins of the bands, and after them the bin where the last band ends. Logarithmic from 300 Hz to 2000 Hz, where
/// every codec and every broadcast chain leaves the music alone.
const std::array<int, bandCount + 1> &bandEdges();

/// Natural logarithm of the power in each band; digital silence has a floor of ln(1e-12).
BandEnergies bandEnergies(const Spectrum &spectrum);

} // namespace epr
