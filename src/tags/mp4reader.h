// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// MPEG-4 audio: duration, tags and the media data as payload; sampleRate stays unknown and channels becomes 2. False
/// when there is neither a duration nor a payload.
[[nodiscard]] bool readMp4(QIODevice &device, ProbeResult &result);

/// Reads the atoms in [start, end) and in the containers among them.
void walkAtoms(QIODevice &device, qint64 start, qint64 end, ProbeResult &result);

/// Reads the items of an "ilst" atom, whose children lie in [start, end).
void readItemList(QIODevice &device, qint64 start, qint64 end, ProbeResult &result);

} // namespace epr
