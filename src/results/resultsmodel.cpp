// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsmodel.h"

#include "displaytext.h"
#include "groupcheck.h"
#include "groupproblem.h"
#include "missingpart.h"
#include "notices.h"
#include "resultscells.h"
#include "resultscolumns.h"
#include "review.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// The internal id of an index: 0 on group rows, one more than the group's position in the review on member rows, which
// no row that comes or goes before it changes.
constexpr quintptr groupRowId = 0;

bool isGroupRow(const QModelIndex &index)
{
    return index.internalId() == groupRowId;
}

} // namespace

ResultsModel::ResultsModel(Review &review, QObject *parent)
    : QAbstractItemModel(parent)
    , m_review(review)
    , m_rows(review)
    , m_texts(review)
{
    m_boldFont.setBold(true);
    followReview();
}

void ResultsModel::setFilter(const QString &text)
{
    if (m_rows.setText(text))
        layOutRows();
}

void ResultsModel::setCriteria(const FilterCriteria &criteria)
{
    m_rows.setCriteria(criteria);
    layOutRows();
}

QList<std::pair<int, int>> ResultsModel::placesOf(const QModelIndexList &rows) const
{
    QList<Review::Place> places;
    for (const QModelIndex &row : rows) {
        if (!isGroupRow(row))
            places.append({ groupOf(row), memberOf(row) });
    }
    return places;
}

void ResultsModel::tick(const QModelIndexList &rows, bool ticked)
{
    m_review.setTicked(placesOf(rows), ticked);
}

// The members keep their rows, and with them their indexes.
void ResultsModel::setOrder(const GroupOrder &order)
{
    if (order == m_rows.order())
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QList<int> groups;
    for (const QModelIndex &index : before)
        groups << groupOf(index);
    m_rows.setOrder(order);
    QModelIndexList after = before;
    for (qsizetype i = 0; i < after.size(); ++i) {
        if (isGroupRow(after.at(i)))
            after[i] = index(m_rows.rowOf(groups.at(i)), after.at(i).column());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

void ResultsModel::sort(int column, Qt::SortOrder order)
{
    const bool isAsScanned = column < 0; // no heading has an arrow
    setOrder(isAsScanned ? GroupOrder() : GroupOrder { columnFacts(column).key, order == Qt::DescendingOrder });
}

void ResultsModel::setLoaded(const PerDeck<QString> &paths)
{
    m_loaded = paths;
    emitEverywhereChanged(DecksRole);
}

bool ResultsModel::hasRemarks() const
{
    return std::ranges::any_of(m_review.groups(), [](const MatchGroup &group) {
        return group.check.isDone() || !group.edits.isEmpty()
            || std::ranges::any_of(group.members, [&](qint32 member) { return missingPart(group, member).isAny(); });
    });
}

QModelIndex ResultsModel::groupIndex(int group) const
{
    return index(m_rows.rowOf(group), FileColumn);
}

QModelIndex ResultsModel::memberIndex(int group, int member) const
{
    const QModelIndex groupRow = groupIndex(group);
    return groupRow.isValid() ? index(m_rows.rowOf(group, member), FileColumn, groupRow) : QModelIndex();
}

int ResultsModel::groupOf(const QModelIndex &index) const
{
    if (!index.isValid())
        return -1;
    return isGroupRow(index) ? m_rows.groupAt(index.row()) : static_cast<int>(index.internalId() - 1);
}

int ResultsModel::memberOf(const QModelIndex &index) const
{
    return index.isValid() && !isGroupRow(index) ? m_rows.memberAt(m_rows.rowOf(groupOf(index)), index.row()) : -1;
}

QModelIndex ResultsModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent))
        return {};
    const auto below = [this, &parent] { return static_cast<quintptr>(m_rows.groupAt(parent.row())) + 1; };
    return createIndex(row, column, parent.isValid() ? below() : groupRowId);
}

QModelIndex ResultsModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || isGroupRow(child))
        return {};
    return createIndex(m_rows.rowOf(groupOf(child)), 0, groupRowId);
}

int ResultsModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return m_rows.groupCount();
    return isGroupRow(parent) && parent.column() == 0 ? m_rows.memberCount(parent.row()) : 0;
}

int ResultsModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

Qt::ItemFlags ResultsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (isGroupRow(index))
        return flags;
    flags |= Qt::ItemNeverHasChildren;
    return index.column() == FileColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant ResultsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter
                                   | (columnFacts(section).isNumeric ? Qt::AlignRight : Qt::AlignLeft));
    if (role == Qt::InitialSortOrderRole)
        return columnFacts(section).isMostFirst ? Qt::DescendingOrder : Qt::AscendingOrder;
    return role == Qt::DisplayRole ? columnHeading(section) : QVariant();
}

