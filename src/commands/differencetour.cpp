// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "differencetour.h"

#include "groupcheck.h"
#include "review.h"

#include <algorithm>

namespace epr {

DifferenceTour::DifferenceTour(const Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
{
}

void DifferenceTour::setMember(int group, int member)
{
    if (group == m_group && member == m_member)
        return;
    m_group = group;
    m_member = member;
    m_next = 0;
}

void DifferenceTour::goOn(bool isChecking)
{
    int group = std::max(m_group, 0);
    int member = std::max(m_member, 0);
    for (qsizetype next = m_next; group < m_review.groups().size(); ++group, member = 0) {
        for (; member < m_review.groups().at(group).members.size(); ++member, next = 0) {
            if (goTo(group, member, next))
                return;
        }
    }
    const bool wasLed = m_group >= 0;
    m_group = -1;
    if (isChecking)
        return Q_EMIT statusMessage(tr("No further difference has been found yet. The check goes on."));
    Q_EMIT statusMessage(wasLed ? tr("No further difference. The next press begins with the first group.")
                                : tr("No check has found a difference."));
}

bool DifferenceTour::goTo(int group, int member, qsizetype difference)
{
    const MatchGroup &record = m_review.groups().at(group);
    const std::optional<PairCheck> pair = pairCheck(record, record.keep, record.members.at(member));
    const bool isShown = m_review.state(group) != GroupState::NotDuplicates;
    if (!isShown || !pair || difference >= pair->differences.size())
        return false;
    // What is missing at the start leaves its end as the first moment that both have.
    const SoundDifference &found = pair->differences.at(difference);
    const bool isStart = found.kind == SoundDifference::Kind::StartsLater;
    constexpr qint64 leadMs = 2000;
    const DifferencePlace place { m_review.tracks().value(record.keep),
                                  m_review.tracks().value(record.members.at(member)),
                                  std::max<qint64>((isStart ? found.firstEndMs : found.firstStartMs) - leadMs, 0),
                                  isStart ? found.secondEndMs - found.firstEndMs
                                          : found.secondStartMs - found.firstStartMs };
    setMember(group, member);
    m_next = difference + 1;
    Q_EMIT reached(group, member);
    Q_EMIT placeWanted(place);
    return true;
}

} // namespace epr
