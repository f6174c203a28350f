// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <optional>

class QKeyEvent;

namespace epr::vfd {

/// Where a key on the scrubber leads, within the duration: the arrows by 5 s (with Shift 1 s), the page keys by 30 s,
/// Home and End to the edges. Nothing for all other keys.
[[nodiscard]] std::optional<qint64> seekTarget(const QKeyEvent &key, qint64 positionMs, qint64 durationMs);

} // namespace epr::vfd
