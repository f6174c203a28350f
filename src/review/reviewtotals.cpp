// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewtotals.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace epr {

ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups)
{
    ReviewTotals totals { .files = files, .groups = groups.size() };
    for (const MatchGroup &group : groups) {
        totals.redundantCopies += std::max<qint64>(group.members.size() - 1, 0);
        totals.redundantBytes += group.reclaimableBytes;
    }
    return totals;
}

QString summaryText(const ReviewTotals &totals)
{
    const QLocale locale;
    if (totals.groups == 0) {
        return QCoreApplication::translate("epr::MainWindow", "Scanned %1 files - no duplicates found.")
            .arg(locale.toString(totals.files));
    }
    return QCoreApplication::translate("epr::MainWindow",
                                       "%1 files scanned - %2 duplicate groups - %3 redundant copies (%4). Currently "
                                       "selected for removal: %5 file(s), %6.")
        .arg(locale.toString(totals.files), locale.toString(totals.groups), locale.toString(totals.redundantCopies),
             sizeText(totals.redundantBytes), locale.toString(totals.tickedFiles), sizeText(totals.tickedBytes));
}

QString elapsedText(qint64 elapsedMs)
{
    constexpr qint64 minuteMs = 60000;
    if (elapsedMs >= minuteMs)
        return durationText(elapsedMs);
    return QCoreApplication::translate("epr::MainWindow", "%1 s")
        .arg(QLocale().toString(static_cast<double>(elapsedMs) / 1000.0, 'f', 1));
}

} // namespace epr
