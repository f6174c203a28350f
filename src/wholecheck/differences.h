// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "leveldistance.h"
#include "soundcheck.h"

namespace epr {

/// What is unlike in two recordings that go together as the offsets say: for each frame of the first, how many frames
/// later the second has it, or CommonPath::nowhere. In the order of time.
[[nodiscard]] QList<SoundDifference> differencesOf(const LevelDistance &distance,
                                                   const std::vector<qsizetype> &offsets);

} // namespace epr
