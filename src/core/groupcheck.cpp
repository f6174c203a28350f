// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "groupcheck.h"

#include <algorithm>
#include <utility>

namespace epr {

namespace {

PairCheck mirrored(PairCheck pair)
{
    std::swap(pair.first, pair.second);
    pair.offsetMs = -pair.offsetMs;
    for (SoundDifference &difference : pair.differences) {
        difference.isInSecond = !difference.isInSecond;
        std::swap(difference.firstStartMs, difference.secondStartMs);
        std::swap(difference.firstEndMs, difference.secondEndMs);
    }
    return pair;
}

bool hasFailed(const MatchGroup &group, qint32 member)
{
    const auto measures = group.check.measures.constFind(member);
    return measures != group.check.measures.cend() && !measures->error.isEmpty();
}

} // namespace

std::optional<PairCheck> pairCheck(const MatchGroup &group, qint32 first, qint32 second)
{
    for (const PairCheck &pair : group.check.pairs) {
        if (pair.first == first && pair.second == second)
            return pair;
        if (pair.first == second && pair.second == first)
            return mirrored(pair);
    }
    return std::nullopt;
}

CheckState checkState(const MatchGroup &group, qint32 member)
{
    if (member == group.keep || !group.check.isDone())
        return CheckState::Unchecked;
    if (hasFailed(group, member) || hasFailed(group, group.keep))
        return CheckState::Failed;
    const std::optional<PairCheck> pair = pairCheck(group, group.keep, member);
    if (!pair)
        return CheckState::Unchecked;
    return pair->isAligned && pair->differences.isEmpty() ? CheckState::Alike : CheckState::Differs;
}

std::optional<qint64> offsetBetween(const MatchGroup &group, qint32 first, qint32 second)
{
    if (const std::optional<PairCheck> pair = pairCheck(group, first, second); pair && pair->isAligned)
        return pair->offsetMs;
    const auto a = group.spans.constFind(first);
    const auto b = group.spans.constFind(second);
    if (a == group.spans.cend() || b == group.spans.cend() || !a->isPlaced || !b->isPlaced)
        return std::nullopt;
    return a->startMs - b->startMs;
}

} // namespace epr
