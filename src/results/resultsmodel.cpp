// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsmodel.h"

#include "displaytext.h"
#include "matchcolour.h"
#include "plainbox.h"
#include "searchtext.h"

#include <QDir>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>
#include <QtConcurrent>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// The internal id of an index: 0 on group rows, one more than the group's position on member rows.
constexpr quintptr groupRowId = 0;

bool isGroupRow(const QModelIndex &index)
{
    return index.internalId() == groupRowId;
}

int groupOf(const QModelIndex &index)
{
    return isGroupRow(index) ? index.row() : static_cast<int>(index.internalId() - 1);
}

bool isNumeric(int column)
{
    return column == ResultsModel::DurationColumn || column == ResultsModel::SizeColumn;
}

} // namespace

ResultsModel::ResultsModel(QObject *parent)
    : QAbstractItemModel(parent)
    , m_firstRow(1, 0)
{
    m_boldFont.setBold(true);
    m_background.setMaxThreadCount(1);
}

const TrackInfo *ResultsModel::trackAt(const QModelIndex &index) const
{
    if (!index.isValid() || isGroupRow(index))
        return nullptr;
    return track(m_groups.at(groupOf(index)).members.at(index.row()));
}

QStringList ResultsModel::searchTexts() const
{
    return m_searchTexts.isValid() ? m_searchTexts.result() : QStringList();
}

void ResultsModel::setResults(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    beginResetModel();
    m_tracks = tracks;
    m_groups = groups;
    m_totals = {};
    m_totals.files = tracks.size();
    layOutRows();
    m_ticked.assign(m_firstRow.back(), false);
    countGroups();
    setTicks([](bool, bool isKeeper) { return !isKeeper; });
    m_searchTexts =
        groups.isEmpty() ? QFuture<QStringList>() : QtConcurrent::run(&m_background, foldedSearchTexts, tracks, groups);
    endResetModel();
    Q_EMIT totalsChanged();
}

void ResultsModel::clear()
{
    setResults({}, {});
}

void ResultsModel::tickDuplicates()
{
    setTicks([](bool, bool isKeeper) { return !isKeeper; });
    emitTicksChanged();
}

void ResultsModel::clearTicks()
{
    setTicks([](bool, bool) { return false; });
    emitTicksChanged();
}

void ResultsModel::invertTicks()
{
    setTicks([](bool wasTicked, bool) { return !wasTicked; });
    emitTicksChanged();
}

void ResultsModel::setKeeper(int group, qint32 track)
{
    const MatchGroup &current = m_groups.at(group);
    const auto newMember = static_cast<int>(current.members.indexOf(track));
    const auto oldMember = static_cast<int>(current.members.indexOf(current.keep));
    if (newMember < 0 || newMember == oldMember)
        return;

    const bool passTick = isTicked(group, newMember);
    setTick(group, newMember, false);
    if (oldMember >= 0 && passTick)
        setTick(group, oldMember, true);
    MatchGroup &changed = m_groups[group];
    changed.keep = track;
    changed.reclaimableBytes = reclaimable(changed);
    countGroups();
    emitGroupChanged(group);
    Q_EMIT totalsChanged();
}

void ResultsModel::removeMembers(const QSet<qint32> &tracks)
{
    beginResetModel();
    QList<MatchGroup> keptGroups;
    std::vector<bool> keptTicks;
    for (int g = 0; g < m_groups.size(); ++g) {
        MatchGroup group = m_groups.at(g);
        const std::size_t firstTick = keptTicks.size();
        group.members.clear();
        for (int m = 0; m < m_groups.at(g).members.size(); ++m) {
            const qint32 member = m_groups.at(g).members.at(m);
            if (tracks.contains(member))
                continue;
            group.members << member;
            keptTicks.push_back(isTicked(g, m));
        }
        if (group.members.size() < 2) {
            keptTicks.resize(firstTick);
            continue;
        }
        if (!group.members.contains(group.keep)) {
            const auto ticks = keptTicks.begin() + static_cast<std::ptrdiff_t>(firstTick);
            const auto unticked = std::find(ticks, keptTicks.end(), false);
            const auto keeper = unticked == keptTicks.end() ? ticks : unticked;
            *keeper = false;
            group.keep = group.members.at(keeper - ticks);
        }
        group.reclaimableBytes = reclaimable(group);
        keptGroups << group;
    }
    m_groups = keptGroups;
    m_ticked = keptTicks;
    layOutRows();
    countGroups();
    setTicks([](bool wasTicked, bool) { return wasTicked; });
    endResetModel();
    Q_EMIT totalsChanged();
}

