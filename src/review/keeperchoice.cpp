// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperchoice.h"

#include "keeperpolicy.h"
#include "review.h"

namespace epr {

namespace {

bool isDecidedByHand(const Review &review, int group)
{
    const GroupDecision decision = review.decision(group);
    return decision.keeperByHand || decision.state != GroupState::Undecided || decision.byHand.contains(true);
}

} // namespace

KeeperChoice chooseKeepersAgain(const Review &review, const ScanOptions &options)
{
    KeeperChoice choice { options, {}, 0 };
    for (int group = 0; group < review.groups().size(); ++group) {
        const MatchGroup &record = review.groups().at(group);
        const qint32 keep = chooseKeeperAgain(record, review.tracks(), options);
        if (keep < 0 || keep == record.keep || review.fileState(keep) != FileState::AsScanned)
            continue;
        if (isDecidedByHand(review, group))
            ++choice.decided;
        else
            choice.changes.append({ group, keep });
    }
    return choice;
}

} // namespace epr
