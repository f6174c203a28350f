// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decisions.h"

#include "groupcheck.h"
#include "missingpart.h"

#include <algorithm>

namespace epr {

namespace {

constexpr quint8 decided = MarkTicked | MarkByHand;

quint8 markOf(bool ticked, bool byHand)
{
    return static_cast<quint8>((ticked ? MarkTicked : 0) | (byHand ? MarkByHand : 0));
}

/// Chooses the member to keep when the former one went, and unticks it: the first unticked one, but the longest where
/// lengths differ, as far as they are known. There a copy that lacks a part is unticked as well, and must not be kept
/// in place of one that is whole.
void keepNext(MatchGroup &group, std::vector<quint8> &marks)
{
    const auto lengthOf = [&group](qint32 member) {
        const MemberSpan span = group.spans.value(member);
        const qint64 length = span.endMs - span.startMs;
        return std::pair(length > 0 && !span.isEndGuess, length);
    };
    const auto unticked = std::ranges::find_if(marks, [](quint8 mark) { return (mark & MarkTicked) == 0; });
    qsizetype keeper = unticked == marks.end() ? 0 : unticked - marks.begin();
    if (!group.spans.isEmpty())
        keeper = std::ranges::max_element(std::as_const(group.members), {}, lengthOf) - group.members.cbegin();
    group.keep = group.members.at(keeper);
    marks[static_cast<std::size_t>(keeper)] = 0;
}

} // namespace

void Decisions::setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    *this = {};
    m_tracks = tracks;
    m_groups = groups;
    m_totals.files = tracks.size();
    m_facts.resize(static_cast<std::size_t>(groups.size()));
    layOut();
    m_marks.assign(m_firstBit.back(), 0);
    setTicks([](bool, bool isDuplicate) { return isDuplicate; });
    countGroups();
}

void Decisions::restore(const ReviewRecord &record)
{
    *this = {};
    m_tracks = record.tracks;
    m_groups = record.groups;
    m_totals.files = record.files;
    m_facts.resize(static_cast<std::size_t>(m_groups.size()));
    layOut();
    m_marks.assign(m_firstBit.back(), 0);
    for (int group = 0; group < m_groups.size(); ++group)
        setDecision(group, record.decisions.value(group));
    countGroups();
}

const TrackInfo *Decisions::trackAt(qint32 index) const
{
    return index >= 0 && index < m_tracks.size() ? &m_tracks.at(index) : nullptr;
}

bool Decisions::isWhollyTicked(int group) const
{
    const auto bit = [this](int number) { return m_marks.begin() + static_cast<std::ptrdiff_t>(bitOf(number, 0)); };
    return std::all_of(bit(group), bit(group + 1), [](quint8 mark) { return (mark & MarkTicked) != 0; });
}

GroupFacts Decisions::facts(int group) const
{
    const Facts &facts = m_facts[static_cast<std::size_t>(group)];
    return { m_groups.at(group).keep, facts.keeperByHand, facts.state };
}

GroupDecision Decisions::decision(int group) const
{
    const GroupFacts whole = facts(group);
    GroupDecision decision { whole.state, whole.keep, whole.keeperByHand, {}, {} };
    for (int member = 0; member < m_groups.at(group).members.size(); ++member) {
        decision.ticked << isTicked(group, member);
        decision.byHand << isTickByHand(group, member);
    }
    return decision;
}

bool Decisions::mayBeTicked(int group, int member) const
{
    const qint32 track = m_groups.at(group).members.at(member);
    return m_facts[static_cast<std::size_t>(group)].state != GroupState::NotDuplicates
        && (m_fileStates.isEmpty() || (fileState(track) == FileState::AsScanned && isKeptAsScanned(group)))
        && !isProtected(track);
}

bool Decisions::isDuplicate(int group, int member) const
{
    const MatchGroup &record = m_groups.at(group);
    return isProposed(record, record.members.at(member)) && !isApartFromKept(group, member);
}

bool Decisions::isApartFromKept(int group, int member) const
{
    const MatchGroup &record = m_groups.at(group);
    const qint32 track = record.members.at(member);
    return !m_apart.isEmpty() && m_apart.contains({ std::min(track, record.keep), std::max(track, record.keep) });
}

