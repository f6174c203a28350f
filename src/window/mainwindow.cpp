// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow.h"

#include "application.h"
#include "backgroundwork.h"
#include "checkdesk.h"
#include "cleanupcommand.h"
#include "cleanupscommand.h"
#include "commands.h"
#include "compareplayer.h"
#include "displaytext.h"
#include "docks.h"
#include "filterbar.h"
#include "filterdesk.h"
#include "folderpanel.h"
#include "helpdialogs.h"
#include "mainactions.h"
#include "memberactions.h"
#include "notices.h"
#include "playerdesk.h"
#include "problemdesk.h"
#include "problemsdock.h"
#include "protectiondesk.h"
#include "resultsheader.h"
#include "resultspanel.h"
#include "resultsview.h"
#include "review.h"
#include "reviewdesk.h"
#include "reviewfiles.h"
#include "scancontroller.h"
#include "scanstrip.h"
#include "settingsstore.h"
#include "startup.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>
#include <QThread>
#include <QToolBar>

namespace epr {

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_quarantineRoot(defaultQuarantineRoot())
    , m_actions(new MainActions(this))
    , m_review(new Review(this))
    , m_cleanup(new CleanupCommand(*m_review, this))
    , m_cleanups(new CleanupsCommand(*m_cleanup, this))
    , m_export(new ExportCommand(*m_review, this))
    , m_memberActions(new MemberActions(*m_review, this))
    , m_settings(new SettingsCommand(this))
    , m_updates(new UpdateNotices(m_actions->checkForUpdates, this))
{
    setWindowTitle(metadata::applicationName());
    setWindowIcon(startup::applicationIcon());
    createPanels();
    placeForFirstStart(this, m_playerDock, m_log, m_problemsDock);
    m_playerDesk = new PlayerDesk({ m_review, m_resultsPanel, m_playerDock, m_cleanup, m_memberActions }, this);
    m_checks = new CheckDesk({ m_review, m_resultsPanel, m_playerDock, m_cleanup, m_memberActions }, this);
    m_filters = new FilterDesk({ m_review, m_resultsPanel, m_memberActions }, this);
    m_reviewDesk = new ReviewDesk({ m_review, m_resultsPanel, m_memberActions }, this);
    m_problems = new ProblemDesk({ m_review, m_resultsPanel, m_cleanup, m_checks, m_export, m_actions->startScan,
                                   m_actions->undoCleanup, m_problemsDock },
                                 this);
    m_reviewFiles = new ReviewFiles({ m_review, m_resultsPanel, m_checks }, this);
    connectActions();
    createMenus();
    restoreSettings();
    connectCommands();
    connectScan();
    refreshActions();
    m_scanThread->start();
    onLogMessage(tr("%1 %2 ready.").arg(metadata::applicationName(), metadata::version()));
    m_updates->scheduleStartupCheck();
    m_cleanup->clearUpTraces();
    m_reviewFiles->openLast();
    if (m_folderPanel->folders().isEmpty())
        m_folderPanel->focusAddButton();
    else
        m_resultsPanel->focusResults();
}

MainWindow::~MainWindow()
{
    m_reviewFiles->close();
    if (m_controller) {
        m_controller->cancel();
        QCoreApplication::removePostedEvents(m_controller, QEvent::MetaCall); // a start on its way would take it back
    }
    m_scanThread->quit();
    constexpr std::chrono::seconds longestWait { 10 };
    waitOrLeave(m_scanThread, longestWait);
}

bool MainWindow::addFolder(const QString &path)
{
    return m_folderPanel->addFolder(path);
}

void MainWindow::onAddFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Select a music folder"));
    if (!folder.isEmpty())
        addFolder(folder);
}

void MainWindow::onRemoveFolder()
{
    m_folderPanel->removeSelected();
}

void MainWindow::onStartScan()
{
    const QStringList folders = m_folderPanel->folders();
    if (folders.isEmpty()) {
        showInformation(this, tr("Nothing to scan"),
                        tr("Add at least one folder containing music before starting a scan."));
        return;
    }
    ScanOptions options = m_options;
    options.roots = folders;
    options.protectedFolders = m_folderPanel->protectedFolders();
    if (!options.anyDetection()) {
        showWarning(this, tr("No detection method enabled"),
                    tr("Enable at least one detection method in Settings before scanning."));
        return;
    }
    if (m_cleanup->isRunning() || !m_cleanup->confirmScan(m_quarantineRoot, folders)
        || !m_reviewFiles->confirmScan(folders))
        return;
    m_checks->stop();
    m_reviewFiles->beginScan(options);
    m_playerDock->player()->stop();
    m_resultsPanel->setKeepsAnalyses(options.useCache);
    setScanning(true);
    onLogMessage(tr("--- Scan started %1 ---").arg(QDateTime::currentDateTime().toString()));
    Q_EMIT scanRequested(options);
}

