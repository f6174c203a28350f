// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <complex>
#include <span>
#include <vector>

namespace epr {

/// Power spectra of Hann-windowed frames of one length, a power of two.
class PowerSpectrum final {
public:
    explicit PowerSpectrum(std::size_t length);

    std::size_t length() const { return m_window.size(); }

    /// The powers of the bins from 0 Hz to half of the sampling rate, length / 2 + 1 of them. A sine of full scale has
    /// 1 in its bin. They hold until the next call.
    std::span<const float> of(std::span<const float> frame);

private:
    void transform();

    std::vector<float> m_window;
    std::vector<std::complex<float>> m_turns; ///< of the unit circle, for half of it
    std::vector<std::size_t> m_order; ///< bits reversed
    std::vector<std::complex<float>> m_bins;
    std::vector<float> m_powers;
};

} // namespace epr
