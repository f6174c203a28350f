// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupstore.h"

#include <QAbstractTableModel>

namespace epr {

/// "in quarantine", "partly undone, 3 left", translated.
QString runStateText(const CleanupRun &run);

/// Clean-ups as rows.
class RunsModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setRuns(const QList<CleanupRun> &runs);
    const QList<CleanupRun> &runs() const { return m_runs; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QList<CleanupRun> m_runs;
};

/// The files of one clean-up, read as far as somebody looks.
class RunFilesModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    RunFilesModel(CleanupStore &store, QObject *parent);

    void show(const CleanupRun &run, const QString &text); ///< those whose path has the text
    void clear() { show({}, {}); }
    const RecordedFile &file(int row) const { return m_files.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

private:
    QString text(const RecordedFile &file, int column) const;
    QString errorOf(const RecordedFile &file) const;

    CleanupStore &m_store;
    CleanupRun m_run;
    QString m_text;
    QList<RecordedFile> m_files;
    bool m_isWhole = true;
};

} // namespace epr
