// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "review.h"

#include "groupcheck.h"
#include "keeperchoice.h"
#include "keeperpolicy.h"
#include "missingpart.h"
#include "reviewfilter.h"

#include <QFileInfo>
#include <QtConcurrent>

#include <algorithm>
#include <utility>

namespace epr {

Review::Review(QObject *parent)
    : QObject(parent)
{
    m_background.setMaxThreadCount(1);
}

const TrackInfo *Review::track(int group, int member) const
{
    if (group < 0 || group >= groups().size())
        return nullptr;
    return m_decisions.trackAt(groups().at(group).members.value(member, -1));
}

QString Review::keepText(int group) const
{
    if (isKeeperByHand(group))
        return tr("kept by hand");
    const QString text = epr::keepText(groups().at(group), tracks(), m_options);
    return text.isEmpty() ? epr::keepText(groups().at(group), tracks(), m_formerOptions) : text;
}

bool Review::keeps(const QString &path) const
{
    return !path.isEmpty() && std::any_of(groups().cbegin(), groups().cend(), [&](const MatchGroup &group) {
        const TrackInfo *kept = m_decisions.trackAt(group.keep);
        return kept && kept->path == path;
    });
}

std::optional<qint64> Review::offsetBetween(const QString &first, const QString &second) const
{
    if (first.isEmpty() || second.isEmpty())
        return std::nullopt;
    const auto memberAt = [this](const MatchGroup &group, const QString &path) {
        const auto member = std::find_if(group.members.cbegin(), group.members.cend(), [&](qint32 index) {
            const TrackInfo *candidate = m_decisions.trackAt(index);
            return candidate && candidate->path == path;
        });
        return member == group.members.cend() ? -1 : *member;
    };
    for (const MatchGroup &group : groups()) {
        const qint32 a = memberAt(group, first);
        const qint32 b = a < 0 ? -1 : memberAt(group, second);
        if (b >= 0)
            return epr::offsetBetween(group, a, b);
    }
    return std::nullopt;
}

int Review::firstWhollyTickedGroup(const OnlyTracks &only) const
{
    for (int group = 0; group < groups().size(); ++group) {
        const auto isMeant = [&only](qint32 member) { return isAmong(only, member); };
        if (isWhollyTicked(group) && std::ranges::any_of(groups().at(group).members, isMeant))
            return group;
    }
    return -1;
}

qint32 Review::counterpart(int group, qint32 track) const
{
    const MatchGroup &record = groups().at(group);
    if (track != record.keep && record.members.contains(track))
        return track;
    QList<qint32> others = record.members;
    others.removeAll(record.keep);
    const auto quality = [this](qint32 other) {
        const TrackInfo *info = m_decisions.trackAt(other);
        return info ? std::pair(info->stream.bitrateKbps, info->size) : std::pair(0, qint64 { 0 });
    };
    const auto best = std::max_element(others.cbegin(), others.cend(),
                                       [quality](qint32 a, qint32 b) { return quality(a) < quality(b); });
    return best == others.cend() ? -1 : *best;
}

QStringList Review::searchTexts() const
{
    return m_searchTexts.isValid() ? m_searchTexts.result() : QStringList();
}

QList<MatchGroup> Review::groupsOfDuplicates() const
{
    if (totals().setAside == 0)
        return groups();
    QList<MatchGroup> found;
    for (int group = 0; group < groups().size(); ++group) {
        if (state(group) != GroupState::NotDuplicates)
            found << groups().at(group);
    }
    return found;
}

void Review::setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    Q_EMIT aboutToBeReset();
    m_decisions.setResults(tracks, groups);
    m_history = {};
    makeSearchTexts();
    Q_EMIT reset();
    Q_EMIT totalsChanged();
    Q_EMIT historyChanged();
}

void Review::clear()
{
    setResults({}, {});
}

void Review::restore(const ReviewRecord &record)
{
    Q_EMIT aboutToBeReset();
    m_decisions.restore(record);
    m_options = m_formerOptions = record.options;
    m_history = {};
    makeSearchTexts();
    Q_EMIT reset();
    Q_EMIT totalsChanged();
    Q_EMIT historyChanged();
}

void Review::setKeeperOptions(const ScanOptions &options)
{
    m_options = m_formerOptions = options;
}

void Review::takeDecisions(const QHash<int, GroupDecision> &decisions)
{
    if (decisions.isEmpty())
        return;
    Q_EMIT aboutToBeReset();
    m_decisions.begin(); // for the totals alone
    for (const auto &[group, decision] : decisions.asKeyValueRange())
        m_decisions.setDecision(group, decision);
    m_decisions.end({});
    Q_EMIT reset();
    Q_EMIT totalsChanged();
}

