// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "problemsmodel.h"

#include "displaytext.h"
#include "notices.h"

#include <QSet>

#include <algorithm>

namespace epr {

namespace {

std::pair<QString, int> keyOf(const FileProblem &problem)
{
    return { problem.path, static_cast<int>(problem.attempt) };
}

QString textOf(const FileProblem &problem, int column)
{
    const qsizetype slash = problem.path.lastIndexOf(u'/');
    const QString name = problem.path.sliced(slash + 1);
    switch (column) {
    case ProblemsModel::FileColumn:
        return name;
    case ProblemsModel::FolderColumn:
        return nativePath(problem.path.left(std::max(slash, qsizetype { 1 })));
    case ProblemsModel::AttemptColumn:
        return attemptText(problem.attempt);
    case ProblemsModel::ReasonColumn:
        return QString(problem.reason).replace(nativePath(problem.path), name).simplified();
    case ProblemsModel::TimeColumn:
        return dateTimeText(problem.when);
    default:
        return {};
    }
}

} // namespace

// A view forgets its place at a reset, and a check that runs adds one after the other.
void ProblemsModel::renew(const std::function<bool(const FileProblem &problem)> &isOld,
                          const QList<FileProblem> &problems)
{
    QSet<std::pair<QString, int>> seen;
    QList<FileProblem> fresh;
    for (const FileProblem &problem : problems) {
        const auto key = keyOf(problem);
        if (seen.contains(key)) // the last one counts
            fresh.removeIf([&key](const FileProblem &each) { return keyOf(each) == key; });
        seen.insert(key);
        fresh.append(problem);
    }
    QList<FileProblem> kept = m_problems;
    if (kept.removeIf([&](const FileProblem &each) { return isOld(each) || seen.contains(keyOf(each)); }) > 0) {
        beginResetModel();
        m_problems = kept + fresh;
        endResetModel();
    } else if (!fresh.isEmpty()) {
        beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(fresh.size()) - 1);
        m_problems += fresh;
        endInsertRows();
    }
}

int ProblemsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_problems.size());
}

int ProblemsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ProblemsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case FileColumn:
        return tr("File");
    case FolderColumn:
        return tr("Folder");
    case AttemptColumn:
        return tr("Attempt");
    case ReasonColumn:
        return tr("Reason");
    case TimeColumn:
        return tr("When");
    default:
        return {};
    }
}

QVariant ProblemsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const FileProblem &problem = m_problems.at(index.row());
    if (role == SortRole && index.column() == TimeColumn)
        return problem.when;
    if (role == Qt::DisplayRole || role == SortRole)
        return textOf(problem, index.column());
    if (role == Qt::ToolTipRole)
        return plainToolTip(nativePath(problem.path) + u'\n' + problem.reason);
    return {};
}

} // namespace epr
