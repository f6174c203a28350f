// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QDialog>

namespace epr {

class OptionsTab;
class PerformanceTab;
class UpdatesTab;

struct CacheStatus {
    bool available = false; ///< the cache could be opened
    qint64 entries = 0;
    qint64 bytes = 0; ///< size of its file
};

/// What the settings dialog reports but does not edit. The caller asks the tools and the cache, so that the dialog
/// needs neither.
struct SettingsStatus {
    QString fpcalcPath; ///< empty = the tool was not found
    CacheStatus cache;
};

/// Edits a copy of the scan options, and the update settings in the store; neither changes unless the dialog is
/// accepted. What it has no control for (roots, the engine, its threshold, the order of formats) keeps its value. On
/// acceptance every control is written as shown, so a value out of a control's range or finer than its step is rounded.
class SettingsDialog final : public QDialog {
    Q_OBJECT

public:
    SettingsDialog(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

    const ScanOptions &options() const { return m_options; } ///< edited once the dialog is accepted

    void setCacheStatus(const CacheStatus &status);
    void showCacheCleared();

Q_SIGNALS:
    /// Answer with showCacheCleared() when the cache is empty.
    void clearCacheRequested();

public Q_SLOTS:
    void accept() override;

private:
    ScanOptions m_options;
    PerformanceTab *m_performance;
    UpdatesTab *m_updates;
    QList<OptionsTab *> m_optionsTabs;
};

} // namespace epr
