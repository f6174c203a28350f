// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsmodel.h"

#include "checktext.h"
#include "copyrelation.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "groupproblem.h"
#include "missingpart.h"
#include "notices.h"
#include "resultscells.h"
#include "review.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// The internal id of an index: 0 on group rows, one more than the group's row on member rows.
constexpr quintptr groupRowId = 0;

bool isGroupRow(const QModelIndex &index)
{
    return index.internalId() == groupRowId;
}

int groupRowOf(const QModelIndex &index)
{
    return isGroupRow(index) ? index.row() : static_cast<int>(index.internalId() - 1);
}

bool isNumeric(int column)
{
    return column == ResultsModel::DurationColumn || column == ResultsModel::SizeColumn
        || (column >= ResultsModel::LoudnessColumn && column <= ResultsModel::BandwidthColumn);
}

} // namespace

ResultsModel::ResultsModel(Review &review, QObject *parent)
    : QAbstractItemModel(parent)
    , m_review(review)
    , m_rows(review)
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
    return index.isValid() ? m_rows.groupAt(groupRowOf(index)) : -1;
}

int ResultsModel::memberOf(const QModelIndex &index) const
{
    return index.isValid() && !isGroupRow(index) ? m_rows.memberAt(groupRowOf(index), index.row()) : -1;
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
    return createIndex(groupRowOf(child), 0, groupRowId);
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
    case LoudnessColumn:
        return tr("Loudness");
    case TruePeakColumn:
        return tr("True Peak");
    case BandwidthColumn:
        return tr("Bandwidth");
    case CheckColumn:
        return tr("Check");
    case RelationColumn:
        return tr("Relation");
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

// What is set aside has no row.
void ResultsModel::followStates(const QList<int> &groups)
{
    const bool isOtherRow = std::ranges::any_of(groups, [this](int group) {
        return groupIndex(group).isValid() == (m_review.state(group) == GroupState::NotDuplicates);
    });
    if (isOtherRow)
        return layOutRows();
    for (const int group : groups)
        emitGroupChanged(group);
}

void ResultsModel::emitEverywhereChanged(int role)
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, FileColumn), index(rowCount() - 1, FileColumn), { role });
}

