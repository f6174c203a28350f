// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QStyledItemDelegate>

class QHeaderView;

namespace epr {

/// Text colour of a match type: dark, or of the same hue but lighter on a dark palette.
QColor matchColour(MatchType type, const QPalette &palette);
QColor keeperColour(const QPalette &palette);

/// Lays the columns out over a viewport of this width: those with texts of a known form get what such texts need, the
/// names and folders share the rest. Below a certain width the rest has a lower limit, and the view scrolls.
void fitResultsColumns(QHeaderView *header, int width);

/// Draws the cells of the results: the letters of the decks before the name of a loaded file, folders elided in the
/// middle, where two long paths look most alike, and a tool tip with the whole text on any cell that is too narrow for
/// it.
class ResultsDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace epr
