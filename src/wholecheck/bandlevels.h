// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "powerspectrum.h"

#include <QtGlobal>

namespace epr {

/// How loud a sound is in some bands, frame by frame: enough to see a word muted, in a byte for each.
struct BandLevels {
    static constexpr std::size_t bands = 16; ///< 110 to 4700 Hz
    static constexpr std::size_t hop = 256; ///< samples at analysisRate between frames
    static constexpr double frameMs = 1000.0 * hop / 11025;
    static constexpr double stepDb = 0.5;
    static constexpr double leastDb = -120; ///< of full scale, the level 0

    std::vector<quint8> levels; ///< frame by frame, the lowest band first

    qsizetype frames() const { return static_cast<qsizetype>(levels.size() / bands); }
    std::span<const quint8, bands> frame(qsizetype index) const
    {
        return std::span<const quint8, bands>(levels.data() + static_cast<std::size_t>(index) * bands, bands);
    }
};

/// Makes them of a mono signal at analysisRate, however that is cut into pieces.
class BandLevelMeter final {
public:
    BandLevelMeter();

    void feed(std::span<const float> samples);
    BandLevels take() { return std::move(m_result); } ///< once, at the end

private:
    void measureFrame();

    PowerSpectrum m_spectrum;
    std::vector<float> m_frame;
    std::size_t m_filled = 0;
    BandLevels m_result;
};

} // namespace epr