void ResultsModel::emitGroupChanged(int group)
{
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
            return groupText(group);
        return column == MatchColumn ? (QStringList(groupLabel(record)) + checkRemarks(record))
                                           .join(tr(" - ", "between what is said of a group"))
                                     : QVariant();
    case Qt::FontRole:
        return column == FileColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        if (m_review.state(group) == GroupState::Done)
            return QGuiApplication::palette().color(QPalette::PlaceholderText);
        return column == MatchColumn ? matchColour(record.matchType, QGuiApplication::palette()) : QVariant();
    case Qt::ToolTipRole:
        return plainToolTip((QStringList(groupExplanation(record)) + checkRemarks(record)).join(u'\n'));
    case Qt::AccessibleTextRole: {
        const QString problem = problemText(group);
        return column == FileColumn && !problem.isEmpty() ? groupText(group) + ", "_L1 + problem : QVariant();
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
        if (column == MatchColumn)
            return matchText(group, member);
        if (column == RelationColumn)
            return relationOf(group, member);
        if (column >= LoudnessColumn && column <= CheckColumn)
            return checkCell(group, member, column);
        return info ? memberText(*info, column) : QVariant();
    case Qt::CheckStateRole:
        return column == FileColumn ? (m_review.isTicked(group, member) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (isNumeric(column) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::FontRole:
        return isKeeper && column == MatchColumn ? m_boldFont : QVariant();
    case Qt::ForegroundRole:
        return column == MatchColumn ? matchTextColour(group, member) : QVariant();
    case Qt::ToolTipRole:
        return column == MatchColumn ? plainToolTip(remarksOf(group, member).join(u'\n'))
            : info                   ? memberToolTip(group, member, column)
                                     : QVariant();
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

// What a check found to differ includes what is missing, to the millisecond.
QString ResultsModel::matchText(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    QStringList texts { m_review.isKeeper(group, member) ? tr("KEEP") : missingText(record, track),
                        checkText(record, track) };
    if (checkState(record, track) == CheckState::Differs)
        texts.removeFirst();
    if (const FileState state = m_review.fileState(track); state != FileState::AsScanned)
        texts << (state == FileState::Changed ? tr("changed since the scan") : tr("no longer there"));
    texts.removeAll(QString());
    if (texts.isEmpty())
        texts << tr("duplicate");
    if (const QString edit = editText(record, track, m_review.tracks()); !edit.isEmpty())
        texts << edit;
    return texts.join(", "_L1);
}

QString ResultsModel::relationOf(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const QList<TrackInfo> &tracks = m_review.tracks();
    if (m_review.isKeeper(group, member))
        return m_review.keepText(group);
    return relationText(relationToKept(record, record.members.at(member), tracks), tracks);
}

// What a check found is said in full, where the row has but the first of it.
QStringList ResultsModel::remarksOf(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    QStringList texts = checkTexts(record, track) + measureTexts(record, track);
    texts << (texts.isEmpty() ? matchText(group, member) : editText(record, track, m_review.tracks()));
    texts << relationOf(group, member);
    texts.removeAll(QString());
    return texts;
}

QVariant ResultsModel::matchTextColour(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    if (checkState(record, record.members.at(member)) == CheckState::Differs)
        return matchColour(MatchType::Unmatched, QGuiApplication::palette());
    return m_review.isKeeper(group, member) ? keeperColour(QGuiApplication::palette()) : QVariant();
}

QString ResultsModel::checkCell(int group, int member, int column) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    const SoundMeasures measures = record.check.measures.value(track);
    switch (column) {
    case LoudnessColumn:
        return loudnessText(measures.loudness);
    case TruePeakColumn:
        return truePeakText(measures.truePeak);
    case BandwidthColumn:
        return bandwidthText(measures.bandwidthHz);
    default:
        return (checkTexts(record, track) + measureTexts(record, track)).join(", "_L1);
    }
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

// The other cells are read as they are shown.
QVariant ResultsModel::accessibleText(int group, int member, int column) const
{
    const TrackInfo &track = *m_review.track(group, member);
    if (column == MatchColumn)
        return remarksOf(group, member).join(", "_L1);
    if (column != FileColumn)
        return {};
    const QString decks = decksOf(track);
    const QString text = decks.isEmpty() ? track.fileName : tr("%1, in deck %2").arg(track.fileName, decks);
    return isProtected(group, member) ? tr("%1, protected").arg(text) : text;
}

QString ResultsModel::groupText(int group) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const QString text =
        tr("Group %1 - %2 copies - %3 reclaimable")
            .arg(QString::number(record.id), QString::number(record.members.size()), sizeText(record.reclaimableBytes));
    return m_review.state(group) == GroupState::Done ? tr("%1 - done").arg(text) : text;
}

QString ResultsModel::problemText(int group) const
{
    return groupProblemText(groupProblem(m_review, group));
}

QStringList ResultsModel::checkRemarks(const MatchGroup &group) const
{
    QStringList remarks { groupCheckText(group), betterCopyText(group, m_review.tracks()) };
    remarks.removeAll(QString());
    return remarks;
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
        return durationText(track.stream);
    case QualityColumn:
        return qualityText(track);
    case SizeColumn:
        return sizeText(track.size);
    case ModifiedColumn:
        return dateTimeText(track.mtime);
    case FolderColumn:
        return nativePath(folderOf(track));
    default:
        return {};
    }
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
    QStringList lines { path, relationOf(group, member) };
    if (isProtected(group, member))
        lines << tr("In a protected folder: never removed.");
    lines.removeAll(QString());
    return plainToolTip(lines.join(u'\n'));
}

} // namespace epr
