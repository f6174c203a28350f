// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "soundcheck.h"

#include <memory>
#include <span>

namespace epr {

/// Measures how loud a sound is as a whole (EBU R 128), as it is decoded. One channel counts as the two
/// loudspeakers that it will be heard from.
class LoudnessMeter final {
public:
    enum class Measure { Loudness, LoudnessAndTruePeak }; ///< the peak costs several times the loudness

    /// Rate in Hz; what cannot be measured leaves noLevel.
    LoudnessMeter(int channels, int sampleRate, Measure measure = Measure::LoudnessAndTruePeak);

    ~LoudnessMeter();
    Q_DISABLE_COPY_MOVE(LoudnessMeter)

    void add(std::span<const float> interleaved); ///< whole frames, nominally -1 to 1

    [[nodiscard]] double loudness() const; ///< LUFS, integrated; noLevel for silence and for less than 0.4 s
    [[nodiscard]] double truePeak() const; ///< dBTP, the highest of all channels

private:
    struct State;
    std::unique_ptr<State> m_state; ///< null = a rate or a number of channels that has no meaning
};

} // namespace epr
