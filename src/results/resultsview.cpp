// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsview.h"

#include "look.h"
#include "notices.h"
#include "resultscells.h"
#include "resultsheader.h"
#include "resultsmodel.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QPolygonF>
#include <QScrollBar>

#include <algorithm>
#include <cstdlib>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QColor groupColour(const QStyleOptionViewItem &option, const QModelIndex &cell, bool isSelected)
{
    const QVariant own = isSelected ? QVariant() : cell.data(Qt::ForegroundRole);
    return own.isValid() ? own.value<QColor>()
                         : option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
}

} // namespace

ResultsView::ResultsView(QWidget *parent)
    : QTreeView(parent)
    , m_hint(new EmptyHint(this))
    , m_header(new ResultsHeader(this))
{
    setItemDelegate(new ResultsDelegate(this));
    setUniformRowHeights(true); // without it the view asks every one of 100,000 rows for its height
    setAllColumnsShowFocus(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setHeader(m_header);
}

void ResultsView::setHint(const QString &text)
{
    m_hint->setText(text);
}

ResultsHeader *ResultsView::headings() const
{
    return m_header;
}

// By ranges: a list of selected rows takes the square of their number.
QModelIndexList ResultsView::rowsAtHand() const
{
    const QModelIndex current = currentIndex().siblingAtColumn(ResultsModel::FileColumn);
    if (!current.isValid() || !selectionModel()->isSelected(current))
        return current.isValid() ? QModelIndexList { current } : QModelIndexList();
    QModelIndexList rows;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows << model()->index(row, ResultsModel::FileColumn, range.parent());
    }
    return rows;
}

void ResultsView::setModel(QAbstractItemModel *model)
{
    QTreeView::setModel(model);
    m_model = qobject_cast<ResultsModel *>(model);
    m_header->follow(m_model);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &ResultsView::refreshHint);
    connect(model, &QAbstractItemModel::layoutChanged, this, [this] { scrollTo(currentIndex()); });
    setSortingEnabled(true);
}

void ResultsView::reset()
{
    QTreeView::reset();
    expandAll();
    refreshHint();
    m_header->fit();
}

// Every group that comes is open like the others.
void ResultsView::rowsInserted(const QModelIndex &parent, int first, int last)
{
    QTreeView::rowsInserted(parent, first, last);
    for (int row = first; row <= last && !parent.isValid(); ++row)
        expand(model()->index(row, 0));
    refreshHint();
}

// What changes in many groups at once changes neither heights nor children, which is what the base class would go
// through row by row, and reaches the rows below those of the range; painting what is visible is all there is to do.
void ResultsView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles)
{
    if (roles.size() == 1 && !topLeft.parent().isValid())
        viewport()->update();
    else
        QTreeView::dataChanged(topLeft, bottomRight, roles);
}

void ResultsView::drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    if (!hasFocus()) {
        row.state &= ~QStyle::State_Active; // a selection that the keys move looks other than one that they do not
        row.palette.setCurrentColorGroup(QPalette::Inactive);
    }
    if (index.parent().isValid()) {
        QTreeView::drawRow(painter, row, index);
        return;
    }
    drawGroupBand(painter, row, index);
    drawGroupTexts(painter, row, index);
}

void ResultsView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKeyboard ? currentIndex() : indexAt(event->pos());
    if (!index.isValid())
        return;
    if (selectionModel()->isSelected(index)) // with others, which are meant as well
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    else
        setCurrentIndex(index);
    const QPoint centre = visualRect(currentIndex()).center();
    Q_EMIT memberMenuRequested(byKeyboard ? viewport()->mapToGlobal(centre) : event->globalPos());
}

// The base class would make the first row current, which moves the place although nobody went there.
void ResultsView::focusInEvent(QFocusEvent *event)
{
    const bool isByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (!currentIndex().isValid() && isByKey)
        Q_EMIT enteredWithoutCurrent();
    if (currentIndex().isValid())
        QTreeView::focusInEvent(event);
    else
        QAbstractScrollArea::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call)
}

// Where the program goes, that row alone is selected, whatever key the command has.
QItemSelectionModel::SelectionFlags ResultsView::selectionCommand(const QModelIndex &index, const QEvent *event) const
{
    return event ? QTreeView::selectionCommand(index, event)
                 : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

// The time that Qt's selections take grows with the square of the groups in them: for all of a large result, minutes.
bool ResultsView::mayBeSelected(int height)
{
    constexpr int mostRows = 3000;
    const QModelIndex first = model()->index(0, ResultsModel::FileColumn);
    const bool isFew = height / std::max(rowHeight(first), 1) <= mostRows;
    if (!isFew)
        Q_EMIT selectionRefused();
    return isFew;
}

void ResultsView::selectAll()
{
    if (mayBeSelected(verticalScrollBar()->maximum() + viewport()->height()))
        QTreeView::selectAll();
}

void ResultsView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    if (mayBeSelected(std::abs(rect.height())))
        QTreeView::setSelection(rect, command);
}

void ResultsView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    Q_EMIT rowsAtHandChanged();
}

void ResultsView::keyPressEvent(QKeyEvent *event)
{
#ifndef Q_OS_WIN
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) { // Windows turns it into the menu key
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        contextMenuEvent(&menu);
        return;
    }
