// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewplace.h"

#include "resultsfilter.h"
#include "resultsmodel.h"
#include "resultsview.h"

#include <algorithm>

namespace epr {

ReviewPlace::ReviewPlace(const ResultsModel *results, const ResultsFilter *filter, ResultsView *view)
    : QObject(view)
    , m_results(results)
    , m_filter(filter)
    , m_view(view)
{
    connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this, &ReviewPlace::remember);
    connect(view, &ResultsView::enteredWithoutCurrent, this, &ReviewPlace::enter);
    // After the view and its selection, which forget the current row without a word.
    connect(filter, &QAbstractItemModel::modelReset, this, &ReviewPlace::restore);
}

void ReviewPlace::goToGroup(int step)
{
    int row = firstRowFrom(m_group);
    if (step < 0)
        --row;
    else if (row < m_filter->rowCount() && idOfRow(row) == m_group)
        ++row;
    m_view->setFocus(Qt::ShortcutFocusReason);
    showGroup(row);
}

void ReviewPlace::remember(const QModelIndex &current)
{
    if (current.isValid()) {
        const QModelIndex cell = current.siblingAtColumn(ResultsModel::FileColumn);
        m_group = m_results->groups().value(cell.data(ResultsModel::GroupRole).toInt()).id;
        const QVariant track = cell.data(ResultsModel::TrackRole);
        m_track = track.isValid() ? track.toInt() : -1;
    }
    Q_EMIT changed(m_filter->mapToSource(current));
}

void ReviewPlace::restore()
{
    const QList<MatchGroup> &groups = m_results->groups();
    if (groups.isEmpty())
        m_group = 0;
    const auto place =
        std::find_if(groups.begin(), groups.end(), [this](const MatchGroup &g) { return g.id == m_group; });
    const bool isNowhere = m_group == 0;
    const bool isRemoved = place == groups.end();
    if (isNowhere ? m_view->hasFocus() : isRemoved)
        return enter();
    const QModelIndex shown = isNowhere ? QModelIndex() : m_filter->mapFromSource(rowIn(*place));
    if (shown.isValid())
        m_view->setCurrentIndex(shown);
    else
        Q_EMIT changed({});
}

// The copy, or the first one when it was removed, or the group's own row.
QModelIndex ReviewPlace::rowIn(const MatchGroup &place) const
{
    const auto number = &place - m_results->groups().constData();
    const QModelIndex group = m_results->index(static_cast<int>(number), 0);
    const auto member = static_cast<int>(place.members.indexOf(m_track));
    return m_track < 0 ? group : m_results->index(std::max(member, 0), 0, group);
}

void ReviewPlace::enter()
{
    showGroup(firstRowFrom(m_group));
}

// With the whole group in sight where there is room for it.
void ReviewPlace::showGroup(int row)
{
    const int count = m_filter->rowCount();
    if (count == 0) {
        Q_EMIT changed({});
        return;
    }
    const QModelIndex group = m_filter->index(std::clamp(row, 0, count - 1), ResultsModel::FileColumn);
    m_view->expand(group);
    m_view->setCurrentIndex(m_filter->index(0, ResultsModel::FileColumn, group));
    m_view->scrollTo(m_filter->index(m_filter->rowCount(group) - 1, ResultsModel::FileColumn, group));
    m_view->scrollTo(group);
}

qint32 ReviewPlace::idOfRow(int row) const
{
    const QModelIndex group = m_filter->index(row, ResultsModel::FileColumn);
    return m_results->groups().value(group.data(ResultsModel::GroupRole).toInt()).id;
}

// The row count if all groups come before.
int ReviewPlace::firstRowFrom(qint32 id) const
{
    int first = 0;
    for (int end = m_filter->rowCount(); first < end;) {
        const int middle = first + (end - first) / 2;
        if (idOfRow(middle) < id)
            first = middle + 1;
        else
            end = middle;
    }
    return first;
}

} // namespace epr
