// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewplace.h"

#include "resultsmodel.h"
#include "resultsview.h"
#include "review.h"

#include <algorithm>

namespace epr {

ReviewPlace::ReviewPlace(const Review &review, const ResultsModel &model, ResultsView *view)
    : QObject(view)
    , m_review(review)
    , m_model(model)
    , m_view(view)
{
    connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this, &ReviewPlace::remember);
    connect(view, &ResultsView::enteredWithoutCurrent, this, &ReviewPlace::enter);
    // After the view and its selection, which forget the current row without a word.
    connect(&model, &QAbstractItemModel::modelReset, this, &ReviewPlace::restore);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, [this] {
        if (!m_view->currentIndex().isValid())
            restore();
    });
}

void ReviewPlace::goToGroup(int step)
{
    int row = firstRowFrom(m_group);
    if (step < 0)
        --row;
    else if (row < m_model.rowCount() && idOfRow(row) == m_group)
        ++row;
    m_view->setFocus(Qt::ShortcutFocusReason);
    showGroup(row);
}

bool ReviewPlace::goToNext(int group, const Wanted &isWanted)
{
    const int count = m_model.rowCount();
    const int start = firstRowFrom(group < 0 ? 0 : m_review.groups().at(group).id);
    for (int step = 0; step < count; ++step) {
        const int row = (start + step) % count;
        const int found = m_model.groupOf(m_model.index(row, ResultsModel::FileColumn));
        if (found == group || !isWanted(found))
            continue;
        m_view->setFocus(Qt::ShortcutFocusReason);
        showGroup(row);
        return true;
    }
    return false;
}

void ReviewPlace::remember(const QModelIndex &current)
{
    const int group = m_model.groupOf(current);
    const int member = m_model.memberOf(current);
    if (group >= 0) {
        m_group = m_review.groups().at(group).id;
        m_track = member < 0 ? -1 : m_review.groups().at(group).members.at(member);
        m_row = m_model.groupIndex(group).row();
    }
    Q_EMIT changed(group, member);
}

void ReviewPlace::restore()
{
    const QList<MatchGroup> &groups = m_review.groups();
    if (groups.isEmpty())
        m_group = 0;
    const auto place =
        std::find_if(groups.begin(), groups.end(), [this](const MatchGroup &g) { return g.id == m_group; });
    const bool isNowhere = m_group == 0;
    const bool isRemoved =
        place == groups.end() || m_review.state(static_cast<int>(place - groups.begin())) == GroupState::NotDuplicates;
    const bool isEntered = m_view->window()->focusWidget() == m_view; // also while the window is not the active one
    if (isNowhere ? isEntered : isRemoved)
        return enter();
    const QModelIndex shown = isNowhere ? QModelIndex() : rowIn(*place);
    if (shown.isValid())
        m_view->setCurrentIndex(shown);
    else
        Q_EMIT changed(-1, -1);
}

// The copy, or the first one when it was removed, or the group's own row.
QModelIndex ReviewPlace::rowIn(const MatchGroup &place) const
{
    const auto group = static_cast<int>(&place - m_review.groups().constData());
    const auto member = static_cast<int>(place.members.indexOf(m_track));
    return m_track < 0 ? m_model.groupIndex(group) : m_model.memberIndex(group, std::max(member, 0));
}

void ReviewPlace::enter()
{
    showGroup(firstRowFrom(m_group));
}

// With the whole group in sight where there is room for it.
void ReviewPlace::showGroup(int row)
{
    const int count = m_model.rowCount();
    if (count == 0) {
        Q_EMIT changed(-1, -1);
        return;
    }
    const QModelIndex group = m_model.index(std::clamp(row, 0, count - 1), ResultsModel::FileColumn);
    m_view->expand(group);
    m_view->setCurrentIndex(m_model.index(0, ResultsModel::FileColumn, group));
    m_view->scrollTo(m_model.index(m_model.rowCount(group) - 1, ResultsModel::FileColumn, group));
    m_view->scrollTo(group);
}

qint32 ReviewPlace::idOfRow(int row) const
{
    return m_review.groups().at(m_model.groupOf(m_model.index(row, ResultsModel::FileColumn))).id;
}

// The row count if all groups come before. In another order than the scan's there is no next group to one that is gone,
// so its row is taken that it had.
int ReviewPlace::firstRowFrom(qint32 id) const
{
    const QList<MatchGroup> &groups = m_review.groups();
    const auto next = std::ranges::lower_bound(groups, id, {}, &MatchGroup::id);
    const ReviewFilter &rows = m_model.rows();
    if ((next == groups.cend() || next->id != id) && rows.order().key != GroupKey::Scan)
        return std::min(m_row, m_model.rowCount());
    return next == groups.cend() ? m_model.rowCount() : rows.firstRowFrom(static_cast<int>(next - groups.cbegin()));
}

} // namespace epr
