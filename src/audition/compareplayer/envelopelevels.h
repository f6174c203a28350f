// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "envelope.h"

namespace epr {

struct StereoLevels {
    float left = 0;
    float right = 0;
};

/// The peaks of the bucket at a position, for a level meter; silence outside the envelope.
[[nodiscard]] StereoLevels levelsAt(const Envelope &envelope, qint64 positionMs);

} // namespace epr
