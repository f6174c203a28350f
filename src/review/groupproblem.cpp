// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "groupproblem.h"

#include "groupcheck.h"
#include "review.h"

#include <QCoreApplication>

namespace epr {

GroupProblem groupProblem(const Review &review, int group)
{
    const MatchGroup &record = review.groups().at(group);
    const GroupState state = review.state(group);
    if (state == GroupState::NotDuplicates)
        return GroupProblem::None;
    if (review.isWhollyTicked(group))
        return GroupProblem::WhollyTicked;
    if (const FileState kept = review.fileState(record.keep); kept != FileState::AsScanned)
        return kept == FileState::Vanished ? GroupProblem::KeptVanished : GroupProblem::KeptChanged;
    return state != GroupState::Done && betterCopy(record) >= 0 ? GroupProblem::KeptIsWorse : GroupProblem::None;
}

QString groupProblemText(GroupProblem problem)
{
    switch (problem) {
    case GroupProblem::None:
        break;
    case GroupProblem::WhollyTicked:
        return QCoreApplication::translate("epr::GroupProblem", "every copy is ticked");
    case GroupProblem::KeptVanished:
        return QCoreApplication::translate("epr::GroupProblem", "the kept copy is no longer there");
    case GroupProblem::KeptChanged:
        return QCoreApplication::translate("epr::GroupProblem", "the kept copy changed since the scan");
    case GroupProblem::KeptIsWorse:
        return QCoreApplication::translate("epr::GroupProblem", "the kept copy is the worse one");
    }
    return {};
}

} // namespace epr
