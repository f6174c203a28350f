// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "resultstotals.h"

#include <QString>

namespace epr {

/// The line below the results of a scan.
[[nodiscard]] QString summaryText(const ResultsTotals &totals);

/// How long a scan took: "4.2 s", from one minute "3:07", from one hour "1:02:09".
[[nodiscard]] QString elapsedText(qint64 elapsedMs);

} // namespace epr
