// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "review.h"

#include "displaytext.h"
#include "groupcheck.h"
#include "missingpart.h"
#include "reviewfilter.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QtConcurrent>

#include <algorithm>

namespace epr {

ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups)
{
    ReviewTotals totals { .files = files, .groups = groups.size() };
    for (const MatchGroup &group : groups) {
        totals.redundantCopies += std::max<qint64>(group.members.size() - 1, 0);
        totals.redundantBytes += group.reclaimableBytes;
    }
    return totals;
}

QString summaryText(const ReviewTotals &totals)
{
    const QLocale locale;
    if (totals.groups == 0) {
        return QCoreApplication::translate("epr::MainWindow", "Scanned %1 files - no duplicates found.")
            .arg(locale.toString(totals.files));
    }
    return QCoreApplication::translate("epr::MainWindow",
                                       "%1 files scanned - %2 duplicate groups - %3 redundant copies (%4). Currently "
                                       "selected for removal: %5 file(s), %6.")
        .arg(locale.toString(totals.files), locale.toString(totals.groups), locale.toString(totals.redundantCopies),
             sizeText(totals.redundantBytes), locale.toString(totals.tickedFiles), sizeText(totals.tickedBytes));
}

QString incompleteText(int unreadableFolders)
{
    return QCoreApplication::translate("epr::MainWindow", "incomplete: %n folder(s) could not be read", nullptr,
                                       unreadableFolders);
}

namespace {

/// The position of the member to keep when the former one went: the first unticked one, but the longest where lengths
/// differ, as far as they are known. There a copy that lacks a part is unticked as well, and must not be kept in place
/// of one that is whole.
qsizetype nextKeeper(const MatchGroup &group, qsizetype firstUnticked)
{
    if (group.spans.isEmpty())
        return firstUnticked;
    const auto lengthOf = [&group](qint32 member) {
        const MemberSpan span = group.spans.value(member);
        const qint64 length = span.endMs - span.startMs;
        return std::pair(length > 0 && !span.isEndGuess, length);
    };
    return std::ranges::max_element(group.members, {}, lengthOf) - group.members.cbegin();
}

} // namespace

Review::Review(QObject *parent)
    : QObject(parent)
    , m_firstBit(1, 0)
{
    m_background.setMaxThreadCount(1);
}

const TrackInfo *Review::track(int group, int member) const
{
    if (group < 0 || group >= m_groups.size())
        return nullptr;
    return trackAt(m_groups.at(group).members.value(member, -1));
}

bool Review::keeps(const QString &path) const
{
    return std::any_of(m_groups.cbegin(), m_groups.cend(), [&](const MatchGroup &group) {
        const TrackInfo *kept = trackAt(group.keep);
        return kept && kept->path == path;
    });
}

std::optional<qint64> Review::offsetBetween(const QString &first, const QString &second) const
{
    const auto memberAt = [this](const MatchGroup &group, const QString &path) {
        const auto member = std::find_if(group.members.cbegin(), group.members.cend(), [&](qint32 index) {
            const TrackInfo *candidate = trackAt(index);
            return candidate && candidate->path == path;
        });
        return member == group.members.cend() ? -1 : *member;
    };
    for (const MatchGroup &group : m_groups) {
        const qint32 a = memberAt(group, first);
        const qint32 b = a < 0 ? -1 : memberAt(group, second);
        if (b >= 0)
            return epr::offsetBetween(group, a, b);
    }
    return std::nullopt;
}

int Review::firstWhollyTickedGroup() const
{
    for (std::size_t g = 0; g + 1 < m_firstBit.size(); ++g) {
        const auto bit = [this](std::size_t i) { return m_ticked.begin() + static_cast<std::ptrdiff_t>(i); };
        if (std::find(bit(m_firstBit[g]), bit(m_firstBit[g + 1]), false) == bit(m_firstBit[g + 1]))
            return static_cast<int>(g);
    }
    return -1;
}

QSet<qint32> Review::vanishedTracks() const
{
    QSet<qint32> vanished;
    for (const MatchGroup &group : m_groups) {
        for (const qint32 member : group.members) {
            const TrackInfo *track = trackAt(member);
            if (track && !QFileInfo::exists(track->path))
                vanished.insert(member);
        }
    }
    return vanished;
}

