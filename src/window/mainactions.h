// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>

namespace epr {

/// The main window's commands with their texts, tips and keys. The window connects them and puts them into its menus
/// and its toolbar.
class MainActions final : public QObject {
    Q_OBJECT

public:
    /// What decides which commands make sense at the moment.
    struct Situation {
        bool isScanning = false;
        bool hasFolderSelection = false;
        bool hasGroups = false;
    };

    explicit MainActions(QWidget *window);

    void enableFor(const Situation &situation);

    QAction *const addFolder;
    QAction *const removeFolder;
    QAction *const exportReport;
    QAction *const exit;
    QAction *const startScan;
    QAction *const stopScan;
    QAction *const selectDuplicates;
    QAction *const clearSelection;
    QAction *const invertSelection;
    QAction *const filterResults;
    QAction *const nextGroup;
    QAction *const previousGroup;
    QAction *const removeSelected;
    QAction *const undoCleanup;
    QAction *const settings;
    QAction *const clearCache;
    QAction *const checkForUpdates;
    QAction *const shortcuts;
    QAction *const website;
    QAction *const about;

private:
    QAction *make(const QString &text, const QKeySequence &key, const QString &tip);
};

} // namespace epr