QModelIndex ResultsModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column < 0 || column >= ColumnCount || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : groupRowId);
}

QModelIndex ResultsModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || isGroupRow(child))
        return {};
    return createIndex(groupOf(child), 0, groupRowId);
}

int ResultsModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_groups.size());
    if (!isGroupRow(parent) || parent.column() != 0)
        return 0;
    return static_cast<int>(m_groups.at(parent.row()).members.size());
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
        return QVariant::fromValue(Qt::AlignVCenter | (isNumeric(section) ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole)
        return {};
    switch (static_cast<Column>(section)) {
    case FileColumn:
        return tr("File");
    case MatchColumn:
        return tr("Match");
    case ArtistColumn:
        return tr("Artist");
    case TitleColumn:
        return tr("Title");
    case DurationColumn:
        return tr("Duration");
    case QualityColumn:
        return tr("Quality");
    case SizeColumn:
        return tr("Size");
    case ModifiedColumn:
        return tr("Modified");
    case FolderColumn:
        return tr("Folder");
    case ColumnCount:
        break;
    }
    return {};
}

QVariant ResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    return isGroupRow(index) ? groupData(index.row(), index.column(), role)
                             : memberData(groupOf(index), index.row(), index.column(), role);
}

bool ResultsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !index.isValid() || isGroupRow(index) || index.column() != FileColumn)
        return false;
    setTick(groupOf(index), index.row(), value.toInt() == Qt::Checked);
    Q_EMIT dataChanged(index, index, { Qt::CheckStateRole });
    Q_EMIT totalsChanged();
    return true;
}

std::size_t ResultsModel::rowOf(int group, int member) const
{
    return m_firstRow[static_cast<std::size_t>(group)] + static_cast<std::size_t>(member);
}

const TrackInfo *ResultsModel::track(qint32 index) const
{
    return index >= 0 && index < m_tracks.size() ? &m_tracks.at(index) : nullptr;
}

qint64 ResultsModel::sizeOf(qint32 trackIndex) const
{
    const TrackInfo *found = track(trackIndex);
    return found ? found->size : 0;
}

qint64 ResultsModel::reclaimable(const MatchGroup &group) const
{
    qint64 bytes = 0;
    for (const qint32 member : group.members) {
        if (member != group.keep)
            bytes += sizeOf(member);
    }
    return bytes;
}

QVariant ResultsModel::groupData(int group, int column, int role) const
{
    const MatchGroup &record = m_groups.at(group);
    switch (role) {
    case Qt::DisplayRole:
        if (column == FileColumn)
            return groupText(record);
        return column == MatchColumn ? matchTypeLabel(record.matchType) : QVariant();
    case Qt::FontRole:
        return column == FileColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        return column == MatchColumn ? matchColour(record.matchType, QGuiApplication::palette()) : QVariant();
    case Qt::ToolTipRole:
        return matchTypeExplanation(record.matchType);
    case GroupRole:
        return group;
    default:
        return {};
    }
}

