// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "analysisparameters.h"

#include <array>

namespace epr {

class Spectrum;

using BandEnergies = std::array<double, bandCount>;

/// First bins of the bands, and after them the bin where the last band ends. Logarithmic from 300 Hz to 2000 Hz, where
/// every codec and every broadcast chain leaves the music alone.
[[nodiscard]] const std::array<int, bandCount + 1> &bandEdges();

/// Natural logarithm of the power in each band; digital silence has a floor of ln(1e-12).
[[nodiscard]] BandEnergies bandEnergies(const Spectrum &spectrum);

} // namespace epr