int Decisions::groupOf(qint32 id) const
{
    const auto found = std::ranges::lower_bound(m_groups, id, {}, &MatchGroup::id);
    return found == m_groups.cend() || found->id != id ? -1 : static_cast<int>(found - m_groups.cbegin());
}

Decisions::Place Decisions::placeOf(qint32 track, Place before) const
{
    const int group = trackAt(track) ? m_groupOfTrack[static_cast<std::size_t>(track)] : -1;
    if (group < 0)
        return { -1, -1 };
    const QList<qint32> &members = m_groups.at(group).members;
    const qsizetype behind = before.first == group ? members.indexOf(track, before.second + 1) : -1;
    return { group, static_cast<int>(behind < 0 ? members.indexOf(track) : behind) };
}

void Decisions::begin()
{
    m_isNoting = true;
}

// Of what was noted more than once only the first counts, as it was before the step.
DecisionStep Decisions::end(const QString &text)
{
    m_isNoting = false;
    DecisionStep step { text, {}, {} };
    for (const auto &[group, before] : std::exchange(m_notedFacts, {})) {
        if (before != facts(group))
            step.groups.append({ m_groups.at(group).id, before, facts(group) });
    }
    auto marks = std::exchange(m_notedMarks, {});
    std::ranges::stable_sort(marks, {}, &std::pair<std::size_t, quint8>::first);
    const auto isSameBit = [](const auto &one, const auto &other) { return one.first == other.first; };
    marks.erase(std::unique(marks.begin(), marks.end(), isSameBit), marks.end());
    std::size_t group = 0;
    for (const auto &[bit, before] : marks) {
        while (m_firstBit[group + 1] <= bit)
            ++group;
        const auto number = static_cast<int>(group);
        const auto member = static_cast<int>(bit - m_firstBit[group]);
        const auto track = static_cast<quint32>(m_groups.at(number).members.at(member));
        const quint8 after = markAt(number, member);
        if (before != after)
            step.ticks.push_back({ track & 0x3ffffffU, before & 7U, after & 7U });
    }
    if (!step.groups.isEmpty())
        countGroups();
    return step;
}

void Decisions::setTick(int group, int member, bool ticked, bool byHand)
{
    if (ticked && !mayBeTicked(group, member))
        return;
    if (byHand || isTicked(group, member) != ticked)
        setMark(group, member, markOf(ticked, byHand));
}

// No such command ticks what was said to be no duplicate.
void Decisions::setTicks(const std::function<bool(bool wasTicked, bool isDuplicate)> &ticked,
                         const QList<Place> *places)
{
    const auto set = [&](int group, int member) {
        const bool was = isTicked(group, member);
        setTick(group, member, ticked(was, isDuplicate(group, member)) && (was || !isApartFromKept(group, member)),
                false);
    };
    for (int group = 0; !places && group < m_groups.size(); ++group) {
        for (int member = 0; member < m_groups.at(group).members.size(); ++member)
            set(group, member);
    }
    if (places) {
        for (const auto &[group, member] : *places)
            set(group, member);
    }
}

void Decisions::setFacts(int group, const GroupFacts &facts)
{
    if (m_isNoting)
        m_notedFacts.emplace_back(group, this->facts(group));
    MatchGroup &record = m_groups[group];
    const auto keeper = static_cast<int>(record.members.indexOf(facts.keep));
    if (keeper >= 0 && facts.keep != record.keep) {
        note(group, keeper);
        note(group, static_cast<int>(record.members.indexOf(record.keep)));
        setTick(group, keeper, false, false);
    }
    Facts &own = m_facts[static_cast<std::size_t>(group)];
    own.state = facts.state;
    if (keeper >= 0) {
        record.keep = facts.keep;
        record.reclaimableBytes = reclaimable(record);
        own.keeperByHand = facts.keeperByHand;
    }
    if (own.state == GroupState::NotDuplicates || !isKeptAsScanned(group))
        untickAll(group);
}

