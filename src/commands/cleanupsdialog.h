// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupmodels.h"

#include <QDialog>
#include <QTimer>

class QAbstractButton;
class QLabel;
class QLineEdit;
class QTreeView;

namespace epr {

/// Lists the clean-ups, the last one first, with the files of the one that is chosen and a search in both.
class CleanupsDialog final : public QDialog {
    Q_OBJECT

public:
    CleanupsDialog(const QString &recordFile, QWidget *parent);

    void setRuns(const QList<CleanupRun> &runs); ///< the one chosen stays so if it is still there

Q_SIGNALS:
    void restoreRequested(const CleanupRun &run, const ChosenFiles &chosen);
    void purgeRequested(const CleanupRun &run);
    void emptyFoldersRequested(const CleanupRun &run);

private:
    QTreeView *makeList(QAbstractTableModel *model, const QString &name);
    QWidget *createFileArea();
    void layOutWidgets();
    void search();
    void showFiles();
    void refresh();
    void restoreSelected();
    const CleanupRun *current() const; ///< null = none

    const QString m_recordFile;
    CleanupStore m_store;
    QList<CleanupRun> m_all;
    QTimer m_typing;
    RunsModel *m_runs;
    RunFilesModel *m_files;
    QLineEdit *m_search;
    QTreeView *m_runList;
    QTreeView *m_fileList;
    QLabel *m_summary;
    QAbstractButton *m_restoreAll;
    QAbstractButton *m_restoreSelected;
    QAbstractButton *m_purge;
    QAbstractButton *m_emptyFolders;
};

} // namespace epr
