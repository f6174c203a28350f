// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

#include <QByteArrayView>

namespace epr {

/// Applies a Vorbis comment structure, which starts with the length of the vendor text. Keys are case-insensitive, a
/// later comment of a kind overwrites an earlier one, and reading ends where the bytes do.
void readVorbisComment(QByteArrayView bytes, ProbeResult &result);

} // namespace epr
