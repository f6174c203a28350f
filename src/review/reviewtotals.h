// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QString>

namespace epr {

/// What is counted of a review, wherever it is told: below the results, on the console and in the reports.
struct ReviewTotals {
    qint64 files = 0; ///< scanned, whether duplicate or not
    qint64 groups = 0;
    qint64 redundantCopies = 0; ///< members beyond the one to keep, over all groups
    qint64 redundantBytes = 0;
    qint64 tickedFiles = 0;
    qint64 tickedBytes = 0;

    bool operator==(const ReviewTotals &) const = default;
};

/// Of what a scan found, before anything is ticked.
ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups);

/// The line below the results of a scan.
QString summaryText(const ReviewTotals &totals);

/// How long a scan took: "4.2 s", from one minute "3:07", from one hour "1:02:09".
QString elapsedText(qint64 elapsedMs);

} // namespace epr
