// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "powerspectrum.h"

#include <QtGlobal>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace epr {

using std::numbers::pi;

PowerSpectrum::PowerSpectrum(std::size_t length)
    : m_window(length)
    , m_turns(length / 2)
    , m_order(length)
    , m_bins(length)
    , m_powers(length / 2 + 1)
{
    Q_ASSERT(std::has_single_bit(length) && length > 1);
    const auto size = static_cast<double>(length);
    // A Hann window halves what is summed, and a sine has half of its amplitude in either half of the spectrum.
    for (std::size_t i = 0; i < length; ++i)
        m_window[i] = static_cast<float>(2 * (1 - std::cos(2 * pi * static_cast<double>(i) / size)) / size);
    for (std::size_t i = 0; i < length / 2; ++i)
        m_turns[i] = std::polar(1.0F, static_cast<float>(-2 * pi * static_cast<double>(i) / size));
    for (std::size_t i = 1; i < length; ++i)
        m_order[i] = m_order[i / 2] / 2 + (i % 2 == 1 ? length / 2 : 0);
}

std::span<const float> PowerSpectrum::of(std::span<const float> frame)
{
    for (std::size_t i = 0; i < m_bins.size(); ++i)
        m_bins[m_order[i]] = frame[i] * m_window[i];
    transform();
    std::transform(m_bins.begin(), m_bins.begin() + static_cast<std::ptrdiff_t>(m_powers.size()), m_powers.begin(),
                   [](const std::complex<float> &bin) { return std::norm(bin); });
    return m_powers;
}

void PowerSpectrum::transform()
{
    for (std::size_t half = 1; half < m_bins.size(); half *= 2) {
        const std::size_t step = m_turns.size() / half;
        for (std::size_t begin = 0; begin < m_bins.size(); begin += 2 * half) {
            for (std::size_t i = 0; i < half; ++i) {
                std::complex<float> &low = m_bins[begin + i];
                std::complex<float> &high = m_bins[begin + half + i];
                const std::complex<float> turn = m_turns[i * step];
                const std::complex<float> turned(high.real() * turn.real() - high.imag() * turn.imag(),
                                                 high.real() * turn.imag() + high.imag() * turn.real());
                high = low - turned;
                low += turned;
            }
        }
    }
}

} // namespace epr
