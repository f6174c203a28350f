// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QtGlobal>

#include <atomic>
#include <span>
#include <vector>

namespace epr {

/// A stereo sound: left and right samples in turn, nominally -1 to 1.
using StereoSound = std::span<const float>;

/// How one sound is taken from another so that as little as possible is left.
struct Subtraction {
    double lagFrames = 0; ///< what A has at frame n, B has at n + lagFrames; with fractions
    double gain = 1; ///< of B

    bool operator==(const Subtraction &) const = default;
};

/// Finds the lag, to within a hundredth of a frame, and the gain of two sounds of one rate in Hz that are copies of one
/// recording: at several places, a second to either side of the lag that is expected there. Fails, in words for the
/// operator, where there is no one lag: the places do not agree, or too few are alike. Soon gives up once told to stop.
[[nodiscard]] Result<Subtraction> findSubtraction(StereoSound a, StereoSound b, int sampleRate, double expectedLag,
                                                  const std::atomic<bool> &stop);

/// A sound moved by a lag with fractions: silent where it has nothing.
class ShiftedSound final {
public:
    ShiftedSound(StereoSound sound, double lagFrames);

    [[nodiscard]] float at(qsizetype frame, qsizetype channel) const;

private:
    StereoSound m_sound;
    qsizetype m_lag; ///< whole frames
    std::vector<float> m_taps; ///< for the rest
};

/// Gives A minus B piece by piece. Where B has no sound, A is left as it is.
class Subtractor final {
public:
    Subtractor(StereoSound a, StereoSound b, const Subtraction &how);

    /// Of that many frames from a frame of A on, as many as it has.
    std::vector<float> difference(qsizetype firstFrame, qsizetype frames);

    /// How loud is what was left so far, relative to A, in dB; minus infinity when nothing was.
    [[nodiscard]] double remainderDb() const;

private:
    StereoSound m_a;
    ShiftedSound m_b;
    float m_gain;
    double m_energyOfA = 0;
    double m_energyLeft = 0;
};

} // namespace epr
