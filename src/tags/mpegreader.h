// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// MPEG audio (Layers I to III) with ID3v2 and ID3v1 tags. An APE tag at the end is stepped over. False when there is
/// no payload or no frame in its first 256 KiB.
[[nodiscard]] bool readMpeg(QIODevice &device, ProbeResult &result);

} // namespace epr
