// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

/// Minutes and seconds without hours, "60:00" for an hour, so that a column of a report has one form; "-" below 1 ms.
[[nodiscard]] QString reportDurationText(qint64 durationMs);

/// The value in double quotes, those inside it doubled (RFC 4180).
[[nodiscard]] QString csvField(const QString &value);

} // namespace epr
