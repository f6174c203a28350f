// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTreeView>

namespace epr {

class EmptyHint;
class ResultsHeader;
class ResultsModel;

/// The tree of duplicate groups, every group open. A group is one line across all columns; below it a member takes a
/// row of cells. Space ticks the current row whichever cell is current.
class ResultsView final : public QTreeView {
    Q_OBJECT

public:
    explicit ResultsView(QWidget *parent = nullptr);

    void setHint(const QString &text); ///< shown while there are no rows

    ResultsHeader *headings() const;

    /// What a command is about: the selected rows, or the current one alone while it is not among them.
    QModelIndexList rowsAtHand() const;

    void reset() override;
    void selectAll() override; ///< unless there are too many rows

    void setModel(QAbstractItemModel *model) override;

Q_SIGNALS:
    void memberMenuRequested(const QPoint &globalPos); ///< for the current member or group
    void enteredWithoutCurrent(); ///< the focus came by key and no row is current
    void rowsAtHandChanged();
    void selectionRefused(); ///< so many rows are not selected at once
    void memberActivated(); ///< the current member was double-clicked, or Return was pressed on it

protected:
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) override;
    void rowsInserted(const QModelIndex &parent, int first, int last) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event = nullptr) const override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void refreshHint();
    bool mayBeSelected(int height);
    void toggleAtHand();
    bool isOnMember() const;
    /// How far the column begins from where the row begins, in the direction of reading.
    int leadingEdge(const QRect &row, int column) const;
    void drawGroupBand(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;
    void drawArrow(QPainter *painter, const QStyleOptionViewItem &option, const QRect &place,
                   const QModelIndex &index) const;
    /// With its sign before it; where the next text may begin, in the direction of reading.
    int drawProblem(QPainter *painter, const QStyleOptionViewItem &option, const QRect &place,
                    const QModelIndex &index) const;
    void drawGroupTexts(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;

    EmptyHint *m_hint;
    ResultsHeader *m_header;
    ResultsModel *m_model = nullptr;
};

} // namespace epr
