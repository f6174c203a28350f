// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QFuture>
#include <QSet>
#include <QThreadPool>

#include <optional>
#include <vector>

namespace epr {

/// What is counted of a review, wherever it is told: below the results, on the console and in the reports.
struct ReviewTotals {
    qint64 files = 0; ///< scanned, whether duplicate or not
    qint64 groups = 0;
    qint64 redundantCopies = 0; ///< members beyond the one to keep, over all groups
    qint64 redundantBytes = 0;
    qint64 tickedFiles = 0;
    qint64 tickedBytes = 0;

    bool operator==(const ReviewTotals &) const = default;
};

/// Of what a scan found, before anything is ticked.
ReviewTotals totalsOf(qint64 files, const QList<MatchGroup> &groups);

/// The line below the results of a scan.
QString summaryText(const ReviewTotals &totals);

/// That so many folders of the scan could not be read, to stand behind its outcome.
QString incompleteText(int unreadableFolders);

/// What is being decided about the results of a scan: which copy of a group is kept and which are ticked for removal.
/// It reads the scan's own lists and keeps one bit per member for the tick, so a large result costs no row objects.
///
/// A group is named by its position in groups(), a member by its position in the group, a track by its index.
class Review final : public QObject {
    Q_OBJECT

public:
    explicit Review(QObject *parent = nullptr);

    const QList<TrackInfo> &tracks() const { return m_tracks; }
    const QList<MatchGroup> &groups() const { return m_groups; }
    const ReviewTotals &totals() const { return m_totals; }
    const TrackInfo *track(int group, int member) const; ///< null unless there is such a member, with a track
    bool isKeeper(int group, int member) const
    {
        return m_groups.at(group).members.at(member) == m_groups.at(group).keep;
    }
    bool keeps(const QString &path) const; ///< whether it is the copy to keep of some group
    bool isTicked(int group, int member) const { return m_ticked[bitOf(group, member)]; }

    /// How much later the second file has what the first has at a time, in ms; nothing if they share no group, or if
    /// that does not tell.
    std::optional<qint64> offsetBetween(const QString &first, const QString &second) const;

    int firstWhollyTickedGroup() const; ///< the first group of which no copy would survive, or -1
    QSet<qint32> vanishedTracks() const; ///< members without a file at their path; looks at every one on the disk

    /// The track to compare the kept copy of a group with: this one, or the copy most worth it where this is the kept
    /// copy itself or none. What would be lost first is quality. -1 if there is no other copy.
    qint32 counterpart(int group, qint32 track) const;

    /// For every track that is in a group, its artist, title, file name and folder, case-folded, one to a line. They
    /// are prepared in the background from setResults() on; the first call waits for the rest of that work.
    QStringList searchTexts() const;

    /// Takes the lists of a scan and ticks every copy but the one to keep and those that lack a part of it.
    void setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);
    void clear();

    void tickDuplicates(); ///< as after a scan, and no others
    void clearTicks();
    void invertTicks();
    void setTicked(int group, int member, bool ticked);

    /// Makes another member the copy to keep. It is unticked; if it was ticked, the former keeper takes over the tick.
    /// What a check says is then said beside the new one, and copies that it speaks against removing are unticked.
    void setKeeper(int group, qint32 track);

    /// What a check over the whole length found of a group. Copies that it speaks against removing are unticked; the
    /// result is how many. Nothing else changes.
    int setCheck(int group, const GroupCheck &check);

    /// Takes out the members that refer to these tracks, and every group left with fewer than two members. The other
    /// groups keep their numbers and ticks. Where the copy to keep went, the first unticked one takes its place, lest a
    /// report propose every copy of a group.
    void removeMembers(const QSet<qint32> &tracks);

Q_SIGNALS:
    void aboutToBeReset(); ///< no position means the same after it
    void reset();
    void tickChanged(int group, int member);
    void ticksChanged(); ///< in any number of groups at once
    void keeperChanged(int group); ///< and with it ticks of the group
    void checkChanged(int group); ///< the same
    void totalsChanged(); ///< after whichever of the others it was

private:
    std::size_t bitOf(int group, int member) const;
    const TrackInfo *trackAt(qint32 index) const;
    qint64 sizeOf(qint32 track) const;
    qint64 reclaimable(const MatchGroup &group) const;

    template <typename Rule> void setTicks(Rule ticked); ///< rule: (was ticked, is proposed) to ticked
    template <typename Rule> void changeTicks(Rule ticked);
    int untickDoubted(int group); ///< how many that were
    bool setBit(int group, int member, bool ticked); ///< false if it was so before
    void countGroups();
    void layOutBits();

    QList<TrackInfo> m_tracks;
    QList<MatchGroup> m_groups;
    std::vector<std::size_t> m_firstBit; ///< per group, its first member among all members; one more entry closes it
    std::vector<bool> m_ticked; ///< per member, in group order
    ReviewTotals m_totals;
    QThreadPool m_background; ///< not the global one: painting may need that, and would wait for the end of our work
    QFuture<QStringList> m_searchTexts;
};

} // namespace epr
