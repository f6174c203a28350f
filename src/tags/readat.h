// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

class QIODevice;

namespace epr {

/// Blocks (chunks, pages, atoms, metadata blocks) that one file is walked for. A day of one-second fragments stays
/// below it; a file of nothing but empty blocks must not hold a scan up.
inline constexpr int maxBlocks = 200'000;

/// The bytes at [offset, offset + count) as far as the device has them. The buffer is sized by what is there, so a
/// length field may be passed as it stands in the file.
[[nodiscard]] QByteArray readAt(QIODevice &device, qint64 offset, qint64 count);

} // namespace epr
