// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanoptions.h"
#include "settingsstatus.h"

#include <QDialog>

namespace epr {

class DetectionTab;
class FilesTab;
class PerformanceTab;
class UpdatesTab;

/// Edits a copy of the scan options, and the update settings in the store; neither changes unless the dialog is
/// accepted. What it has no control for (roots, the engine, its threshold, the order of formats) keeps its value. On
/// acceptance every control is written as shown, so a value out of a control's range or finer than its step is rounded.
class SettingsDialog final : public QDialog {
    Q_OBJECT

public:
    SettingsDialog(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

    [[nodiscard]] const ScanOptions &options() const { return m_options; } ///< edited once the dialog is accepted

    void setCacheStatus(const CacheStatus &status);
    void showCacheCleared();

Q_SIGNALS:
    /// Answer with showCacheCleared() when the cache is empty.
    void clearCacheRequested();

public Q_SLOTS:
    void accept() override;

private:
    ScanOptions m_options;
    DetectionTab *m_detection;
    FilesTab *m_files;
    PerformanceTab *m_performance;
    UpdatesTab *m_updates;
};

} // namespace epr