void Review::tickDuplicates()
{
    tickMany(BulkTick::Duplicates);
}

void Review::clearTicks()
{
    tickMany(BulkTick::None);
}

void Review::invertTicks()
{
    tickMany(BulkTick::Invert);
}

void Review::tickMany(BulkTick what)
{
    tickThose(what, nullptr);
}

void Review::tickMany(BulkTick what, const QList<Place> &places)
{
    tickThose(what, &places);
}

void Review::tickThose(BulkTick what, const QList<Place> *places)
{
    const QString text = what == BulkTick::Duplicates ? tr("Select All Duplicates")
        : what == BulkTick::None                      ? tr("Clear Selection")
                                                      : tr("Invert Selection");
    const auto ticked = [what](bool was, bool isDuplicate) {
        return what == BulkTick::Duplicates ? isDuplicate : what == BulkTick::Invert && !was;
    };
    perform(text, [&] { m_decisions.setTicks(ticked, places); });
}

void Review::setTicked(int group, int member, bool ticked)
{
    setTicked({ { group, member } }, ticked);
}

void Review::setTicked(const QList<Place> &places, bool ticked)
{
    QString reason;
    perform(ticked ? tr("Tick") : tr("Untick"), [&] {
        for (const auto &[group, member] : places) {
            if (ticked && reason.isEmpty())
                reason = refusal(group, member);
            m_decisions.setTick(group, member, ticked, true);
        }
    });
    if (!reason.isEmpty())
        Q_EMIT tickRefused(reason);
}

void Review::setKeeper(int group, qint32 track)
{
    if (const qsizetype member = groups().at(group).members.indexOf(track); member >= 0)
        setKeepers({ { group, static_cast<int>(member) } });
}

void Review::setKeepers(const QList<Place> &places)
{
    perform(tr("Keep Another Copy"), [&] {
        for (const auto &[group, member] : places) {
            if (!isKeeper(group, member))
                keepAnother(group, groups().at(group).members.at(member));
        }
    });
}

void Review::keepAnother(int group, qint32 track)
{
    const MatchGroup &before = groups().at(group);
    const auto newMember = static_cast<int>(before.members.indexOf(track));
    const auto oldMember = static_cast<int>(before.members.indexOf(before.keep));
    const bool passTick = isTicked(group, newMember);
    m_decisions.setFacts(group, { track, true, state(group) });
    if (oldMember >= 0 && passTick)
        m_decisions.setTick(group, oldMember, true, false);
    m_decisions.untickDoubted(group); // of the former keeper as well
}

// The check had unticked the better one, so there is no tick to take over.
void Review::keepBetter(int group, qint32 track)
{
    const qint32 former = groups().at(group).keep;
    perform(tr("Keep the Better Copy"), [&] {
        m_decisions.setFacts(group, { track, true, state(group) });
        m_decisions.untickDoubted(group);
        const auto member = static_cast<int>(groups().at(group).members.indexOf(former));
        if (member >= 0 && m_decisions.isDuplicate(group, member))
            m_decisions.setTick(group, member, true, false);
    });
}

// Copies that lack a part of the one that is kept now are not proposed any more.
void Review::chooseKeepers(const KeeperChoice &choice)
{
    m_formerOptions = std::exchange(m_options, choice.options);
    perform(tr("Choose Copies to Keep Again"), [&] {
        for (const auto &[group, keep] : choice.changes) {
            const qint32 former = groups().at(group).keep;
            const bool passTick = isTicked(group, static_cast<int>(groups().at(group).members.indexOf(keep)));
            m_decisions.setFacts(group, { keep, false, state(group) });
            const MatchGroup &record = groups().at(group);
            for (int member = 0; member < record.members.size(); ++member) {
                const qint32 track = record.members.at(member);
                const bool wasTicked = track == former ? passTick : isTicked(group, member);
                m_decisions.setTick(group, member, wasTicked && m_decisions.isDuplicate(group, member), false);
            }
        }
    });
    Q_EMIT keeperOptionsChanged();
}

void Review::setState(const QList<int> &groups, GroupState state)
{
    const QString text = state == GroupState::Done ? tr("Group Done")
        : state == GroupState::NotDuplicates       ? tr("Not Duplicates")
                                                   : tr("Undecided");
    perform(text, [&] {
        for (const int group : groups) {
            GroupFacts facts = m_decisions.facts(group);
            facts.state = state;
            m_decisions.setFacts(group, facts);
        }
    });
}

int Review::setCheck(int group, const GroupCheck &check)
{
    const int unticked = m_decisions.setCheck(group, check);
    Q_EMIT checkChanged(group);
    Q_EMIT totalsChanged();
    return unticked;
}

