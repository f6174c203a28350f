// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalplan.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>

#include <utility>

namespace epr {

namespace {

/// One group after the look at its files.
struct CheckedGroup {
    qint32 id = 0;
    CheckedCandidates ticked;
    CheckedCandidates unticked;
};

QString survivorChangedMessage(qint32 id)
{
    return QCoreApplication::translate(
               "epr::Cleanup",
               "Group %1 was left alone: the copy to keep changed since the scan. Scan again to "
               "compare it afresh.")
        .arg(id);
}

QHash<qint32, QString> refusals(const QList<CheckedGroup> &groups)
{
    QList<RemovalGroup> members;
    QSet<QString> ticked;
    for (const CheckedGroup &group : groups) {
        members.append({ group.id, group.ticked.paths + group.unticked.paths });
        ticked.unite({ group.ticked.paths.cbegin(), group.ticked.paths.cend() });
    }
    QHash<qint32, QString> reasons;
    const QList<RefusedGroup> refused = groupsWithoutSurvivor(members, ticked);
    for (const RefusedGroup &group : refused)
        reasons.insert(group.id, group.reason);
    return reasons;
}

} // namespace

RemovalPlan planRemoval(const QList<TickedGroup> &groups)
{
    QList<CheckedGroup> checked;
    for (const TickedGroup &group : groups)
        checked.append({ group.id, checkCandidates(group.ticked), checkCandidates(group.unticked) });
    const QHash<qint32, QString> reasons = refusals(checked);

    RemovalPlan plan;
    for (const CheckedGroup &group : std::as_const(checked)) {
        plan.refused += static_cast<qint32>(group.ticked.errors.size());
        plan.errors += group.ticked.errors;
        const auto reason = reasons.constFind(group.id);
        if (reason == reasons.cend()) {
            plan.paths += group.ticked.paths;
            continue;
        }
        plan.refused += static_cast<qint32>(group.ticked.paths.size());
        plan.errors += group.unticked.errors.isEmpty() ? *reason : survivorChangedMessage(group.id);
    }
    return plan;
}

} // namespace epr
