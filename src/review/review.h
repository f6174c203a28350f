// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decisions.h"

#include <QFuture>
#include <QSet>
#include <QThreadPool>

#include <optional>

namespace epr {

struct KeeperChoice;

/// The tracks that a command is about; nothing = all.
using OnlyTracks = std::optional<QSet<qint32>>;

inline bool isAmong(const OnlyTracks &only, qint32 track)
{
    return !only || only->contains(track);
}

/// What is being decided about the results of a scan: which copy of a group is kept, which are ticked for removal, and
/// how far the operator is with it. It reads the scan's own lists and keeps a byte per member, so a large result costs
/// no row objects.
///
/// Every command of the operator's is one step that can be undone. A group is named by its position in groups(), a
/// member by its position in the group, a track by its index.
class Review final : public QObject {
    Q_OBJECT

public:
    using Place = Decisions::Place;

    /// What a command does with the ticks of many copies.
    enum class BulkTick { Duplicates, None, Invert };

    explicit Review(QObject *parent = nullptr);

    const QList<TrackInfo> &tracks() const { return m_decisions.tracks(); }
    const QList<MatchGroup> &groups() const { return m_decisions.groups(); }
    const ReviewTotals &totals() const { return m_decisions.totals(); }
    const TrackInfo *track(int group, int member) const; ///< null unless there is such a member, with a track
    bool isKeeper(int group, int member) const
    {
        return groups().at(group).members.at(member) == groups().at(group).keep;
    }
    bool isKeeperByHand(int group) const { return m_decisions.facts(group).keeperByHand; }
    QString keepText(int group) const; ///< why its copy is kept: "kept: lossless"; empty if nothing is known
    bool keeps(const QString &path) const; ///< whether it is the copy to keep of some group
    bool isTicked(int group, int member) const { return m_decisions.isTicked(group, member); }
    bool isTickByHand(int group, int member) const { return m_decisions.isTickByHand(group, member); }
    GroupState state(int group) const { return m_decisions.facts(group).state; }
    FileState fileState(qint32 track) const { return m_decisions.fileState(track); }
    bool isProtected(qint32 track) const { return m_decisions.isProtected(track); }
    GroupDecision decision(int group) const { return m_decisions.decision(group); }
    QList<MatchGroup> groupsOfDuplicates() const; ///< those that are not set aside

    /// How much later the second file has what the first has at a time, in ms; nothing if they share no group, or if
    /// that does not tell.
    std::optional<qint64> offsetBetween(const QString &first, const QString &second) const;

    bool isWhollyTicked(int group) const { return m_decisions.isWhollyTicked(group); } ///< no copy would survive
    int firstWhollyTickedGroup(const OnlyTracks &only = {}) const; ///< with one of these, -1 if there is none

    /// The track to compare the kept copy of a group with: this one, or the copy most worth it where this is the kept
    /// copy itself or none. What would be lost first is quality. -1 if there is no other copy.
    qint32 counterpart(int group, qint32 track) const;

    /// For every track that is in a group, its artist, title, file name and folder, case-folded, one to a line. They
    /// are prepared in the background from setResults() on; the first call waits for the rest of that work.
    QStringList searchTexts() const;

    /// Takes the lists of a scan and ticks every copy but the one to keep and those that lack a part of it.
    void setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);
    void clear();

    /// Takes up what was stored, and ticks nothing that it does not have ticked.
    void restore(const ReviewRecord &record);

    /// By what the copies to keep of these results were chosen.
    void setKeeperOptions(const ScanOptions &options);
    const ScanOptions &keeperOptions() const { return m_options; }

    /// What was decided of such copies before, by groups. It counts as decided, not as a step.
    void takeDecisions(const QHash<int, GroupDecision> &decisions);

    void tickDuplicates(); ///< as after a scan, and no others
    void clearTicks();
    void invertTicks();
    void tickMany(BulkTick what); ///< the same
    void tickMany(BulkTick what, const QList<Place> &places); ///< of these copies alone
    void setTicked(int group, int member, bool ticked);
    void setTicked(const QList<Place> &places, bool ticked); ///< as one step

    /// Makes another member the copy to keep. It is unticked; if it was ticked, the former keeper takes over the tick.
    /// What a check says is then said beside the new one, and copies that it speaks against removing are unticked.
    void setKeeper(int group, qint32 track);

    void setKeepers(const QList<Place> &places); ///< the same for several groups, as one step

    /// The same where the former keeper is the worse one: it is ticked if it is a copy to remove.
    void keepBetter(int group, qint32 track);

    void chooseKeepers(const KeeperChoice &choice); ///< as one step; the ticks follow as with setKeeper()

    void setState(const QList<int> &groups, GroupState state);

    /// What a check over the whole length found of a group. Copies that it speaks against removing are unticked; the
    /// result is how many. Nothing else changes, and there is no way back.
    int setCheck(int group, const GroupCheck &check);

    /// What became of files since the scan; of others nothing changes. Whatever is not as it was is unticked, and
    /// nobody can tick it.
    void setFileStates(const QHash<qint32, FileState> &states);

    /// Which tracks are in protected folders: these are unticked, and nobody can tick them.
    void setProtected(const QSet<qint32> &tracks);

    /// Which tracks were said to be no duplicates of each other: none of such a pair is ticked beside the other as the
    /// copy to keep, unless the operator ticks it.
    void setApart(const Decisions::Pairs &pairs);

    /// Takes out the members that refer to these tracks, and every group left with fewer than two members. The other
    /// groups keep their numbers and ticks. Where the copy to keep went, the first unticked one takes its place, lest a
    /// report propose every copy of a group.
    void removeMembers(const QSet<qint32> &tracks);

    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    QString undoText() const { return m_history.undoText(); } ///< the command's name, translated
    QString redoText() const { return m_history.redoText(); }

    /// One step. Neither ticks a copy that is kept now, that a check speaks against or that is not as it was scanned.
    /// The result is the only group that was concerned, -1 for several or none.
    int undo();
    int redo();

Q_SIGNALS:
    void aboutToBeReset(); ///< no position means the same after it
    void reset();
    void tickChanged(int group, int member); ///< or who set it
    void ticksChanged(); ///< in any number of groups at once
    void keeperChanged(int group); ///< and with it ticks of the group
    void checkChanged(int group); ///< the same
    void statesChanged(const QList<int> &groups); ///< the same
    void fileStatesChanged(); ///< the same; or which copies are protected, or no duplicates of each other
    void keeperOptionsChanged(); ///< by which the copies to keep were chosen again
    void totalsChanged(); ///< after whichever of the others it was
    void historyChanged();
    void tickRefused(const QString &reason); ///< the operator's own

private:
    template <typename Change> void perform(const QString &text, Change change);
    int announce(const DecisionStep &step);
    int applyStep(const DecisionStep &step, bool backwards);
    void makeSearchTexts();
    void tickThose(BulkTick what, const QList<Place> *places);
    void keepAnother(int group, qint32 track);
    QString refusal(int group, int member) const;

    Decisions m_decisions;
    DecisionHistory m_history;
    ScanOptions m_options; ///< by which the copies to keep were chosen
    ScanOptions m_formerOptions; ///< before they were chosen again: undo brings those copies back
    QThreadPool m_background; ///< not the global one: painting may need that, and would wait for the end of our work
    QFuture<QStringList> m_searchTexts;
};

/// Members without a file at their path. Looks at every one on the disk; safe on any thread.
QSet<qint32> vanishedTracks(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

} // namespace epr
