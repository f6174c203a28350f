// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainactions.h"

#include "application.h"
#include "checkdesk.h"
#include "docks.h"
#include "helpdialogs.h"
#include "memberactions.h"
#include "problemdesk.h"
#include "resultsheader.h"
#include "reviewdesk.h"
#include "reviewfiles.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>
#include <QUrl>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Each part after the first is set off by a line.
void fill(QMenu *menu, const QList<QList<QAction *>> &parts)
{
    for (const QList<QAction *> &part : parts) {
        if (!menu->isEmpty())
            menu->addSeparator();
        menu->addActions(part);
    }
}

} // namespace

MainActions::MainActions(QWidget *window)
    : QObject(window)
    , addFolder(make(tr("Add Folder..."), Qt::CTRL | Qt::Key_O, tr("Add a folder to the list of folders to scan.")))
    , removeFolder(make(tr("Remove Folder"), {}, tr("Take the selected folders off the list. No file is touched.")))
    , exportReport(make(tr("Export Report..."), Qt::CTRL | Qt::Key_E,
                        tr("Write the duplicate groups to a table, a web page, a JSON file or a playlist.")))
    , exit(make(tr("Exit"), Qt::CTRL | Qt::Key_Q, tr("Close the program.")))
    , startScan(make(tr("Start Scan"), Qt::Key_F5, tr("Look for duplicates in the listed folders.")))
    , pauseScan(make(tr("Pause"), Qt::Key_Pause,
                     tr("Hold the running scan when it is done with the files that it is at, or let it go on.")))
    , stopScan(make(tr("Stop"), Qt::SHIFT | Qt::Key_F5, tr("Stop the running scan.")))
    , selectDuplicates(
          make(tr("Select All Duplicates"), Qt::CTRL | Qt::Key_D, tr("Tick every copy except the one chosen to keep.")))
    , clearSelection(make(tr("Clear Selection"), Qt::CTRL | Qt::SHIFT | Qt::Key_D, tr("Untick every copy.")))
    , invertSelection(make(tr("Invert Selection"), Qt::CTRL | Qt::Key_I,
                           tr("Tick every copy that is not ticked and untick the others, kept copies included.")))
    , filterResults(make(tr("Filter Results"), QKeySequence::Find, tr("Go to the filter above the results.")))
    , nextGroup(make(tr("Next Group"), Qt::CTRL | Qt::Key_Down, tr("Go to the next group of duplicates.")))
    , previousGroup(make(tr("Previous Group"), Qt::CTRL | Qt::Key_Up, tr("Go to the group of duplicates before.")))
    , removeSelected(make(tr("Remove Selected..."), QKeySequence::Delete,
                          tr("Move the ticked copies to the quarantine or the recycle bin, or delete them.")))
    , undoCleanup(make(tr("Undo Previous Clean-up..."), {}, tr("Move the files of a quarantine run back.")))
    , showCleanups(make(tr("Clean-ups..."), {},
                        tr("List what was removed and when; bring files back, or remove their quarantine for good.")))
    , settings(make(tr("Settings..."), Qt::CTRL | Qt::Key_Comma, tr("Choose what is scanned and how it is compared.")))
    , clearCache(make(tr("Clear Analysis Cache"), {},
                      tr("Forget all remembered results. The next scan reads every file again.")))
    , checkForUpdates(make(tr("Check for &Updates..."), {}, tr("Ask the update service for a newer version.")))
    , shortcuts(make(tr("Keyboard Shortcuts..."), Qt::Key_F1, tr("List the keys of every command.")))
    , website(make(tr("Quorvane &Website"), {}, metadata::makerUrl()))
    , about(make(tr("&About %1").arg(metadata::applicationName()), {}, tr("Version and licences.")))
{
    exit->setMenuRole(QAction::QuitRole);
    settings->setMenuRole(QAction::PreferencesRole);
    about->setMenuRole(QAction::AboutRole);
    removeSelected->setShortcutContext(Qt::WidgetWithChildrenShortcut); // elsewhere the key deletes other things
    connect(website, &QAction::triggered, this, [] { QDesktopServices::openUrl(QUrl(metadata::makerUrl())); });
    enableFor({});
}