QVariant ResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    return isGroupRow(index) ? groupData(groupOf(index), index.column(), role)
                             : memberData(groupOf(index), memberOf(index), index.column(), role);
}

bool ResultsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !index.isValid() || isGroupRow(index) || index.column() != FileColumn)
        return false;
    m_review.setTicked(groupOf(index), memberOf(index), value.toInt() == Qt::Checked);
    return true;
}

void ResultsModel::layOutRows()
{
    beginResetModel();
    m_rows.layOutRows();
    endResetModel();
}

void ResultsModel::followReview()
{
    connect(&m_review, &Review::aboutToBeReset, this, [this] { beginResetModel(); });
    connect(&m_review, &Review::reset, this, [this] {
        m_texts.forgetRelations();
        m_rows.sortGroups();
        m_rows.layOutRows();
        endResetModel();
    });
    connect(&m_review, &Review::tickChanged, this, [this](int group, int member) {
        const QModelIndex cell = memberIndex(group, member);
        if (cell.isValid())
            Q_EMIT dataChanged(cell, cell, { Qt::CheckStateRole });
        if (const QModelIndex row = groupIndex(group); row.isValid())
            Q_EMIT dataChanged(row, row, { ProblemRole });
    });
    connect(&m_review, &Review::ticksChanged, this, [this] { emitEverywhereChanged(Qt::CheckStateRole); });
    connect(&m_review, &Review::fileStatesChanged, this, [this] { emitEverywhereChanged(Qt::DisplayRole); });
    connect(&m_review, &Review::statesChanged, this, &ResultsModel::followStates);
    connect(&m_review, &Review::keeperChanged, this, &ResultsModel::emitGroupChanged);
    connect(&m_review, &Review::checkChanged, this, &ResultsModel::emitGroupChanged);
}

// What is set aside has no row. Rows that go or come one by one leave all others as they are, folded or not; for very
// many at once that would take too long.
void ResultsModel::followStates(const QList<int> &groups)
{
    QList<int> gone;
    QList<int> back;
    for (const int group : groups) {
        const bool isSetAside = m_review.state(group) == GroupState::NotDuplicates;
        if (groupIndex(group).isValid() != isSetAside)
            emitGroupChanged(group);
        else if (isSetAside)
            gone << group;
        else if (m_rows.finds(group))
            back << group;
    }
    constexpr qsizetype few = 32;
    if (gone.size() + back.size() > few)
        return layOutRows();
    for (const int group : std::as_const(gone))
        takeRowAway(group);
    for (const int group : std::as_const(back))
        bringRowBack(group);
}

void ResultsModel::takeRowAway(int group)
{
    const int row = m_rows.rowOf(group);
    beginRemoveRows({}, row, row);
    m_rows.removeRow(row);
    endRemoveRows();
}

void ResultsModel::bringRowBack(int group)
{
    const int row = m_rows.firstRowFrom(group);
    beginInsertRows({}, row, row);
    m_rows.insertGroup(group);
    endInsertRows();
}

void ResultsModel::emitEverywhereChanged(int role)
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, FileColumn), index(rowCount() - 1, FileColumn), { role });
}

void ResultsModel::emitGroupChanged(int group)
{
    m_texts.forgetRelations();
    const QModelIndex groupRow = groupIndex(group);
    if (!groupRow.isValid())
        return;
    Q_EMIT dataChanged(groupRow, groupRow.siblingAtColumn(ColumnCount - 1));
    Q_EMIT dataChanged(index(0, 0, groupRow), index(rowCount(groupRow) - 1, ColumnCount - 1, groupRow));
}

QVariant ResultsModel::groupData(int group, int column, int role) const
{
    const MatchGroup &record = m_review.groups().at(group);
    switch (role) {
    case Qt::DisplayRole:
        if (column == FileColumn)
            return m_texts.groupTitle(group);
        return column == MatchColumn ? (QStringList(groupLabel(record)) + m_texts.groupRemarks(group))
                                           .join(tr(" - ", "between what is said of a group"))
                                     : QVariant();
    case Qt::FontRole:
        return column == FileColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        if (m_review.state(group) == GroupState::Done)
            return QGuiApplication::palette().color(QPalette::PlaceholderText);
        return column == MatchColumn ? matchColour(record.matchType, QGuiApplication::palette()) : QVariant();
    case Qt::ToolTipRole:
        return plainToolTip((QStringList(groupExplanation(record)) + m_texts.groupRemarks(group)).join(u'\n'));
    case Qt::AccessibleTextRole: {
        const QString problem = problemText(group);
        return column == FileColumn && !problem.isEmpty() ? m_texts.groupTitle(group) + ", "_L1 + problem : QVariant();
    }
    case ProblemRole:
        return problemText(group);
    case GroupRole:
        return group;
    default:
        return {};
    }
}

