// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// Ogg Vorbis and Opus: the header packets and the duration from the last page. False only when the file is no Ogg
/// file. There is no payload range: the header packets share pages with audio.
[[nodiscard]] bool readOgg(QIODevice &device, ProbeResult &result);

} // namespace epr