void MainActions::enableFor(const Situation &situation)
{
    addFolder->setEnabled(!situation.isScanning);
    removeFolder->setEnabled(!situation.isScanning && situation.hasFolderSelection);
    startScan->setEnabled(!situation.isScanning);
    pauseScan->setEnabled(situation.isScanning && !situation.isStopping);
    pauseScan->setText(situation.isPaused ? tr("Resume") : tr("Pause"));
    stopScan->setEnabled(situation.isScanning);
    exportReport->setEnabled(!situation.isScanning); // without results it says what to do first
    settings->setEnabled(!situation.isScanning);
    clearCache->setEnabled(!situation.isScanning);
    for (QAction *action :
         { selectDuplicates, clearSelection, invertSelection, filterResults, nextGroup, previousGroup })
        action->setEnabled(situation.hasGroups);
    removeSelected->setEnabled(situation.hasGroups && !situation.isScanning);
    undoCleanup->setEnabled(!situation.isScanning);
    showCleanups->setEnabled(!situation.isScanning);
}

void MainActions::fillMenuBar(QMenuBar *bar, const MenuParts &parts) const
{
    const auto addMenu = [bar](const QString &title, const QList<QList<QAction *>> &actions) {
        fill(bar->addMenu(title), actions);
    };
    connect(shortcuts, &QAction::triggered, bar, [bar] { ShortcutsDialog(bar, bar->window()).exec(); });
    for (QAction *view : parts.views)
        view->setStatusTip(QCoreApplication::translate("epr::MainMenus", "Show this part of the window, or hide it."));
    const MemberActions &member = *parts.member;
    addMenu(QCoreApplication::translate("epr::MainMenus", "&File"),
            { { addFolder, removeFolder },
              parts.protection,
              { parts.reviewFiles->menu()->menuAction(), exportReport },
              { exit } });
    addMenu(QCoreApplication::translate("epr::MainMenus", "&View"),
            { parts.views, { parts.headings->columnMenu()->menuAction(), parts.headings->sortMenu()->menuAction() } });
    addMenu(QCoreApplication::translate("epr::MainMenus", "&Scan"), { { startScan, pauseScan, stopScan } });
    addMenu(
        QCoreApplication::translate("epr::MainMenus", "&Edit"),
        { { parts.review->undo, parts.review->redo },
          { selectDuplicates, clearSelection, invertSelection },
          { parts.review->done, parts.review->notDuplicates },
          { member.keep, parts.checks->keepBetter, parts.review->chooseKeepers, member.showDetails, member.copyPath },
          { filterResults, parts.filters->menuAction(), nextGroup, previousGroup, parts.problems->nextProblem } });
    QMenu *player = bar->addMenu(QCoreApplication::translate("epr::MainMenus", "&Player"));
    parts.player->addCommandsTo(player);
    fill(player, { { member.loadIntoDeckA, member.loadIntoDeckB, member.compareGroup, parts.checks->nextDifference } });
    addMenu(QCoreApplication::translate("epr::MainMenus", "&Tools"),
            { { parts.checks->checkAll, parts.checks->checkGroup },
              { removeSelected, undoCleanup, showCleanups },
              { parts.review->showSetAside },
              { settings, clearCache } });
    addMenu(QCoreApplication::translate("epr::MainMenus", "&Help"),
            { { shortcuts, checkForUpdates }, { website, about } });
}

QToolBar *MainActions::addToolBar(QMainWindow *window) const
{
    QToolBar *bar = window->addToolBar(QCoreApplication::translate("epr::MainWindow", "Main"));
    bar->setObjectName(u"mainToolBar"_s);
    bar->toggleViewAction()->setText(QCoreApplication::translate("epr::MainWindow", "Toolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    bar->addAction(addFolder);
    bar->addSeparator();
    bar->addActions({ startScan, pauseScan, stopScan });
    bar->addSeparator();
    bar->addActions({ selectDuplicates, clearSelection, invertSelection });
    bar->addSeparator();
    bar->addActions({ removeSelected, undoCleanup });
    bar->widgetForAction(startScan)->setObjectName(u"startScanButton"_s); // the style sheet colours it
    return bar;
}

QAction *MainActions::make(const QString &text, const QKeySequence &key, const QString &tip)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    return action;
}

} // namespace epr
