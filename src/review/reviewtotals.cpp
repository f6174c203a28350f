// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewtotals.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace epr {

namespace {

// Whose files are not as the scan saw them.
QString otherNowText(const ReviewTotals &totals)
{
    if (totals.changedFiles == 0 && totals.vanishedFiles == 0)
        return {};
    return QCoreApplication::translate("epr::Review", "Since the scan: %1 copies changed, %2 vanished.")
        .arg(countText(totals.changedFiles), countText(totals.vanishedFiles));
}

} // namespace

void ReviewTotals::count(const MatchGroup &group)
{
    ++groups;
    redundantCopies += std::max<qint64>(group.members.size() - 1, 0);
    redundantBytes += group.reclaimableBytes;
}

ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups)
{
    ReviewTotals totals { .files = files };
    for (const MatchGroup &group : groups)
        totals.count(group);
    return totals;
}

QString summaryText(const ReviewTotals &totals)
{
    const QLocale locale;
    QString text;
    if (totals.groups == 0) {
        text = QCoreApplication::translate("epr::MainWindow", "Scanned %1 files - no duplicates found.")
                   .arg(locale.toString(totals.files));
    } else {
        text = QCoreApplication::translate("epr::MainWindow",
                                           "%1 files scanned - %2 duplicate groups - %3 redundant copies (%4). "
                                           "Currently selected for removal: %5 file(s), %6.")
                   .arg(locale.toString(totals.files), locale.toString(totals.groups),
                        locale.toString(totals.redundantCopies), sizeText(totals.redundantBytes),
                        locale.toString(totals.tickedFiles), sizeText(totals.tickedBytes));
    }
    for (const QString &remark : { setAsideText(totals.setAside), otherNowText(totals) }) {
        if (!remark.isEmpty())
            text += u' ' + remark;
    }
    return text;
}

QString setAsideText(qint64 groups)
{
    return groups == 0 ? QString()
                       : QCoreApplication::translate("epr::Review", "%Ln group(s) set aside as not duplicates.",
                                                     nullptr, static_cast<int>(groups));
}

QString incompleteText(int unreadableFolders)
{
    return QCoreApplication::translate("epr::MainWindow", "incomplete: %n folder(s) could not be read", nullptr,
                                       unreadableFolders);
}

} // namespace epr
