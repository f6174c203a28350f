// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsfilter.h"

#include "resultsmodel.h"
#include "searchtext.h"

#include <algorithm>

namespace epr {

namespace {

// The internal id of an index, as in the results model: 0 on group rows, one more than the group's row below them.
constexpr quintptr groupRowId = 0;

bool isGroupRow(const QModelIndex &index)
{
    return index.internalId() == groupRowId;
}

int groupRowOf(const QModelIndex &member)
{
    return static_cast<int>(member.internalId() - 1);
}

} // namespace

ResultsFilter::ResultsFilter(ResultsModel *results, QObject *parent)
    : QAbstractProxyModel(parent)
    , m_results(results)
{
    setSourceModel(results);
    connectSource();
    layOutRows();
}

void ResultsFilter::setText(const QString &text)
{
    const QStringList needles = searchNeedles(text);
    if (needles == m_needles)
        return;
    beginResetModel();
    m_needles = needles;
    layOutRows();
    endResetModel();
}

qint64 ResultsFilter::hiddenTicks() const
{
    if (!isActive())
        return 0;
    qint64 shown = 0;
    for (const VisibleGroup &group : m_groups) {
        for (int i = 0; i < group.memberCount; ++i)
            shown += m_results->isTicked(group.sourceRow, m_members[static_cast<std::size_t>(group.firstMember + i)]);
    }
    return m_results->totals().tickedFiles - shown;
}

QModelIndex ResultsFilter::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!proxyIndex.isValid())
        return {};
    if (isGroupRow(proxyIndex))
        return m_results->index(groupAt(proxyIndex.row()).sourceRow, proxyIndex.column());
    const VisibleGroup &group = groupAt(groupRowOf(proxyIndex));
    const int member = m_members[static_cast<std::size_t>(group.firstMember + proxyIndex.row())];
    return m_results->index(member, proxyIndex.column(), m_results->index(group.sourceRow, 0));
}

QModelIndex ResultsFilter::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid())
        return {};
    const QModelIndex sourceParent = sourceIndex.parent();
    const int sourceGroup = sourceParent.isValid() ? sourceParent.row() : sourceIndex.row();
    const int row = m_proxyRows[static_cast<std::size_t>(sourceGroup)];
    if (row < 0)
        return {};
    if (!sourceParent.isValid())
        return createIndex(row, sourceIndex.column(), groupRowId);
    const VisibleGroup &group = groupAt(row);
    const auto first = m_members.begin() + group.firstMember;
    const auto last = first + group.memberCount;
    const auto found = std::lower_bound(first, last, sourceIndex.row());
    if (found == last || *found != sourceIndex.row())
        return {};
    return createIndex(static_cast<int>(found - first), sourceIndex.column(), static_cast<quintptr>(row) + 1);
}

QModelIndex ResultsFilter::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column < 0 || column >= columnCount() || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : groupRowId);
}

QModelIndex ResultsFilter::parent(const QModelIndex &child) const
{
    if (!child.isValid() || isGroupRow(child))
        return {};
    return createIndex(groupRowOf(child), 0, groupRowId);
}

int ResultsFilter::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_groups.size());
    return isGroupRow(parent) && parent.column() == 0 ? groupAt(parent.row()).memberCount : 0;
}

int ResultsFilter::columnCount(const QModelIndex &) const
{
    return ResultsModel::ColumnCount;
}

bool ResultsFilter::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

// The base class asks the source through the first row, and there may be none.
QVariant ResultsFilter::headerData(int section, Qt::Orientation orientation, int role) const
{
    return m_results->headerData(section, orientation, role);
}

void ResultsFilter::connectSource()
{
    connect(m_results, &QAbstractItemModel::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(m_results, &QAbstractItemModel::modelReset, this, [this] {
        layOutRows();
        endResetModel();
    });
    connect(m_results, &QAbstractItemModel::dataChanged, this, &ResultsFilter::forwardChange);
}

void ResultsFilter::layOutRows()
{
    m_groups.clear();
    m_members.clear();
    m_proxyRows.assign(static_cast<std::size_t>(m_results->groups().size()), -1);
    const QStringList searchTexts = isActive() ? m_results->searchTexts() : QStringList();
    for (int row = 0; row < m_results->groups().size(); ++row)
        appendGroup(row, searchTexts);
}

void ResultsFilter::appendGroup(int sourceRow, const QStringList &searchTexts)
{
    const QList<qint32> &members = m_results->groups().at(sourceRow).members;
    const auto first = static_cast<int>(m_members.size());
    for (int row = 0; row < members.size(); ++row) {
        const qint32 track = members.at(row);
        const bool hasText = track >= 0 && track < searchTexts.size();
        if (!hasText || matches(searchTexts.at(track)))
            m_members.push_back(row);
    }
    const int count = static_cast<int>(m_members.size()) - first;
    if (count == 0)
        return;
    m_proxyRows[static_cast<std::size_t>(sourceRow)] = static_cast<int>(m_groups.size());
    m_groups.push_back({ sourceRow, first, count });
}

bool ResultsFilter::matches(const QString &searchText) const
{
    return std::any_of(m_needles.cbegin(), m_needles.cend(),
                       [&searchText](const QString &needle) { return searchText.contains(needle); });
}

void ResultsFilter::forwardChange(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles)
{
    const QModelIndex sourceParent = topLeft.parent();
    const QModelIndex proxyParent = mapFromSource(sourceParent);
    if (sourceParent.isValid() && !proxyParent.isValid())
        return;
    // The rows between the two may be hidden here, at either end too; those that are shown form one interval.
    int first = topLeft.row();
    int last = bottomRight.row();
    QModelIndex proxyFirst;
    QModelIndex proxyLast;
    while (first <= last && !proxyFirst.isValid())
        proxyFirst = mapFromSource(topLeft.siblingAtRow(first++));
    while (last >= first - 1 && !proxyLast.isValid())
        proxyLast = mapFromSource(bottomRight.siblingAtRow(last--));
    if (proxyFirst.isValid() && proxyLast.isValid())
        Q_EMIT dataChanged(proxyFirst, proxyLast, roles);
}

} // namespace epr
