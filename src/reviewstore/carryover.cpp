// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "carryover.h"

#include "missingpart.h"

#include <algorithm>
#include <optional>

namespace epr {

namespace {

/// What was decided of one file.
struct Earlier {
    qsizetype group = -1;
    bool isKept = false;
    bool isKeptByHand = false;
    bool isTicked = false;
    bool isDecided = false; ///< by hand, or with its group
};

class Memory final {
public:
    explicit Memory(const ReviewRecord &review)
        : m_review(review)
    {
        const qsizetype count = std::min(review.groups.size(), review.decisions.size());
        for (qsizetype g = 0; g < count; ++g)
            add(g);
    }

    std::optional<Earlier> of(const TrackInfo &track) const
    {
        const auto entry = m_byPath.constFind(track.path);
        if (entry == m_byPath.cend())
            return std::nullopt;
        const TrackInfo &then = m_review.tracks.at(entry->track);
        return then.size == track.size && then.mtime == track.mtime ? std::optional(entry->earlier) : std::nullopt;
    }

    GroupState state(qsizetype group) const { return m_review.decisions.at(group).state; }

private:
    struct Entry {
        qint32 track = -1;
        Earlier earlier;
    };

    void add(qsizetype g)
    {
        const MatchGroup &group = m_review.groups.at(g);
        const GroupDecision &decision = m_review.decisions.at(g);
        for (qsizetype m = 0; m < group.members.size(); ++m) {
            const qint32 track = group.members.at(m);
            const bool isKept = track == decision.keep;
            m_byPath.insert(m_review.tracks.value(track).path,
                            { track,
                              { .group = g,
                                .isKept = isKept,
                                .isKeptByHand = isKept && decision.keeperByHand,
                                .isTicked = decision.ticked.value(m),
                                .isDecided = decision.byHand.value(m) } });
        }
    }

    const ReviewRecord &m_review;
    QHash<QString, Entry> m_byPath;
};

bool isDecided(const GroupDecision &decision)
{
    return decision.state != GroupState::Undecided || decision.keeperByHand || decision.byHand.contains(true);
}

/// One group of the new scan beside what is remembered of its members.
class NewGroup final {
public:
    NewGroup(const Memory &memory, const MatchGroup &group, const QList<TrackInfo> &tracks)
        : m_group(group)
    {
        for (const qint32 member : group.members)
            m_earlier.append(memory.of(tracks.value(member)));
        const std::optional<Earlier> first = m_earlier.value(0);
        const auto isOfFirst = [&first](const auto &earlier) { return earlier && earlier->group == first->group; };
        if (first && std::ranges::all_of(m_earlier, isOfFirst))
            m_state = memory.state(first->group);
    }

    GroupDecision decide()
    {
        GroupDecision decision;
        decision.state = m_state;
        takeKeeper(decision);
        for (qsizetype m = 0; m < m_group.members.size(); ++m)
            takeTick(m, decision);
        if (m_group.keep < 0 && !decision.ticked.contains(false) && !decision.ticked.isEmpty())
            decision.ticked.first() = decision.byHand.first() = false;
        return decision;
    }

private:
    bool isDone() const { return m_state == GroupState::Done; }

    // A done group was decided as a whole, whoever proposed the copy to keep.
    void takeKeeper(GroupDecision &decision)
    {
        const auto wasChosen = [this](const std::optional<Earlier> &earlier) {
            return earlier && (earlier->isKeptByHand || (isDone() && earlier->isKept));
        };
        const auto chosen = std::find_if(m_earlier.cbegin(), m_earlier.cend(), wasChosen);
        if (chosen != m_earlier.cend()) {
            m_group.keep = m_group.members.at(chosen - m_earlier.cbegin());
            decision.keeperByHand = (*chosen)->isKeptByHand;
        }
        decision.keep = m_group.keep;
    }

    // A copy that was kept by hand in another group than the one that decides here stays as well.
    void takeTick(qsizetype m, GroupDecision &decision) const
    {
        const qint32 member = m_group.members.at(m);
        const Earlier earlier = m_earlier.at(m).value_or(Earlier());
        const bool isByHand = earlier.isDecided || (earlier.isKeptByHand && member != m_group.keep);
        const bool isDecided = isByHand || isDone();
        const bool isRefused = earlier.isTicked && !isProposed(m_group, member);
        const bool isTaken = isDecided && !isRefused && member != m_group.keep;
        decision.ticked.append(isTaken ? earlier.isTicked : isProposed(m_group, member));
        decision.byHand.append(isTaken && isByHand);
    }

    MatchGroup m_group; ///< with the copy to keep that was taken over
    QList<std::optional<Earlier>> m_earlier; ///< for each member
    GroupState m_state = GroupState::Undecided; ///< of the group that had all of them
};

} // namespace

CarriedOver carryOver(const ReviewRecord &earlier, const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    const Memory memory(earlier);
    const auto isCounted = [](const GroupDecision &decision) {
        return decision.state != GroupState::NotDuplicates && isDecided(decision); // others are remembered elsewhere
    };
    CarriedOver carried;
    carried.lostGroups = std::ranges::count_if(earlier.decisions, isCounted);
    for (int g = 0; g < groups.size(); ++g) {
        const GroupDecision decision = NewGroup(memory, groups.at(g), tracks).decide();
        if (!isDecided(decision))
            continue;
        carried.lostGroups -= isCounted(decision) ? 1 : 0;
        carried.doneGroups += decision.state == GroupState::Done ? 1 : 0;
        carried.keepers += decision.keeperByHand ? 1 : 0;
        carried.ticks += decision.byHand.count(true);
        carried.decisions.insert(g, decision);
    }
    return carried;
}

bool hasDecisions(const ReviewRecord &review)
{
    return std::ranges::any_of(review.decisions, isDecided);
}

} // namespace epr
