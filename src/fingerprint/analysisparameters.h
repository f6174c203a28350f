// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace epr {

/// What the built-in analysis is made of. Fingerprints in the cache depend on every figure here.

constexpr int analysisRate = 11025; ///< Hz; a quarter of the CD rate, and still far above the highest band
constexpr int frameLength = 4096; ///< samples, 372 ms; one spectrum bin is 2.7 Hz wide
constexpr int hopLength = frameLength / 3; ///< samples between frames, so that they overlap by two thirds
constexpr int alternativeShift = hopLength / 2; ///< samples by which the alternative frames start earlier
constexpr int bandCount = 33; ///< one more than a word has bits: every bit compares two neighbouring bands

} // namespace epr
