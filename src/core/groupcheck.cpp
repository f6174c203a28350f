// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "groupcheck.h"

#include <algorithm>
#include <utility>

namespace epr {

namespace {

bool hasFailed(const MatchGroup &group, qint32 member)
{
    const auto measures = group.check.measures.constFind(member);
    return measures != group.check.measures.cend() && !measures->error.isEmpty();
}

} // namespace

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

bool isChecked(const MatchGroup &group)
{
    return std::ranges::all_of(group.members, [&group](qint32 member) {
        return member == group.keep || checkState(group, member) != CheckState::Unchecked;
    });
}

bool isWorthChecking(const MatchGroup &group)
{
    return group.matchType == MatchType::SameRecording || group.matchType == MatchType::SameSong;
}

bool hasMoreTreble(const SoundMeasures &one, const SoundMeasures &other)
{
    return other.bandwidthHz > 0 && one.clearTrebleHz / 8 > other.bandwidthHz / 7;
}

namespace {

// What differs without saying which of the two is at fault.
bool isUnclear(const SoundDifference &difference)
{
    return difference.kind == SoundDifference::Kind::Differs || difference.kind == SoundDifference::Kind::OtherEnding;
}

Advantage advantageInPair(const PairCheck &pair, const SoundMeasures &kept, const SoundMeasures &own)
{
    const auto isOwnFault = [](const SoundDifference &d) { return d.isInSecond && !isUnclear(d); };
    if (!pair.isAligned || own.decodingErrors > kept.decodingErrors
        || std::ranges::any_of(pair.differences, isOwnFault))
        return Advantage::None;
    if (kept.decodingErrors > 0 && own.decodingErrors == 0)
        return Advantage::NoErrors;
    if (std::ranges::any_of(pair.differences, isUnclear))
        return Advantage::None;
    if (!pair.differences.isEmpty())
        return Advantage::Complete;
    return hasMoreTreble(own, kept) ? Advantage::Treble : Advantage::None;
}

} // namespace

Advantage advantage(const MatchGroup &group, qint32 member)
{
    const auto kept = group.check.measures.constFind(group.keep);
    const auto own = group.check.measures.constFind(member);
    const auto end = group.check.measures.cend();
    if (member == group.keep || kept == end || own == end || !own->error.isEmpty())
        return Advantage::None;
    if (!kept->error.isEmpty())
        return Advantage::CanBeDecoded;
    const std::optional<PairCheck> pair = pairCheck(group, group.keep, member);
    return pair ? advantageInPair(*pair, *kept, *own) : Advantage::None;
}

qint32 betterCopy(const MatchGroup &group)
{
    qint32 best = -1;
    Advantage most = Advantage::None;
    for (const qint32 member : group.members) {
        const Advantage own = advantage(group, member);
        if (own == Advantage::None || (most != Advantage::None && own >= most))
            continue;
        best = member;
        most = own;
    }
    return best;
}

bool isDoubted(const MatchGroup &group, qint32 member)
{
    return checkState(group, member) == CheckState::Differs || advantage(group, member) != Advantage::None;
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