void Decisions::setDecision(int group, const GroupDecision &decision)
{
    setFacts(group, { decision.keep, decision.keeperByHand, decision.state });
    const qsizetype count = m_groups.at(group).members.size();
    const bool isKnown = decision.ticked.size() == count && decision.byHand.size() == count;
    for (int member = 0; member < count; ++member) {
        const bool ticked = isKnown && decision.ticked.at(member) && mayBeTicked(group, member);
        setMark(group, member, markOf(ticked, isKnown && decision.byHand.at(member)));
    }
}

int Decisions::setCheck(int group, const GroupCheck &check)
{
    m_groups[group].check = check;
    return untickDoubted(group);
}

int Decisions::untickDoubted(int group)
{
    const MatchGroup &record = m_groups.at(group);
    int unticked = 0;
    for (int member = 0; member < record.members.size(); ++member) {
        const bool isDoubtful = isDoubted(record, record.members.at(member))
            || (!isTickByHand(group, member) && isApartFromKept(group, member));
        if (isTicked(group, member) && isDoubtful) {
            setTick(group, member, false, false);
            ++unticked;
        }
    }
    return unticked;
}

void Decisions::setFileStates(const QHash<qint32, FileState> &states)
{
    for (const auto &[track, state] : states.asKeyValueRange()) {
        if (state == FileState::AsScanned)
            m_fileStates.remove(track);
        else
            m_fileStates.insert(track, state);
        const auto [group, member] = placeOf(track);
        if (member < 0 || state == FileState::AsScanned)
            continue;
        if (track == m_groups.at(group).keep)
            untickAll(group);
        setTick(group, member, false, false);
    }
    countGroups();
}

void Decisions::setProtected(const QSet<qint32> &tracks)
{
    m_protected = tracks;
    for (const qint32 track : tracks) {
        if (const auto [group, member] = placeOf(track); member >= 0 && isTicked(group, member))
            setTick(group, member, false, false);
    }
}

void Decisions::setApart(const Pairs &pairs)
{
    m_apart = pairs;
    for (const auto &[one, other] : pairs) {
        if (const int group = placeOf(one).first; group >= 0)
            untickDoubted(group);
    }
}

void Decisions::removeMembers(const QSet<qint32> &tracks)
{
    const QList<MatchGroup> groups = std::exchange(m_groups, {});
    const std::vector<quint8> marks = std::exchange(m_marks, {});
    const std::vector<Facts> facts = std::exchange(m_facts, {});
    QList<int> withOtherKeeper;
    auto mark = marks.begin();
    for (qsizetype g = 0; g < groups.size(); ++g) {
        MatchGroup group = groups.at(g);
        group.members.clear();
        std::vector<quint8> left;
        for (const qint32 member : groups.at(g).members) {
            if (!tracks.contains(member)) {
                group.members << member;
                left.push_back(*mark);
            }
            ++mark;
        }
        if (group.members.size() < 2)
            continue;
        m_facts.push_back(facts[static_cast<std::size_t>(g)]);
        if (!group.members.contains(group.keep)) {
            keepNext(group, left);
            m_facts.back().keeperByHand = false;
            withOtherKeeper << static_cast<int>(m_groups.size());
        }
        group.reclaimableBytes = reclaimable(group);
        m_groups << group;
        m_marks.insert(m_marks.end(), left.begin(), left.end());
    }
    layOut();
    countTicks();
    for (const int group : withOtherKeeper) {
        untickDoubted(group);
        if (!isKeptAsScanned(group))
            untickAll(group);
    }
    countGroups();
}

// The groups first: which copy is kept and what is set aside decides what may be ticked.
void Decisions::apply(const DecisionStep &step, bool backwards)
{
    for (const DecisionStep::Group &change : step.groups) {
        if (const int group = groupOf(change.id); group >= 0)
            setFacts(group, backwards ? change.before : change.after);
    }
    Place place { -1, -1 };
    for (const DecisionStep::Tick tick : step.ticks) {
        place = placeOf(static_cast<qint32>(tick.track), place);
        const auto [group, member] = place;
        const auto mark = static_cast<quint8>(backwards ? tick.before : tick.after);
        if (member >= 0 && mayApply(group, member, mark))
            setMark(group, member, mark & decided);
    }
}