void MainWindow::onPauseScan()
{
    m_isPaused = !m_isPaused;
    m_controller->setPaused(m_isPaused);
    m_strip->setPaused(m_isPaused);
    refreshActions();
    onLogMessage(m_isPaused ? tr("Scan paused.") : tr("Scan resumed."));
}

void MainWindow::onStopScan()
{
    m_controller->cancel();
    m_isStopping = true;
    refreshActions();
    m_strip->showStatus(tr("Stopping..."));
}

void MainWindow::onScanStarted()
{
    if (m_isStopping)
        m_controller->cancel(); // Stop was quicker than the start, which has taken it back
    else
        m_strip->showStatus(tr("Scanning..."));
}

void MainWindow::onScanFinished(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled,
                                qint64 elapsedMs)
{
    setScanning(false);
    if (m_reviewFiles->endScan(tracks, groups, cancelled))
        m_checks->follow(m_options);
    const QString elapsed = elapsedText(elapsedMs);
    m_strip->showStatus((cancelled ? tr("Scan cancelled after %1") : tr("Scan complete in %1")).arg(elapsed));
    onLogMessage((cancelled ? tr("--- Scan cancelled after %1 ---") : tr("--- Scan complete in %1 ---")).arg(elapsed));
}

void MainWindow::onScanFailed(const QString &error)
{
    setScanning(false);
    m_reviewFiles->failScan();
    report(tr("Scan failed: %1").arg(error));
}

void MainWindow::onPhaseChanged(const QString &phase)
{
    if (!m_isStopping)
        m_strip->setPhase(phase);
}

void MainWindow::onProgress(int done, int total, const QString &detail)
{
    if (!m_isStopping)
        m_strip->setProgress(done, total, detail);
}

void MainWindow::onLogMessage(const QString &message)
{
    m_log->append(message);
}

void MainWindow::onSelectDuplicates()
{
    m_filters->tick(Review::BulkTick::Duplicates);
}

void MainWindow::onClearSelection()
{
    m_filters->tick(Review::BulkTick::None);
}

void MainWindow::onInvertSelection()
{
    m_filters->tick(Review::BulkTick::Invert);
}

// A file goes into the quarantine under the folder that it was found in, even if that has left the list since.
void MainWindow::onRemoveSelected()
{
    QStringList folders = m_reviewFiles->roots() + m_folderPanel->folders();
    folders.removeDuplicates();
    m_filters->remove(m_cleanup, { m_quarantineRoot, folders });
}

void MainWindow::onUndoPrevious()
{
    m_checks->undo([this] { m_cleanup->undoPreviousCleanup(); });
}

void MainWindow::onExportReport()
{
    m_export->exportReport(m_reviewFiles->roots());
}

void MainWindow::onSettings()
{
    const std::optional<ScanOptions> edited = m_settings->edit(m_options);
    if (!edited)
        return;
    m_options = *edited;
    m_updates->reloadAddress();
    saveSettings();
    report(tr("Settings updated."));
    m_reviewDesk->offerKeepers();
}

void MainWindow::onClearCache()
{
    m_settings->clearAnalysisCache();
}

void MainWindow::onAbout()
{
    AboutDialog(this).exec();
}

void MainWindow::onCheckForUpdates()
{
    m_updates->startExplicitCheck();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_cleanup->isRunning() || !confirmClose()) {
        event->ignore();
        return;
    }
    saveSettings();
    event->accept();
}

void MainWindow::createPanels()
{
    m_folderPanel = new FolderPanel(m_actions->addFolder, m_actions->removeFolder, this);
    m_resultsPanel = new ResultsPanel(*m_review, this);
    auto *splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(u"mainSplitter"_s);
    splitter->addWidget(m_folderPanel);
    splitter->addWidget(m_resultsPanel);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    splitter->setContentsMargins(8, 4, 8, 4);
    splitter->restoreState(SettingsStore().value(settings::splitterState));
    connect(splitter, &QSplitter::splitterMoved, this, // a folded list has no height of the operator's
            [splitter] { SettingsStore().set(settings::splitterState, splitter->saveState()); });
    setCentralWidget(splitter);

    m_strip = new ScanStrip(this);
    statusBar()->addWidget(m_strip, 1);
    m_log = new ActivityLog(this);
    m_playerDock = new PlayerDock(this);
    m_problemsDock = new ProblemsDock(this);
    connect(m_strip, &ScanStrip::briefChanged, this, &MainWindow::refreshTitle);
    connect(m_folderPanel, &FolderPanel::selectionChanged, this, &MainWindow::refreshActions);
    connect(m_folderPanel, &FolderPanel::foldersChanged, m_resultsPanel,
            [this] { m_resultsPanel->setHasFolders(!m_folderPanel->folders().isEmpty()); });
}

