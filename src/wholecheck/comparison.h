// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "soundprofile.h"

namespace epr {

/// Compares two recordings over their whole length, wherever either of them begins. Another loudness, another spectrum,
/// another speed of up to half a percent, and what an encoder does to a sound are no differences. The track indexes of
/// the result are left to the caller.
[[nodiscard]] PairCheck compareWhole(const SoundProfile &first, const SoundProfile &second);

} // namespace epr
