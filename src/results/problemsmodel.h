// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"

#include <QAbstractTableModel>

#include <functional>

namespace epr {

/// What failed, a row for each file and attempt.
class ProblemsModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    static constexpr int SortRole = Qt::UserRole;

    enum Column { FileColumn, FolderColumn, AttemptColumn, ReasonColumn, TimeColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    const QList<FileProblem> &problems() const { return m_problems; }

    /// Takes out those that are out of date, and those that happened again.
    void renew(const std::function<bool(const FileProblem &problem)> &isOld, const QList<FileProblem> &problems);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    QList<FileProblem> m_problems;
};

} // namespace epr
