// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QMainWindow>
#include <QPointer>

class QThread;

namespace epr {

class ActivityLog;
class CheckDesk;
class CleanupCommand;
class CleanupsCommand;
class Command;
class ExportCommand;
class FilterDesk;
class FolderPanel;
class MainActions;
class MemberActions;
class PlayerDesk;
class PlayerDock;
class ProblemDesk;
class ProblemsDock;
class ResultsPanel;
class Review;
class ReviewDesk;
class ReviewFiles;
class ScanController;
class ScanStrip;
class SettingsCommand;
class UpdateNotices;

/// The program's main window. It puts the panels together, carries commands to the scan and the scan's reports to the
/// panels, and owns the thread on which scans run.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    bool isScanning() const { return m_isScanning; }

    bool addFolder(const QString &path); ///< false if not an existing folder or already in the list

Q_SIGNALS:
    void scanRequested(const epr::ScanOptions &options);

public Q_SLOTS:
    void onAddFolder();
    void onRemoveFolder();
    void onStartScan();
    void onPauseScan(); ///< and goes on when it is paused
    void onStopScan();
    void onScanStarted();
    void onScanFinished(const QList<epr::TrackInfo> &tracks, const QList<epr::MatchGroup> &groups, bool cancelled,
                        qint64 elapsedMs);
    void onScanFailed(const QString &error);
    void onPhaseChanged(const QString &phase);
    void onProgress(int done, int total, const QString &detail);
    void onLogMessage(const QString &message);
    void onSelectDuplicates();
    void onClearSelection();
    void onInvertSelection();
    void onRemoveSelected();
    void onUndoPrevious();
    void onExportReport();
    void onSettings();
    void onClearCache();
    void onAbout();
    void onCheckForUpdates();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createPanels();
    void connectActions();
    void createMenus();
    void restoreSettings();
    void connectScan();
    void connectCommands();
    void saveSettings() const;
    void setScanning(bool scanning);
    void refreshActions();
    void refreshTitle();
    void report(const QString &message); ///< in the status label and as a log line
    bool confirmClose();

    ScanOptions m_options; ///< what the settings say; its roots stay empty, they come from the folder list
    QString m_quarantineRoot;
    bool m_isScanning = false; ///< from the start command to the scan's last signal
    bool m_isPaused = false;
    bool m_isStopping = false; ///< reports that were on their way must not hide that Stop was heard

    MainActions *m_actions;
    Review *m_review;
    CleanupCommand *m_cleanup;
    CleanupsCommand *m_cleanups;
    ExportCommand *m_export;
    MemberActions *m_memberActions;
    SettingsCommand *m_settings;
    UpdateNotices *m_updates;
    FolderPanel *m_folderPanel = nullptr;
    ResultsPanel *m_resultsPanel = nullptr;
    ActivityLog *m_log = nullptr;
    PlayerDock *m_playerDock = nullptr;
    PlayerDesk *m_playerDesk = nullptr;
    ScanStrip *m_strip = nullptr;
    CheckDesk *m_checks = nullptr;
    FilterDesk *m_filters = nullptr;
    ReviewDesk *m_reviewDesk = nullptr;
    ProblemsDock *m_problemsDock = nullptr;
    ProblemDesk *m_problems = nullptr;
    ReviewFiles *m_reviewFiles = nullptr;
    QThread *m_scanThread = nullptr;
    QPointer<ScanController> m_controller;
};

} // namespace epr
