// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// FLAC: stream properties, Vorbis comments and the payload after the last metadata block. False without the
/// signature at the very start or when the list of metadata blocks is cut off.
[[nodiscard]] bool readFlac(QIODevice &device, ProbeResult &result);

} // namespace epr