void MainWindow::connectActions()
{
    const std::pair<QAction *, void (MainWindow::*)()> commands[] {
        { m_actions->addFolder, &MainWindow::onAddFolder },
        { m_actions->removeFolder, &MainWindow::onRemoveFolder },
        { m_actions->exportReport, &MainWindow::onExportReport },
        { m_actions->startScan, &MainWindow::onStartScan },
        { m_actions->pauseScan, &MainWindow::onPauseScan },
        { m_actions->stopScan, &MainWindow::onStopScan },
        { m_actions->selectDuplicates, &MainWindow::onSelectDuplicates },
        { m_actions->clearSelection, &MainWindow::onClearSelection },
        { m_actions->invertSelection, &MainWindow::onInvertSelection },
        { m_actions->removeSelected, &MainWindow::onRemoveSelected },
        { m_actions->undoCleanup, &MainWindow::onUndoPrevious },
        { m_actions->settings, &MainWindow::onSettings },
        { m_actions->clearCache, &MainWindow::onClearCache },
        { m_actions->checkForUpdates, &MainWindow::onCheckForUpdates },
        { m_actions->about, &MainWindow::onAbout },
    };
    for (const auto &[action, slot] : commands)
        connect(action, &QAction::triggered, this, slot);
    connect(m_actions->showCleanups, &QAction::triggered, m_cleanups,
            [this] { m_checks->undo([this] { m_cleanups->show(); }); });
    connect(m_actions->exit, &QAction::triggered, this, &MainWindow::close);
    connect(m_actions->filterResults, &QAction::triggered, m_resultsPanel, &ResultsPanel::focusFilter);
    connect(m_actions->nextGroup, &QAction::triggered, m_resultsPanel, [this] { m_resultsPanel->goToGroup(+1); });
    connect(m_actions->previousGroup, &QAction::triggered, m_resultsPanel, [this] { m_resultsPanel->goToGroup(-1); });
    m_resultsPanel->addTreeAction(m_actions->removeSelected);
}

void MainWindow::createMenus()
{
    const QToolBar *toolBar = m_actions->addToolBar(this);
    m_actions->fillMenuBar(
        menuBar(),
        { m_memberActions,
          m_playerDock,
          m_folderPanel->protectActions(),
          { toolBar->toggleViewAction(), m_folderPanel->unfoldAction(), m_playerDock->toggleViewAction(),
            m_log->toggleViewAction(), m_problemsDock->toggleViewAction() },
          m_resultsPanel->view()->headings(),
          m_checks,
          m_reviewDesk,
          m_reviewFiles,
          m_resultsPanel->filterBar()->menu(),
          m_problems });
}

void MainWindow::restoreSettings()
{
    const SettingsStore store;
    restoreGeometry(store.value(settings::windowGeometry));
    const bool isFirstStart = !restoreState(store.value(settings::windowState));
    const QStringList folders = store.value(settings::folders);
    for (const QString &folder : folders) {
        if (!addFolder(folder) && !m_folderPanel->folders().contains(folder))
            onLogMessage(tr("Folder not found and taken off the list: %1").arg(nativePath(folder)));
    }
    connect(m_folderPanel, &FolderPanel::foldersChanged, this,
            [this] { SettingsStore().set(settings::folders, m_folderPanel->folders()); });
    new ProtectionDesk(*m_review, *m_folderPanel, this);
    m_folderPanel->setStaysOpen(store.value(settings::foldersStayOpen));
    m_options = store.loadScanOptions();
    m_resultsPanel->view()->headings()->arrange(store.value(settings::resultsColumns));
    m_quarantineRoot = store.value(settings::quarantineRoot);
    m_playerDesk->restore(store, isFirstStart);
}