QVariant ResultsModel::memberData(int group, int member, int column, int role) const
{
    const bool isKeeper = m_review.isKeeper(group, member);
    const TrackInfo *info = m_review.track(group, member);
    switch (role) {
    case Qt::DisplayRole:
        return m_texts.cell(group, member, column);
    case Qt::CheckStateRole:
        return column == FileColumn ? (m_review.isTicked(group, member) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (columnFacts(column).isNumeric ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::FontRole:
        return isKeeper && column == MatchColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        return column == MatchColumn ? matchTextColour(group, member) : QVariant();
    case Qt::ToolTipRole:
        return column == MatchColumn ? plainToolTip(m_texts.remarks(group, member).join(u'\n'))
            : info                   ? memberToolTip(group, member, column)
                                     : QVariant();
    case DamageRole:
        return column == FileColumn && !m_texts.damage(group, member).isEmpty();
    case LockRole:
        return column == FileColumn && isProtected(group, member);
    case DecksRole:
        return info && column == FileColumn ? decksOf(*info) : QVariant();
    case Qt::AccessibleTextRole:
        return info ? accessibleText(group, member, column) : QVariant();
    case TrackRole:
        return m_review.groups().at(group).members.at(member);
    case GroupRole:
        return group;
    case KeeperRole:
        return isKeeper;
    default:
        return {};
    }
}

QVariant ResultsModel::matchTextColour(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    if (checkState(record, record.members.at(member)) == CheckState::Differs)
        return matchColour(MatchType::Unmatched, QGuiApplication::palette());
    return m_review.isKeeper(group, member) ? keeperColour(QGuiApplication::palette()) : QVariant();
}

bool ResultsModel::isProtected(int group, int member) const
{
    return m_review.isProtected(m_review.groups().at(group).members.at(member));
}

QString ResultsModel::decksOf(const TrackInfo &track) const
{
    QString decks;
    if (track.path == m_loaded.a)
        decks += u'A';
    if (track.path == m_loaded.b)
        decks += u'B';
    return decks;
}

// The cell that the keys go through says what the row is about; the others are read as they are shown.
QVariant ResultsModel::accessibleText(int group, int member, int column) const
{
    const TrackInfo &track = *m_review.track(group, member);
    if (column == MatchColumn)
        return m_texts.remarks(group, member).join(", "_L1);
    if (column != FileColumn)
        return {};
    const QString decks = decksOf(track);
    QStringList texts { decks.isEmpty() ? track.fileName : tr("%1, in deck %2").arg(track.fileName, decks) };
    if (const QString damage = m_texts.damage(group, member); !damage.isEmpty())
        texts << tr("problem: %1").arg(damage);
    if (isProtected(group, member))
        texts << tr("protected");
    if (m_review.isKeeper(group, member))
        texts << tr("kept");
    if (m_review.isTicked(group, member))
        texts << tr("ticked");
    texts << nativePath(folderOf(track)) << qualityText(track) << m_texts.relation(group, member);
    texts.removeAll(QString());
    return texts.join(", "_L1);
}

QString ResultsModel::problemText(int group) const
{
    return groupProblemText(groupProblem(m_review, group));
}

QVariant ResultsModel::memberToolTip(int group, int member, int column) const
{
    const TrackInfo &track = *m_review.track(group, member);
    if (column == FolderColumn)
        return plainToolTip(nativePath(folderOf(track)));
    if (column == DurationColumn && track.stream.durationIsGuess)
        return durationExplanation(track.stream);
    if (column != FileColumn)
        return {};
    const QString path = nativePath(track.path);
    if (!track.error.isEmpty())
        return plainToolTip(tr("%1\n\nNote: %2").arg(path, track.error));
    QStringList lines { path, m_texts.damage(group, member), m_texts.relation(group, member) };
    if (isProtected(group, member))
        lines << tr("In a protected folder: never removed.");
    lines.removeAll(QString());
    return plainToolTip(lines.join(u'\n'));
}

} // namespace epr
