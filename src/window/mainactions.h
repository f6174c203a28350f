// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>

class QMainWindow;
class QMenu;
class QMenuBar;
class QToolBar;

namespace epr {

class CheckDesk;
class MemberActions;
class PlayerDock;
class ResultsHeader;
class ProblemDesk;
class ReviewDesk;
class ReviewFiles;

/// The main window's commands with their texts, tips and keys, and their places in the menus and the toolbar. The
/// window connects them.
class MainActions final : public QObject {
    Q_OBJECT

public:
    /// What decides which commands make sense at the moment.
    struct Situation {
        bool isScanning = false;
        bool isPaused = false;
        bool isStopping = false;
        bool hasFolderSelection = false;
        bool hasGroups = false;
    };

    /// Who else has commands for the menus.
    struct MenuParts {
        const MemberActions *member;
        const PlayerDock *player;
        QList<QAction *> protection; ///< of folders
        QList<QAction *> views; ///< that show and hide parts of the window
        const ResultsHeader *headings;
        const CheckDesk *checks;
        const ReviewDesk *review;
        const ReviewFiles *reviewFiles;
        const QMenu *filters;
        const ProblemDesk *problems;
    };

    explicit MainActions(QWidget *window);

    void enableFor(const Situation &situation);
    void fillMenuBar(QMenuBar *bar, const MenuParts &parts) const; ///< with all that the program can do
    QToolBar *addToolBar(QMainWindow *window) const; ///< with what a clean-up needs from its beginning to its end

    QAction *const addFolder;
    QAction *const removeFolder;
    QAction *const exportReport;
    QAction *const exit;
    QAction *const startScan;
    QAction *const pauseScan;
    QAction *const stopScan;
    QAction *const selectDuplicates;
    QAction *const clearSelection;
    QAction *const invertSelection;
    QAction *const filterResults;
    QAction *const nextGroup;
    QAction *const previousGroup;
    QAction *const removeSelected;
    QAction *const undoCleanup;
    QAction *const showCleanups;
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
