// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "celltexts.h"
#include "deck.h"
#include "reviewfilter.h"

#include <QAbstractItemModel>
#include <QFont>

namespace epr {

/// A review as a tree of two levels: a row per group and below it a row per member, those that a filter finds alone
/// where there is one.
///
/// Where a change touches ticks or decks in many groups, one dataChanged() covers the range of their group rows and
/// stands for everything below them as well.
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
        FormatColumn,
        LoudnessColumn, ///< this and the next three: what the check over the whole length found
        TruePeakColumn,
        BandwidthColumn,
        CheckColumn,
        RelationColumn, ///< how a copy belongs to the kept one, and why that is kept
        FolderColumn,
        ColumnCount
    };

    enum Role {
        TrackRole = Qt::UserRole + 1, ///< member rows: index in the track list
        GroupRole, ///< position in the group list
        KeeperRole, ///< member rows: whether this is the copy to keep
        ProblemRole, ///< group rows: why the operator had better look at it; empty = no reason
        DamageRole, ///< file cells: whether the copy may be broken
        LockRole, ///< file cells: whether the copy is protected
        DecksRole, ///< file cells: "A", "B" or "AB" for the decks that the copy is loaded into
    };

    explicit ResultsModel(Review &review, QObject *parent = nullptr);

    void setFilter(const QString &text); ///< as typed
    void setCriteria(const FilterCriteria &criteria);
    void setLoaded(const PerDeck<QString> &paths); ///< empty = nothing in the deck
    bool hasRemarks() const; ///< whether a copy's match is more than "duplicate" or "KEEP"
    QList<std::pair<int, int>> placesOf(const QModelIndexList &rows) const; ///< groups and members, of member rows
    void tick(const QModelIndexList &rows, bool ticked); ///< as one step
    void setOrder(const GroupOrder &order);
    const ReviewFilter &rows() const { return m_rows; }

    QModelIndex groupIndex(int group) const; ///< its row; invalid while it is not shown
    QModelIndex memberIndex(int group, int member) const;
    int groupOf(const QModelIndex &index) const; ///< position in the review, -1 for an invalid index
    int memberOf(const QModelIndex &index) const; ///< position in its group, -1 on a group's own row

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    void sort(int column, Qt::SortOrder order) override; ///< -1 = as the scan has them

private:
    void layOutRows();
    void followReview();
    void followStates(const QList<int> &groups);
    void takeRowAway(int group);
    void bringRowBack(int group);
    void emitEverywhereChanged(int role);
    void emitGroupChanged(int group);
    bool isProtected(int group, int member) const;
    QString decksOf(const TrackInfo &track) const;
    QVariant groupData(int group, int column, int role) const;
    QVariant memberData(int group, int member, int column, int role) const;
    QVariant accessibleText(int group, int member, int column) const;
    QVariant matchTextColour(int group, int member) const;
    QString problemText(int group) const;
    QVariant memberToolTip(int group, int member, int column) const;

    Review &m_review;
    ReviewFilter m_rows;
    CellTexts m_texts;
    QFont m_boldFont;
    PerDeck<QString> m_loaded;
};

} // namespace epr
