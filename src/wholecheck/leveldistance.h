// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bandlevels.h"

#include <QtGlobal>

#include <array>

namespace epr {

/// How unlike two sounds are at a moment, heard through their levels in bands. What an encoder, an equaliser or a
/// compressor does to a sound comes to a few dB.
class LevelDistance final {
public:
    LevelDistance(const BandLevels &first, const BandLevels &second);

    qsizetype firstFrames() const { return m_first.frames(); }
    qsizetype secondFrames() const { return m_second.frames(); }
    bool isInBoth(qsizetype frame, qsizetype offset) const;

    /// Learns from a stretch that both have how much louder the second is in each band.
    void learnBias(qsizetype begin, qsizetype end, qsizetype offset);

    /// In dB, at a frame of the first and the one of the second that lies offset later or a frame beside it. Both must
    /// be there.
    float at(qsizetype frame, qsizetype offset) const;

    /// Mean over a stretch, as far as both are there.
    float mean(qsizetype begin, qsizetype end, qsizetype offset) const;

    /// The same of two frames of one recording.
    float within(bool isInSecond, qsizetype frame, qsizetype other) const;

    float firstLevel(qsizetype frame) const; ///< dB of full scale, of the loudest band
    float secondLevel(qsizetype frame) const;

private:
    using Bands = std::array<float, BandLevels::bands>;

    struct Moment {
        std::span<const quint8, BandLevels::bands> levels;
        float peak = 0; ///< dB
    };

    Moment inFirst(qsizetype frame) const;
    Moment inSecond(qsizetype frame) const;
    static float between(const Moment &first, const Moment &second, const Bands &bias, float gain);

    const BandLevels &m_first;
    const BandLevels &m_second;
    std::vector<float> m_firstPeaks; ///< dB, of the loudest band in a moment around each frame
    std::vector<float> m_secondPeaks;
    Bands m_bias {}; ///< dB, to be added to the second
    float m_gain = 0; ///< the middle one of these
};

} // namespace epr
