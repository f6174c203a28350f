// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

#include <QByteArrayView>

namespace epr {

inline constexpr qint64 id3v1Size = 128; ///< bytes, at the very end of a file

/// Fills the fields that are still empty from the last 128 bytes of a file. Returns false, and changes nothing, when
/// they are not an ID3v1 tag. Its comment is not read.
[[nodiscard]] bool applyId3v1(QByteArrayView tag, ProbeResult &result);

} // namespace epr