QVariant ResultsModel::memberData(int group, int member, int column, int role) const
{
    const MatchGroup &record = m_groups.at(group);
    const qint32 trackIndex = record.members.at(member);
    const bool isKeeper = trackIndex == record.keep;
    const TrackInfo *info = track(trackIndex);
    switch (role) {
    case Qt::DisplayRole:
        if (column == MatchColumn)
            return isKeeper ? tr("KEEP") : tr("duplicate");
        return info ? memberText(*info, column) : QVariant();
    case Qt::CheckStateRole:
        return column == FileColumn ? (isTicked(group, member) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (isNumeric(column) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::FontRole:
        return isKeeper && column == MatchColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        return isKeeper && column == MatchColumn ? keeperColour(QGuiApplication::palette()) : QVariant();
    case Qt::ToolTipRole:
        return info ? memberToolTip(*info, column) : QVariant();
    case TrackRole:
        return trackIndex;
    case GroupRole:
        return group;
    case KeeperRole:
        return isKeeper;
    default:
        return {};
    }
}

QString ResultsModel::groupText(const MatchGroup &group) const
{
    return tr("Group %1 - %2 copies - %3 reclaimable")
        .arg(QString::number(group.id), QString::number(group.members.size()), sizeText(group.reclaimableBytes));
}

QString ResultsModel::memberText(const TrackInfo &track, int column) const
{
    switch (column) {
    case FileColumn:
        return track.fileName;
    case ArtistColumn:
        return displayArtist(track);
    case TitleColumn:
        return displayTitle(track);
    case DurationColumn:
        return durationText(track.stream.durationMs);
    case QualityColumn:
        return qualityText(track);
    case SizeColumn:
        return sizeText(track.size);
    case ModifiedColumn:
        return QLocale().toString(track.mtime, tr("d MMM yyyy h:mm ap"));
    case FolderColumn:
        return QDir::toNativeSeparators(folderOf(track));
    default:
        return {};
    }
}

QVariant ResultsModel::memberToolTip(const TrackInfo &track, int column) const
{
    if (column == FolderColumn)
        return plainToolTip(QDir::toNativeSeparators(folderOf(track)));
    if (column != FileColumn)
        return {};
    return plainToolTip(track.error.isEmpty() ? track.path : tr("%1\n\nNote: %2").arg(track.path, track.error));
}

// One pass over the bits, with the totals counted along the way.
template <typename Rule> void ResultsModel::setTicks(Rule ticked)
{
    m_totals.tickedFiles = 0;
    m_totals.tickedBytes = 0;
    std::size_t row = 0;
    for (const MatchGroup &group : std::as_const(m_groups)) {
        for (const qint32 member : group.members) {
            const bool tick = ticked(m_ticked[row], member == group.keep);
            m_ticked[row++] = tick;
            if (tick) {
                ++m_totals.tickedFiles;
                m_totals.tickedBytes += sizeOf(member);
            }
        }
    }
}

void ResultsModel::emitTicksChanged()
{
    if (!m_groups.isEmpty())
        Q_EMIT dataChanged(index(0, FileColumn), index(rowCount() - 1, FileColumn), { Qt::CheckStateRole });
    Q_EMIT totalsChanged();
}

void ResultsModel::setTick(int group, int member, bool ticked)
{
    const std::size_t row = rowOf(group, member);
    if (m_ticked[row] == ticked)
        return;
    m_ticked[row] = ticked;
    const int sign = ticked ? 1 : -1;
    m_totals.tickedFiles += sign;
    m_totals.tickedBytes += sign * sizeOf(m_groups.at(group).members.at(member));
}

void ResultsModel::countGroups()
{
    m_totals.groups = m_groups.size();
    m_totals.redundantCopies = static_cast<qint64>(m_firstRow.back()) - m_totals.groups;
    m_totals.redundantBytes = 0;
    for (const MatchGroup &group : std::as_const(m_groups))
        m_totals.redundantBytes += group.reclaimableBytes;
}

void ResultsModel::layOutRows()
{
    m_firstRow.assign(1, 0);
    m_firstRow.reserve(static_cast<std::size_t>(m_groups.size()) + 1);
    for (const MatchGroup &group : std::as_const(m_groups))
        m_firstRow.push_back(m_firstRow.back() + static_cast<std::size_t>(group.members.size()));
}

void ResultsModel::emitGroupChanged(int group)
{
    const QModelIndex groupRow = index(group, 0);
    Q_EMIT dataChanged(groupRow, index(group, ColumnCount - 1));
    Q_EMIT dataChanged(index(0, 0, groupRow), index(rowCount(groupRow) - 1, ColumnCount - 1, groupRow));
}

} // namespace epr
