// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr::vfd {

/// Hours, minutes and seconds as the panel shows them: "0:04:05". Seconds are truncated; below 0 counts as 0.
[[nodiscard]] QString timeText(qint64 timeMs);

} // namespace epr::vfd
