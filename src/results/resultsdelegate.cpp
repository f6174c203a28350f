// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsdelegate.h"

#include "plainbox.h"
#include "resultsmodel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace epr {

// A little air between the lines: a result is read row by row.
QSize ResultsDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
}

bool ResultsDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    const bool hasOwnTip = index.data(Qt::ToolTipRole).isValid();
    if (event->type() != QEvent::ToolTip || hasOwnTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QRect cell = view->visualRect(index);
    const bool isCut = sizeHint(option, index).width() > cell.width();
    QToolTip::showText(event->globalPos(), isCut ? plainToolTip(index.data().toString()) : QString(), view->viewport(),
                       cell);
    return isCut;
}

void ResultsDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == ResultsModel::FolderColumn)
        option->textElideMode = Qt::ElideMiddle;
}

} // namespace epr
