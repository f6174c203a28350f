// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "resultstotals.h"
#include "trackinfo.h"

#include <QAbstractItemModel>
#include <QFont>
#include <QFuture>
#include <QSet>
#include <QThreadPool>

#include <vector>

namespace epr {

/// The duplicate groups of a scan as a tree of two levels: a row per group and below it a row per member. It reads
/// the scan's own lists and keeps one bit per member for the tick, so a large result costs no row objects.
///
/// Where a change touches ticks in many groups, one dataChanged() covers the range of their group rows and stands for
/// everything below them as well.
class ResultsModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Column {
        FileColumn,
        MatchColumn,
        ArtistColumn,
        TitleColumn,
        DurationColumn,
        QualityColumn,
        SizeColumn,
        ModifiedColumn,
        FolderColumn,
        ColumnCount
    };

    enum Role {
        TrackRole = Qt::UserRole + 1, ///< member rows: index in the track list
        GroupRole, ///< position in the group list
        KeeperRole, ///< member rows: whether this is the copy to keep
    };

    explicit ResultsModel(QObject *parent = nullptr);

    [[nodiscard]] const QList<TrackInfo> &tracks() const { return m_tracks; }
    [[nodiscard]] const QList<MatchGroup> &groups() const { return m_groups; }
    [[nodiscard]] const ResultsTotals &totals() const { return m_totals; }
    [[nodiscard]] const TrackInfo *trackAt(const QModelIndex &index) const; ///< null unless a member row with a track
    [[nodiscard]] bool isTicked(int group, int member) const { return m_ticked[rowOf(group, member)]; }

    /// For every track that is in a group, its artist, title, file name and folder, case-folded, one to a line. They
    /// are prepared in the background from setResults() on; the first call waits for the rest of that work.
    [[nodiscard]] QStringList searchTexts() const;

    /// Takes the lists of a scan and ticks every copy but the one to keep.
    void setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);
    void clear();

    void tickDuplicates(); ///< every copy but the keepers, which are unticked
    void clearTicks();
    void invertTicks();

    /// Makes another member the copy to keep. It is unticked; if it was ticked, the former keeper takes over the tick.
    void setKeeper(int group, qint32 track);

    /// Takes out the members that refer to these tracks, and every group left with fewer than two members. The other
    /// groups keep their numbers and ticks. Where the copy to keep went, the first unticked one takes its place, lest a
    /// report propose every copy of a group.
    void removeMembers(const QSet<qint32> &tracks);

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

Q_SIGNALS:
    void totalsChanged();

private:
    [[nodiscard]] std::size_t rowOf(int group, int member) const;
    [[nodiscard]] const TrackInfo *track(qint32 index) const;
    [[nodiscard]] qint64 sizeOf(qint32 trackIndex) const;
    [[nodiscard]] qint64 reclaimable(const MatchGroup &group) const;
    [[nodiscard]] QVariant groupData(int group, int column, int role) const;
    [[nodiscard]] QVariant memberData(int group, int member, int column, int role) const;
    [[nodiscard]] QString groupText(const MatchGroup &group) const;
    [[nodiscard]] QString memberText(const TrackInfo &track, int column) const;
    [[nodiscard]] QVariant memberToolTip(const TrackInfo &track, int column) const;

    template <typename Rule> void setTicks(Rule ticked); ///< rule: (was ticked, is keeper) to ticked
    void setTick(int group, int member, bool ticked);
    void countGroups();
    void layOutRows();
    void emitTicksChanged();
    void emitGroupChanged(int group);

    QList<TrackInfo> m_tracks;
    QList<MatchGroup> m_groups;
    std::vector<std::size_t> m_firstRow; ///< per group, its first member among all members; one more entry closes it
    std::vector<bool> m_ticked; ///< per member, in group order
    ResultsTotals m_totals;
    QThreadPool m_background; ///< not the global one: painting may need that, and would wait for the end of our work
    QFuture<QStringList> m_searchTexts;
    QFont m_boldFont;
};

} // namespace epr
