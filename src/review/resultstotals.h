// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

namespace epr {

/// What the summary line counts. The results model keeps it up to date; nobody has to walk the rows for it.
struct ResultsTotals {
    qint64 files = 0; ///< scanned, whether duplicate or not
    qint64 groups = 0;
    qint64 redundantCopies = 0; ///< members beyond the one to keep, over all groups
    qint64 redundantBytes = 0;
    qint64 tickedFiles = 0;
    qint64 tickedBytes = 0;

    bool operator==(const ResultsTotals &) const = default;
};

} // namespace epr
