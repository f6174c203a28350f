// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decisionhistory.h"
#include "reviewrecord.h"
#include "reviewtotals.h"

#include <QSet>

#include <functional>
#include <utility>
#include <vector>

namespace epr {

/// The lists of a scan and what is decided of them, as plain values, with the totals counted along the way.
///
/// A group is named by its position, a member by its position in the group, a track by its index.
class Decisions final {
public:
    using Place = std::pair<int, int>; ///< group and member
    using Pairs = QSet<std::pair<qint32, qint32>>; ///< of tracks, the smaller number first

    /// Nothing is decided, and each copy is ticked that a scan proposes to remove.
    void setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);
    void restore(const ReviewRecord &record);

    const QList<TrackInfo> &tracks() const { return m_tracks; }
    const QList<MatchGroup> &groups() const { return m_groups; }
    const ReviewTotals &totals() const { return m_totals; }
    const TrackInfo *trackAt(qint32 index) const; ///< null if there is none
    bool isTicked(int group, int member) const { return (m_marks[bitOf(group, member)] & MarkTicked) != 0; }
    bool isTickByHand(int group, int member) const { return (m_marks[bitOf(group, member)] & MarkByHand) != 0; }
    bool isWhollyTicked(int group) const;
    GroupFacts facts(int group) const;
    GroupDecision decision(int group) const;
    FileState fileState(qint32 track) const { return m_fileStates.value(track); }
    const QSet<qint32> &protectedTracks() const { return m_protected; }
    bool isProtected(qint32 track) const { return m_protected.contains(track); }
    bool isKeptAsScanned(int group) const { return fileState(m_groups.at(group).keep) == FileState::AsScanned; }
    const Pairs &apart() const { return m_apart; }
    bool mayBeTicked(int group, int member) const; ///< never where the copy to keep is not as it was scanned
    int groupOf(qint32 id) const; ///< -1 if there is none
    Place placeOf(qint32 track, Place before = { -1, -1 }) const; ///< negative if no group has it; looks behind first

    /// What changes from here on is noted until end() makes a step of it, empty if all is as before.
    void begin();
    DecisionStep end(const QString &text);

    /// Whether a scan proposes to remove it, and it was not said to be no duplicate of the copy to keep.
    bool isDuplicate(int group, int member) const;

    /// Refuses to tick what may not be ticked. A mark that is not by hand leaves one alone that already has this tick.
    void setTick(int group, int member, bool ticked, bool byHand);
    /// Of all copies that may be ticked, or of those at these places.
    void setTicks(const std::function<bool(bool wasTicked, bool isDuplicate)> &ticked,
                  const QList<Place> *places = nullptr);
    void setFacts(int group, const GroupFacts &facts); ///< the copy to keep is unticked if it is another one
    void setDecision(int group, const GroupDecision &decision);
    int setCheck(int group, const GroupCheck &check); ///< how many copies it unticked
    int untickDoubted(int group); ///< how many that were; with those that are no duplicates, unless ticked by hand
    void setFileStates(const QHash<qint32, FileState> &states); ///< of these; unticks what is not as it was scanned
    void setProtected(const QSet<qint32> &tracks); ///< these and no others; unticks them
    void setApart(const Pairs &pairs); ///< these are no duplicates of each other, and no others; unticks them
    void removeMembers(const QSet<qint32> &tracks);

    /// Undoes a step, or does it once more, as far as what it names is there and may be ticked. Marks of a copy that is
    /// not ticked for such a reason stay as they are.
    void apply(const DecisionStep &step, bool backwards);

private:
    struct Facts {
        bool keeperByHand = false;
        GroupState state = GroupState::Undecided;
    };

    std::size_t bitOf(int group, int member) const;
    qint64 reclaimable(const MatchGroup &group) const;
    quint8 markAt(int group, int member) const; ///< with MarkKept
    bool isApartFromKept(int group, int member) const;
    void untickAll(int group);
    void note(int group, int member);
    void setMark(int group, int member, quint8 mark);
    bool mayApply(int group, int member, quint8 mark) const;
    void layOut();
    void countGroups();
    void countTicks();

    QList<TrackInfo> m_tracks;
    QList<MatchGroup> m_groups;
    std::vector<std::size_t> m_firstBit = {
        0
    }; ///< per group, its first member among all members; one more entry closes it
    std::vector<quint8> m_marks; ///< per member, in group order: MarkTicked and MarkByHand
    std::vector<Facts> m_facts; ///< per group, beside its copy to keep
    std::vector<qint32> m_groupOfTrack; ///< -1 = in none
    QHash<qint32, FileState> m_fileStates; ///< of tracks that are not as they were scanned
    QSet<qint32> m_protected; ///< tracks
    Pairs m_apart;
    ReviewTotals m_totals;

    bool m_isNoting = false;
    std::vector<std::pair<std::size_t, quint8>> m_notedMarks; ///< by bit, as they were
    std::vector<std::pair<int, GroupFacts>> m_notedFacts;
};

} // namespace epr
