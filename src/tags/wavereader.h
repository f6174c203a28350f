// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// RIFF WAVE: the format, the INFO list and the "data" chunk, which is the payload. False when there is no such chunk
/// with anything in it.
[[nodiscard]] bool readWave(QIODevice &device, ProbeResult &result);

} // namespace epr