std::size_t Decisions::bitOf(int group, int member) const
{
    return m_firstBit[static_cast<std::size_t>(group)] + static_cast<std::size_t>(member);
}

qint64 Decisions::reclaimable(const MatchGroup &group) const
{
    qint64 bytes = 0;
    for (const qint32 member : group.members) {
        if (const TrackInfo *track = member == group.keep ? nullptr : trackAt(member))
            bytes += track->size;
    }
    return bytes;
}

quint8 Decisions::markAt(int group, int member) const
{
    const MatchGroup &record = m_groups.at(group);
    return static_cast<quint8>(m_marks[bitOf(group, member)]
                               | (record.members.at(member) == record.keep ? MarkKept : 0));
}

void Decisions::untickAll(int group)
{
    for (int member = 0; member < m_groups.at(group).members.size(); ++member)
        setTick(group, member, false, false);
}

void Decisions::note(int group, int member)
{
    if (m_isNoting && member >= 0)
        m_notedMarks.emplace_back(bitOf(group, member), markAt(group, member));
}

void Decisions::setMark(int group, int member, quint8 mark)
{
    const std::size_t bit = bitOf(group, member);
    if (m_marks[bit] == mark)
        return;
    note(group, member);
    const int sign = (mark & MarkTicked) - (m_marks[bit] & MarkTicked);
    m_marks[bit] = mark;
    const TrackInfo *info = trackAt(m_groups.at(group).members.at(member));
    m_totals.tickedFiles += sign;
    m_totals.tickedBytes += sign * (info ? info->size : 0);
}

bool Decisions::mayApply(int group, int member, quint8 mark) const
{
    const MatchGroup &record = m_groups.at(group);
    const qint32 track = record.members.at(member);
    return (mark & MarkTicked) == 0
        || (mayBeTicked(group, member) && !isDoubted(record, track)
            && (!isApartFromKept(group, member) || (mark & MarkByHand) != 0)
            && (record.keep != track || (mark & MarkKept) != 0));
}

void Decisions::layOut()
{
    m_firstBit.assign(1, 0);
    m_firstBit.reserve(static_cast<std::size_t>(m_groups.size()) + 1);
    m_groupOfTrack.assign(static_cast<std::size_t>(m_tracks.size()), -1);
    for (int group = 0; group < m_groups.size(); ++group) {
        m_firstBit.push_back(m_firstBit.back() + static_cast<std::size_t>(m_groups.at(group).members.size()));
        for (const qint32 member : m_groups.at(group).members) {
            if (trackAt(member))
                m_groupOfTrack[static_cast<std::size_t>(member)] = group;
        }
    }
}

void Decisions::countGroups()
{
    ReviewTotals totals { .files = m_totals.files,
                          .tickedFiles = m_totals.tickedFiles,
                          .tickedBytes = m_totals.tickedBytes };
    for (int group = 0; group < m_groups.size(); ++group) {
        const GroupState state = m_facts[static_cast<std::size_t>(group)].state;
        if (state == GroupState::NotDuplicates) {
            ++totals.setAside;
            continue;
        }
        totals.count(m_groups.at(group));
        if (state == GroupState::Done) {
            ++totals.doneGroups;
            totals.doneBytes += m_groups.at(group).reclaimableBytes;
        }
    }
    for (const auto &[track, state] : m_fileStates.asKeyValueRange()) {
        if (placeOf(track).second >= 0)
            ++(state == FileState::Changed ? totals.changedFiles : totals.vanishedFiles);
    }
    m_totals = totals;
}

void Decisions::countTicks()
{
    m_totals.tickedFiles = 0;
    m_totals.tickedBytes = 0;
    for (int group = 0; group < m_groups.size(); ++group) {
        for (int member = 0; member < m_groups.at(group).members.size(); ++member) {
            const TrackInfo *track = trackAt(m_groups.at(group).members.at(member));
            m_totals.tickedFiles += isTicked(group, member) ? 1 : 0;
            m_totals.tickedBytes += isTicked(group, member) && track ? track->size : 0;
        }
    }
}

} // namespace epr