void MainWindow::connectScan()
{
    m_controller = new ScanController;
    m_scanThread = createWorkerThread(u"epr-scan"_s, m_controller, this);
    connect(this, &MainWindow::scanRequested, m_controller, &ScanController::start);
    connect(m_controller, &ScanController::started, this, &MainWindow::onScanStarted);
    connect(m_controller, &ScanController::started, m_problems, &ProblemDesk::beginScan);
    connect(m_controller, &ScanController::problemsFound, m_problems, &ProblemDesk::addFolders);
    connect(m_controller, &ScanController::foldersUnreadable, m_resultsPanel, &ResultsPanel::setUnreadableFolders);
    connect(m_reviewFiles, &ReviewFiles::resultsTaken, m_reviewDesk, &ReviewDesk::takeResults);
    connect(m_controller, &ScanController::foldersUnreadable, m_reviewFiles, &ReviewFiles::setUnreadableFolders);
    connect(m_controller, &ScanController::finished, this, &MainWindow::onScanFinished);
    connect(m_controller, &ScanController::stepChanged, m_strip, &ScanStrip::setStep);
    connect(m_controller, &ScanController::phaseChanged, this, &MainWindow::onPhaseChanged);
    connect(m_controller, &ScanController::progress, this, &MainWindow::onProgress);
    connect(m_controller, &ScanController::logMessage, this, &MainWindow::onLogMessage);
    connect(m_controller, &ScanController::failed, this, &MainWindow::onScanFailed);
}

void MainWindow::connectCommands()
{
    for (const Command *command : QList<Command *> { m_cleanup, m_cleanups, m_export, m_memberActions, m_settings,
                                                     m_updates, m_reviewDesk, m_reviewFiles, m_problems }
             + m_checks->commands()) {
        connect(command, &Command::logMessage, this, &MainWindow::onLogMessage);
        connect(command, &Command::statusMessage, m_strip, &ScanStrip::showStatus);
        connect(command, &Command::logLineWanted, m_log, &ActivityLog::showFrom);
    }
    connect(m_resultsPanel, &ResultsPanel::currentChanged, m_memberActions, &MemberActions::setMember);
    connect(m_resultsPanel, &ResultsPanel::memberMenuRequested, m_memberActions, &MemberActions::popup);
    connect(m_cleanup, &CleanupCommand::wholeGroupTicked, m_resultsPanel, &ResultsPanel::showGroup);
    connect(m_cleanup, &CleanupCommand::quarantineRootChosen, this,
            [this](const QString &folder) { m_quarantineRoot = folder; });
    connect(m_review, &Review::reset, this, &MainWindow::refreshActions);
    connect(m_review, &Review::reset, m_folderPanel,
            [this] { m_folderPanel->showScanned(m_review->totals().files, !m_review->groups().isEmpty()); });
    connect(m_cleanup, &CleanupCommand::filesRestored, m_resultsPanel, &ResultsPanel::addRestored);
    connect(m_playerDesk, &PlayerDesk::logMessage, this, &MainWindow::onLogMessage);
}

void MainWindow::saveSettings() const
{
    SettingsStore store;
    store.set(settings::windowGeometry, saveGeometry());
    store.set(settings::windowState, saveState());
    store.set(settings::folders, m_folderPanel->folders());
    store.set(settings::foldersStayOpen, m_folderPanel->staysOpen());
    store.saveScanOptions(m_options);
    store.set(settings::resultsColumns, m_resultsPanel->view()->headings()->arrangement());
    store.set(settings::quarantineRoot, m_quarantineRoot);
    m_playerDesk->save(store);
}

void MainWindow::setScanning(bool scanning)
{
    m_isScanning = scanning;
    m_isStopping = false;
    m_isPaused = false;
    m_controller->setPaused(false);
    if (scanning && m_folderPanel->isAncestorOf(focusWidget()))
        m_resultsPanel->focusResults(); // the folders are disabled, and the results are what comes next
    m_strip->setBusy(scanning);
    m_folderPanel->setEnabled(!scanning);
    if (scanning)
        m_resultsPanel->setState(ResultsPanel::State::Scanning);
    refreshActions();
}

void MainWindow::refreshActions()
{
    m_actions->enableFor({ .isScanning = m_isScanning,
                           .isPaused = m_isPaused,
                           .isStopping = m_isStopping,
                           .hasFolderSelection = m_folderPanel->hasSelection(),
                           .hasGroups = !m_review->groups().isEmpty() });
}

// A scan of hours is watched from the task bar.
void MainWindow::refreshTitle()
{
    const QString brief = m_strip->brief();
    setWindowTitle(brief.isEmpty() ? metadata::applicationName()
                                   : tr("%1 - %2").arg(brief, metadata::applicationName()));
}

void MainWindow::report(const QString &message)
{
    m_strip->showStatus(message);
    onLogMessage(message);
}

// The running flag alone would miss a start command that the scan thread has not picked up yet.
bool MainWindow::confirmClose()
{
    if (!m_isScanning && !m_controller->isRunning())
        return m_reviewFiles->confirmClose();
    const auto answer =
        QMessageBox::question(this, tr("Scan in progress"),
                              tr("A scan is still running. Stop it and close %1?").arg(metadata::applicationName()),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return false;
    m_controller->cancel();
    return true;
}

} // namespace epr
