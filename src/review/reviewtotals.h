// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

/// What is counted of a review, wherever it is told: below the results, on the console and in the reports.
struct ReviewTotals {
    qint64 files = 0; ///< scanned, whether duplicate or not
    qint64 groups = 0;
    qint64 redundantCopies = 0; ///< members beyond the one to keep, over all groups
    qint64 redundantBytes = 0;
    qint64 tickedFiles = 0;
    qint64 tickedBytes = 0;
    qint64 doneGroups = 0;
    qint64 doneBytes = 0; ///< of redundantBytes
    qint64 setAside = 0; ///< groups that are not duplicates; no other figure counts them
    qint64 changedFiles = 0; ///< members that are no longer as they were scanned
    qint64 vanishedFiles = 0;

    void count(const MatchGroup &group);

    bool operator==(const ReviewTotals &) const = default;
};

/// Of what a scan found, before anything is ticked.
ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups);

/// The line below the results of a scan.
QString summaryText(const ReviewTotals &totals);

/// "3 groups set aside as not duplicates.", empty for none.
QString setAsideText(qint64 groups);

/// That so many folders of the scan could not be read, to stand behind its outcome.
QString incompleteText(int unreadableFolders);

} // namespace epr
