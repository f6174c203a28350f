// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsheader.h"

#include "resultscells.h"
#include "resultscolumns.h"
#include "resultsmodel.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyleOptionHeader>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int columnCount = ResultsModel::ColumnCount;

int columnOf(QStringView name)
{
    int column = 0;
    while (column < columnCount && columnFacts(column).name != name)
        ++column;
    return column;
}

} // namespace

ResultsHeader::ResultsHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
    , m_columnMenu(new QMenu(tr("Columns"), this))
    , m_sortMenu(new QMenu(tr("Sort Groups By"), this))
{
    setSectionsMovable(true);
    setFirstSectionMovable(false);
    setSectionsClickable(true);
    setStretchLastSection(true);
    setSortIndicatorShown(true);
    setSortIndicatorClearable(true);
    setSortIndicator(-1, Qt::AscendingOrder);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(this, &QHeaderView::sectionResized, this, &ResultsHeader::onSectionResized);
    connect(this, &QHeaderView::sectionMoved, this, &ResultsHeader::fit);
}

void ResultsHeader::follow(ResultsModel *model)
{
    m_model = model;
    fillColumnMenu();
    fillSortMenu();
    addActions(m_columnMenu->actions());
    addAction(m_sortMenu->menuAction());
}

QStringList ResultsHeader::arrangement() const
{
    QStringList columns;
    for (int place = 0; place < columnCount; ++place) {
        const int column = logicalIndex(place);
        const int width = m_isChosen && !isSectionHidden(column) ? sectionSize(column) : 0;
        columns << u"%1%2:%3"_s.arg(isSectionHidden(column) ? "-"_L1 : ""_L1, columnFacts(column).name).arg(width);
    }
    return columns;
}

void ResultsHeader::arrange(const QStringList &columns)
{
    const QScopedValueRollback fitting(m_isFitting, true);
    int place = 1; // behind the first, which stays
    for (const QString &text : columns) {
        const bool isHidden = text.startsWith(u'-');
        const int column = columnOf(QStringView(text).mid(isHidden ? 1 : 0).split(u':').first());
        if (column == columnCount)
            continue;
        const int width = text.section(u':', 1).toInt();
        setSectionHidden(column, isHidden && column != ResultsModel::FileColumn);
        if (column != ResultsModel::FileColumn && text.contains(u':'))
            moveSection(visualIndex(column), place++);
        if (width > 0 && width < QWIDGETSIZE_MAX) {
            resizeSection(column, width);
            m_isChosen = true;
        }
    }
}

void ResultsHeader::arrangeAsBefore()
{
    m_isChosen = false;
    QStringList columns;
    for (int column = 0; column < columnCount; ++column)
        columns << (columnFacts(column).isOptional ? u"-%1:0"_s : u"%1:0"_s).arg(columnFacts(column).name);
    arrange(columns);
    fit();
}

void ResultsHeader::fit()
{
    const auto *view = qobject_cast<const QAbstractScrollArea *>(parentWidget());
    if (m_isChosen || m_isFitting || !m_model || !view)
        return;
    const QScopedValueRollback fitting(m_isFitting, true);
    fitResultsColumns(this, view->viewport()->width());
}

void ResultsHeader::initStyleOptionForIndex(QStyleOptionHeader *option, int column) const
{
    QHeaderView::initStyleOptionForIndex(option, column);
    option->sortIndicator = QStyleOptionHeader::None;
}

// Above the heading, where the style would draw it over the end of one that stands on the right.
void ResultsHeader::paintSection(QPainter *painter, const QRect &rect, int column) const
{
    painter->save();
    QHeaderView::paintSection(painter, rect, column);
    painter->restore();
    if (sortIndicatorSection() != column)
        return;
    constexpr int height = 4;
    const QPoint top(rect.center().x(), rect.top() + 1);
    const int base = sortIndicatorOrder() == Qt::AscendingOrder ? height : 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette().brush(QPalette::Text));
    painter->drawPolygon(
        QPolygon({ top + QPoint(-height, base), top + QPoint(height, base), top + QPoint(0, height - base) }));
    painter->restore();
}

// What is ticked follows what is shown, however that came about.
void ResultsHeader::fillColumnMenu()
{
    for (int column = 1; column < columnCount; ++column) {
        setSectionHidden(column, columnFacts(column).isOptional);
        QAction *action = m_columnMenu->addAction(columnHeading(column));
        action->setStatusTip(tr("Show this column, or hide it."));
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, column](bool shown) {
            setSectionHidden(column, !shown);
            fit();
        });
        const auto refresh = [this, action, column] { action->setChecked(!isSectionHidden(column)); };
        connect(this, &QHeaderView::sectionResized, action, refresh);
        refresh();
    }
    m_columnMenu->addSeparator();
    QAction *reset = m_columnMenu->addAction(tr("Reset Columns"));
    reset->setStatusTip(tr("Show the usual columns in the usual order and widths."));
    connect(reset, &QAction::triggered, this, &ResultsHeader::arrangeAsBefore);
}

void ResultsHeader::fillSortMenu()
{
    addSorting(tr("Order of the Scan"), {}, -1);
    m_sortMenu->addSeparator();
    addSorting(tr("Copies"), { GroupKey::Copies, true }, -1);
    for (int column = 0; column < columnCount; ++column) {
        const ColumnFacts &facts = columnFacts(column);
        addSorting(facts.key == GroupKey::Reclaimable ? tr("Reclaimable Size") : columnHeading(column),
                   { facts.key, facts.isMostFirst }, column);
    }
}

// Of what is sorted by already it is the other way round.
void ResultsHeader::addSorting(const QString &text, const GroupOrder &order, int column)
{
    QAction *action = m_sortMenu->addAction(text);
    action->setStatusTip(tr("Sort the groups by this; once more, the other way round. Copies stay as they are."));
    action->setCheckable(true);
    connect(m_sortMenu, &QMenu::aboutToShow, action,
            [this, action, order] { action->setChecked(m_model->rows().order().key == order.key); });
    connect(action, &QAction::triggered, this, [this, order, column] {
        const GroupOrder now = m_model->rows().order();
        const bool descending = now.key == order.key ? !now.descending : order.descending;
        setSortIndicator(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
        if (column < 0)
            m_model->setOrder({ order.key, order.key != GroupKey::Scan && descending });
    });
}

// The last section changes with the window's width, without anybody dragging it.
void ResultsHeader::onSectionResized(int section)
{
    if (!m_isFitting && isVisible() && section != lastShown())
        m_isChosen = true;
}

int ResultsHeader::lastShown() const
{
    int place = columnCount - 1;
    while (place > 0 && isSectionHidden(logicalIndex(place)))
        --place;
    return logicalIndex(place);
}

} // namespace epr