#endif
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (plain && event->key() == Qt::Key_Space)
        toggleAtHand();
    else if (plain && isReturn && isOnMember())
        Q_EMIT memberActivated();
    else
        QTreeView::keyPressEvent(event);
}

void ResultsView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && isOnMember() && indexAt(event->position().toPoint()) == currentIndex())
        Q_EMIT memberActivated();
}

void ResultsView::resizeEvent(QResizeEvent *event)
{
    QTreeView::resizeEvent(event);
    m_header->fit();
}

void ResultsView::refreshHint()
{
    m_hint->setVisible(!model() || model()->rowCount() == 0);
}

// All of them become what the current one does, or ticked unless they all are.
void ResultsView::toggleAtHand()
{
    QModelIndexList cells;
    for (const QModelIndex &row : rowsAtHand()) {
        if (row.flags().testFlag(Qt::ItemIsUserCheckable))
            cells << row;
    }
    const auto isTicked = [](const QModelIndex &cell) { return cell.data(Qt::CheckStateRole).toInt() == Qt::Checked; };
    const QModelIndex current = currentIndex().siblingAtColumn(ResultsModel::FileColumn);
    const bool ticked = isOnMember() ? isTicked(current) : std::ranges::all_of(cells, isTicked);
    if (!cells.isEmpty())
        m_model->tick(cells, !ticked);
}

bool ResultsView::isOnMember() const
{
    return currentIndex().parent().isValid();
}

void ResultsView::drawGroupBand(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isSelected = selectionModel()->isSelected(index);
    painter->fillRect(option.rect, option.palette.brush(isSelected ? QPalette::Highlight : QPalette::AlternateBase));
    const QRect branch(option.rect.left() + leadingEdge(option.rect, ResultsModel::FileColumn), option.rect.y(),
                       indentation(), option.rect.height());
    drawArrow(painter, option, QStyle::visualRect(option.direction, option.rect, branch), index);
    if (hasFocus() && index.row() == currentIndex().row() && !currentIndex().parent().isValid()) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, this);
    }
}

// Some styles draw theirs in one colour whatever the ground, and a plus sign in a box, or lines, where others draw
// arrows.
void ResultsView::drawArrow(QPainter *painter, const QStyleOptionViewItem &option, const QRect &place,
                            const QModelIndex &index) const
{
    const qreal half = option.fontMetrics.height() / 5.0;
    const QPolygonF arrow { { -half / 2, -half }, { half / 2, 0 }, { -half / 2, half } };
    QTransform turn = QTransform::fromTranslate(QRectF(place).center().x(), QRectF(place).center().y());
    if (isExpanded(index))
        turn.rotate(90);
    else if (isRightToLeft())
        turn.scale(-1, 1);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    constexpr qreal penWidth = 1.5;
    const bool isSelected = selectionModel()->isSelected(index);
    painter->setPen(QPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text), penWidth));
    painter->drawPolyline(turn.map(arrow));
    painter->restore();
}

int ResultsView::leadingEdge(const QRect &row, int column) const
{
    const int left = columnViewportPosition(column);
    return isRightToLeft() ? row.right() + 1 - left - columnWidth(column) : left - row.left();
}

int ResultsView::drawProblem(QPainter *painter, const QStyleOptionViewItem &option, const QRect &place,
                             const QModelIndex &index) const
{
    const QString text = index.data(ResultsModel::ProblemRole).toString();
    if (text.isEmpty())
        return place.left();
    const bool isSelected = selectionModel()->isSelected(index);
    const QColor colour = isSelected ? option.palette.color(QPalette::HighlightedText) : warningColour(option.palette);
    const int side = painter->fontMetrics().ascent();
    const QRect sign(place.left(), place.center().y() - side / 2, side, side);
    paintWarning(*painter, QStyle::visualRect(option.direction, option.rect, sign), colour);
    QRect words = place;
    words.setLeft(sign.right() + side / 2);
    painter->setPen(colour);
    painter->drawText(QStyle::visualRect(option.direction, option.rect, words),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    return words.left() + painter->fontMetrics().horizontalAdvance(text) + side;
}

// The group's own text may be wider than its column, and so may the match label after it. Nothing else is in the row,
// so each simply takes the room it needs.
void ResultsView::drawGroupTexts(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isSelected = selectionModel()->isSelected(index);
    const QModelIndex label = index.siblingAtColumn(ResultsModel::MatchColumn);
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;

    QRect place = option.rect; // as in a window that reads from the left; mirrored where it is drawn
    const int start = place.left() + leadingEdge(option.rect, ResultsModel::FileColumn) + indentation() + margin;
    place.setLeft(start);
    QFont bold = option.font;
    bold.setBold(true);
    painter->save();
    painter->setFont(bold);
    painter->setPen(groupColour(option, index, isSelected));
    const QString text = index.data().toString();
    const auto draw = [&](const QString &words) {
        painter->drawText(QStyle::visualRect(option.direction, option.rect, place),
                          Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, words);
    };
    draw(text);

    place.setLeft(start + QFontMetrics(bold).horizontalAdvance(text) + 4 * margin);
    const int textEnd = drawProblem(painter, option, place, index);
    const int labelStart = option.rect.left() + leadingEdge(option.rect, ResultsModel::MatchColumn) + margin;
    place.setLeft(std::max(labelStart, textEnd));
    painter->setFont(option.font);
    painter->setPen(groupColour(option, label, isSelected));
    draw(label.data().toString());
    painter->restore();
}

} // namespace epr
