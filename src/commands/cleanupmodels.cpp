// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupmodels.h"

#include "displaytext.h"
#include "notices.h"

#include <QFileInfo>

#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int filesAtATime = 500; // some milliseconds

enum RunColumn { Date, Files, Size, Way, Reasons, Failures, State, RunColumns };
enum FileColumn { Name, Folder, FileSize, Match, Fate, FileColumns };

QString wayText(RemovalMode mode)
{
    switch (mode) {
    case RemovalMode::Quarantine:
        return RunsModel::tr("quarantine");
    case RemovalMode::RecycleBin:
        return RunsModel::tr("recycle bin");
    case RemovalMode::Delete:
        break;
    }
    return RunsModel::tr("deleted");
}

QString reasonsText(const CleanupRun &run)
{
    QStringList reasons;
    for (auto type = run.types.cbegin(); type != run.types.cend(); ++type) {
        const QString name =
            type.key() == MatchType::Unmatched ? RunsModel::tr("not recorded") : matchTypeLabel(type.key());
        reasons << RunsModel::tr("%1: %2", "a reason and how many files").arg(name, countText(type.value()));
    }
    return reasons.join(", "_L1);
}

QString quarantineText(const CleanupRun &run)
{
    const qint64 left = run.files.value(FileFate::Removed);
    const qint64 back = run.files.value(FileFate::Back);
    if (left == run.removed())
        return RunsModel::tr("in quarantine");
    if (left > 0)
        return (back > 0 ? RunsModel::tr("partly undone, %1 left") : RunsModel::tr("partly removed for good, %1 left"))
            .arg(countText(left));
    if (const qint64 lost = run.files.value(FileFate::Lost); lost > 0)
        return RunsModel::tr("undone, but %1 were not found").arg(countText(lost));
    if (back == run.removed())
        return RunsModel::tr("undone");
    return back > 0 ? RunsModel::tr("partly undone, the rest removed for good") : RunsModel::tr("removed for good");
}

QString fateText(FileFate fate, RemovalMode mode)
{
    switch (fate) {
    case FileFate::Removed:
        return mode == RemovalMode::Quarantine ? RunFilesModel::tr("in quarantine")
            : mode == RemovalMode::RecycleBin  ? RunFilesModel::tr("moved to the recycle bin")
                                               : RunFilesModel::tr("deleted");
    case FileFate::Stayed:
        return RunFilesModel::tr("stayed");
    case FileFate::Back:
        return RunFilesModel::tr("back");
    case FileFate::Purged:
        return RunFilesModel::tr("removed for good");
    case FileFate::Lost:
        return RunFilesModel::tr("not found in the quarantine");
    case FileFate::Planned:
        break;
    }
    return RunFilesModel::tr("not known");
}

QString runText(const CleanupRun &run, int column)
{
    switch (column) {
    case Date:
        return dateTimeText(QDateTime::fromMSecsSinceEpoch(run.id));
    case Files:
        return countText(run.removed());
    case Size:
        return sizeText(run.bytes);
    case Way:
        return wayText(run.mode);
    case Reasons:
        return reasonsText(run);
    case Failures:
        return countText(run.files.value(FileFate::Stayed));
    case State:
        return runStateText(run);
    default:
        return {};
    }
}

} // namespace

QString runStateText(const CleanupRun &run)
{
    QString text;
    if (run.state == RunState::Begun)
        return RunsModel::tr("interrupted, or not over yet");
    if (run.removed() == 0)
        text = RunsModel::tr("nothing was removed");
    else if (run.mode == RemovalMode::Quarantine)
        text = quarantineText(run);
    else
        text = run.mode == RemovalMode::Delete ? RunsModel::tr("deleted at once")
                                               : RunsModel::tr("moved to the recycle bin");
    return run.state == RunState::Interrupted ? RunsModel::tr("interrupted; %1").arg(text) : text;
}

void RunsModel::setRuns(const QList<CleanupRun> &runs)
{
    beginResetModel();
    m_runs = runs;
    endResetModel();
}

int RunsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_runs.size());
}

int RunsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : RunColumns;
}

QVariant RunsModel::data(const QModelIndex &index, int role) const
{
    const CleanupRun &run = m_runs.at(index.row());
    const int column = index.column();
    if (role == Qt::DisplayRole)
        return runText(run, column);
    if (role == Qt::TextAlignmentRole && (column == Files || column == Size || column == Failures))
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && column == Failures && !run.errors.isEmpty())
        return plainToolTip(run.errors.join(u'\n'));
    if (role == Qt::ToolTipRole && (column == Reasons || column == State))
        return runText(run, column);
    return {};
}

QVariant RunsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && (section == Files || section == Size || section == Failures))
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const std::array<QString, RunColumns> names { tr("Date"),    tr("Files"),    tr("Size"), tr("Way"),
                                                  tr("Reasons"), tr("Failures"), tr("State") };
    return names.at(static_cast<std::size_t>(section));
}

RunFilesModel::RunFilesModel(CleanupStore &store, QObject *parent)
    : QAbstractTableModel(parent)
    , m_store(store)
{
}

void RunFilesModel::show(const CleanupRun &run, const QString &text)
{
    beginResetModel();
    m_run = run;
    m_text = text;
    m_files.clear();
    m_isWhole = run.id == 0;
    endResetModel();
}

int RunFilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int RunFilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : FileColumns;
}

QVariant RunFilesModel::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DisplayRole)
        return text(m_files.at(index.row()), index.column());
    if ((role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole) && index.column() == Fate)
        return plainToolTip(errorOf(m_files.at(index.row())));
    if (role == Qt::ToolTipRole && (index.column() == Name || index.column() == Folder))
        return plainToolTip(nativePath(m_files.at(index.row()).path));
    if (role == Qt::TextAlignmentRole && index.column() == FileSize)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QString RunFilesModel::text(const RecordedFile &file, int column) const
{
    switch (column) {
    case Name:
        return QFileInfo(file.path).fileName();
    case Folder:
        return nativePath(QFileInfo(file.path).path());
    case FileSize:
        return sizeText(file.size);
    case Match:
        return file.type == MatchType::Unmatched ? tr("not recorded") : matchTypeLabel(file.type);
    case Fate:
        return fateText(file.fate, m_run.mode);
    default:
        return {};
    }
}

// The messages name the file that they are about.
QString RunFilesModel::errorOf(const RecordedFile &file) const
{
    const QStringList errors = m_run.errors.filter(nativePath(file.path));
    return file.fate == FileFate::Stayed ? errors.value(0) : QString();
}

QVariant RunFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == FileSize)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const std::array<QString, FileColumns> names { tr("File"), tr("Folder"), tr("Size"), tr("Match"),
                                                   tr("What became of it") };
    return names.at(static_cast<std::size_t>(section));
}

bool RunFilesModel::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && !m_isWhole;
}

void RunFilesModel::fetchMore(const QModelIndex & /*parent*/)
{
    const qint64 next = m_files.isEmpty() ? 0 : m_files.last().number + 1;
    const QList<RecordedFile> more =
        m_store.files(m_run.id, next, filesAtATime, m_text).value_or(QList<RecordedFile>());
    m_isWhole = more.size() < filesAtATime;
    if (more.isEmpty())
        return;
    const int row = rowCount();
    beginInsertRows({}, row, row + static_cast<int>(more.size()) - 1);
    m_files += more;
    endInsertRows();
}

} // namespace epr