qint32 Review::counterpart(int group, qint32 track) const
{
    const MatchGroup &record = m_groups.at(group);
    if (track != record.keep && record.members.contains(track))
        return track;
    QList<qint32> others = record.members;
    others.removeAll(record.keep);
    const auto quality = [this](qint32 other) {
        const TrackInfo *info = trackAt(other);
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

void Review::setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    Q_EMIT aboutToBeReset();
    m_tracks = tracks;
    m_groups = groups;
    layOutBits();
    m_ticked.assign(m_firstBit.back(), false);
    countGroups();
    setTicks([](bool, bool isProposed) { return isProposed; });
    m_searchTexts =
        groups.isEmpty() ? QFuture<QStringList>() : QtConcurrent::run(&m_background, foldedSearchTexts, tracks, groups);
    Q_EMIT reset();
    Q_EMIT totalsChanged();
}

void Review::clear()
{
    setResults({}, {});
}

void Review::tickDuplicates()
{
    changeTicks([](bool, bool isProposed) { return isProposed; });
}

void Review::clearTicks()
{
    changeTicks([](bool, bool) { return false; });
}

void Review::invertTicks()
{
    changeTicks([](bool wasTicked, bool) { return !wasTicked; });
}

void Review::setTicked(int group, int member, bool ticked)
{
    if (!setBit(group, member, ticked))
        return;
    Q_EMIT tickChanged(group, member);
    Q_EMIT totalsChanged();
}

void Review::setKeeper(int group, qint32 track)
{
    const MatchGroup &before = m_groups.at(group);
    const auto newMember = static_cast<int>(before.members.indexOf(track));
    const auto oldMember = static_cast<int>(before.members.indexOf(before.keep));
    if (newMember < 0 || newMember == oldMember)
        return;
    const bool passTick = setBit(group, newMember, false);
    if (oldMember >= 0 && passTick)
        setBit(group, oldMember, true);
    MatchGroup &record = m_groups[group];
    record.keep = track;
    record.reclaimableBytes = reclaimable(record);
    untickDoubted(group);
    countGroups();
    Q_EMIT keeperChanged(group);
    Q_EMIT totalsChanged();
}

int Review::setCheck(int group, const GroupCheck &check)
{
    m_groups[group].check = check;
    const int unticked = untickDoubted(group);
    Q_EMIT checkChanged(group);
    Q_EMIT totalsChanged();
    return unticked;
}

void Review::removeMembers(const QSet<qint32> &tracks)
{
    Q_EMIT aboutToBeReset();
    QList<MatchGroup> keptGroups;
    std::vector<bool> keptTicks;
    QList<int> withOtherKeeper;
    for (int g = 0; g < m_groups.size(); ++g) {
        MatchGroup group = m_groups.at(g);
        const std::size_t firstTick = keptTicks.size();
        group.members.clear();
        for (int m = 0; m < m_groups.at(g).members.size(); ++m) {
            const qint32 member = m_groups.at(g).members.at(m);
            if (tracks.contains(member))
                continue;
            group.members << member;
            keptTicks.push_back(isTicked(g, m));
        }
        if (group.members.size() < 2) {
            keptTicks.resize(firstTick);
            continue;
        }
        if (!group.members.contains(group.keep)) {
            const auto ticks = keptTicks.begin() + static_cast<std::ptrdiff_t>(firstTick);
            const auto unticked = std::find(ticks, keptTicks.end(), false);
            const auto keeper = ticks + nextKeeper(group, (unticked == keptTicks.end() ? ticks : unticked) - ticks);
            *keeper = false;
            group.keep = group.members.at(keeper - ticks);
            withOtherKeeper << static_cast<int>(keptGroups.size());
        }
        group.reclaimableBytes = reclaimable(group);
        keptGroups << group;
    }
    m_groups = keptGroups;
    m_ticked = keptTicks;
    layOutBits();
    countGroups();
    for (const int group : withOtherKeeper)
        untickDoubted(group);
    setTicks([](bool wasTicked, bool) { return wasTicked; });
    Q_EMIT reset();
    Q_EMIT totalsChanged();
}

std::size_t Review::bitOf(int group, int member) const
{
    return m_firstBit[static_cast<std::size_t>(group)] + static_cast<std::size_t>(member);
}

const TrackInfo *Review::trackAt(qint32 index) const
{
    return index >= 0 && index < m_tracks.size() ? &m_tracks.at(index) : nullptr;
}

qint64 Review::sizeOf(qint32 track) const
{
    const TrackInfo *found = trackAt(track);
    return found ? found->size : 0;
}

qint64 Review::reclaimable(const MatchGroup &group) const
{
    qint64 bytes = 0;
    for (const qint32 member : group.members) {
        if (member != group.keep)
            bytes += sizeOf(member);
    }
    return bytes;
}

// One pass over the bits, with the totals counted along the way.
template <typename Rule> void Review::setTicks(Rule ticked)
{
    m_totals.tickedFiles = 0;
    m_totals.tickedBytes = 0;
    std::size_t bit = 0;
    for (const MatchGroup &group : std::as_const(m_groups)) {
        for (const qint32 member : group.members) {
            const bool tick = ticked(m_ticked[bit], isProposed(group, member));
            m_ticked[bit++] = tick;
            if (tick) {
                ++m_totals.tickedFiles;
                m_totals.tickedBytes += sizeOf(member);
            }
        }
    }
}

template <typename Rule> void Review::changeTicks(Rule ticked)
{
    setTicks(ticked);
    Q_EMIT ticksChanged();
    Q_EMIT totalsChanged();
}

int Review::untickDoubted(int group)
{
    const MatchGroup &record = m_groups.at(group);
    int unticked = 0;
    for (int member = 0; member < record.members.size(); ++member) {
        if (isDoubted(record, record.members.at(member)))
            unticked += setBit(group, member, false) ? 1 : 0;
    }
    return unticked;
}

bool Review::setBit(int group, int member, bool ticked)
{
    const std::size_t bit = bitOf(group, member);
    if (m_ticked[bit] == ticked)
        return false;
    m_ticked[bit] = ticked;
    const int sign = ticked ? 1 : -1;
    m_totals.tickedFiles += sign;
    m_totals.tickedBytes += sign * sizeOf(m_groups.at(group).members.at(member));
    return true;
}

void Review::countGroups()
{
    ReviewTotals totals = totalsOf(m_tracks.size(), m_groups);
    totals.tickedFiles = m_totals.tickedFiles;
    totals.tickedBytes = m_totals.tickedBytes;
    m_totals = totals;
}

void Review::layOutBits()
{
    m_firstBit.assign(1, 0);
    m_firstBit.reserve(static_cast<std::size_t>(m_groups.size()) + 1);
    for (const MatchGroup &group : std::as_const(m_groups))
        m_firstBit.push_back(m_firstBit.back() + static_cast<std::size_t>(group.members.size()));
}

} // namespace epr