void Review::setFileStates(const QHash<qint32, FileState> &states)
{
    m_decisions.setFileStates(states);
    Q_EMIT fileStatesChanged();
    Q_EMIT totalsChanged();
}

void Review::setProtected(const QSet<qint32> &tracks)
{
    if (tracks == m_decisions.protectedTracks())
        return;
    m_decisions.setProtected(tracks);
    Q_EMIT fileStatesChanged();
    Q_EMIT totalsChanged();
}

void Review::setApart(const Decisions::Pairs &pairs)
{
    if (pairs == m_decisions.apart())
        return;
    m_decisions.setApart(pairs);
    Q_EMIT fileStatesChanged();
    Q_EMIT totalsChanged();
}

void Review::removeMembers(const QSet<qint32> &tracks)
{
    Q_EMIT aboutToBeReset();
    QSet<qint32> lost;
    for (const MatchGroup &group : groups())
        lost << group.id;
    m_decisions.removeMembers(tracks);
    for (const MatchGroup &group : groups())
        lost.remove(group.id);
    m_history.forget(tracks, lost);
    Q_EMIT reset();
    Q_EMIT totalsChanged();
    Q_EMIT historyChanged();
}

int Review::undo()
{
    return canUndo() ? applyStep(m_history.stepBack(), true) : -1;
}

int Review::redo()
{
    return canRedo() ? applyStep(m_history.stepForward(), false) : -1;
}

template <typename Change> void Review::perform(const QString &text, Change change)
{
    m_decisions.begin();
    change();
    DecisionStep step = m_decisions.end(text);
    if (step.isEmpty())
        return;
    announce(step);
    m_history.add(std::move(step));
    Q_EMIT historyChanged();
}

// What changed in a group as a whole stands for ticks in it as well.
int Review::announce(const DecisionStep &step)
{
    QSet<int> concerned;
    QList<int> withOtherState;
    for (const DecisionStep::Group &change : step.groups) {
        const int group = m_decisions.groupOf(change.id);
        concerned << group;
        if (change.before.state != change.after.state)
            withOtherState << group;
        if (change.before.keep != change.after.keep || change.before.keeperByHand != change.after.keeperByHand)
            Q_EMIT keeperChanged(group);
    }
    if (!withOtherState.isEmpty())
        Q_EMIT statesChanged(withOtherState);
    const auto placeOf = [this](DecisionStep::Tick tick) {
        return m_decisions.placeOf(static_cast<qint32>(tick.track));
    };
    if (concerned.isEmpty() && step.ticks.size() == 1) {
        const auto [group, member] = placeOf(step.ticks.front());
        concerned << group;
        Q_EMIT tickChanged(group, member);
    }
    const bool hasOthers = std::ranges::any_of(
        step.ticks, [&](DecisionStep::Tick tick) { return !concerned.contains(placeOf(tick).first); });
    if (hasOthers)
        Q_EMIT ticksChanged();
    Q_EMIT totalsChanged();
    return concerned.size() == 1 && !hasOthers ? *concerned.cbegin() : -1;
}

int Review::applyStep(const DecisionStep &step, bool backwards)
{
    m_decisions.begin();
    m_decisions.apply(step, backwards);
    const int group = announce(m_decisions.end({}));
    Q_EMIT historyChanged();
    return group;
}

void Review::makeSearchTexts()
{
    m_searchTexts = groups().isEmpty() ? QFuture<QStringList>()
                                       : QtConcurrent::run(&m_background, foldedSearchTexts, tracks(), groups());
}

QString Review::refusal(int group, int member) const
{
    if (m_decisions.mayBeTicked(group, member))
        return {};
    const qint32 track = groups().at(group).members.at(member);
    if (state(group) == GroupState::NotDuplicates)
        return tr("This group is set aside as not duplicates.");
    if (isProtected(track))
        return tr("This copy is in a protected folder and is never removed.");
    switch (fileState(track)) {
    case FileState::Changed:
        return tr("This copy changed since the scan and is not ticked. The next scan looks at it again.");
    case FileState::Vanished:
        return tr("This copy is no longer there.");
    case FileState::AsScanned:
        break;
    }
    return tr("The copy to keep of this group changed or is gone since the scan. Choose another one to keep first.");
}

QSet<qint32> vanishedTracks(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    QSet<qint32> vanished;
    for (const MatchGroup &group : groups) {
        for (const qint32 member : group.members) {
            if (member >= 0 && member < tracks.size() && !QFileInfo::exists(tracks.at(member).path))
                vanished.insert(member);
        }
    }
    return vanished;
}

} // namespace epr
