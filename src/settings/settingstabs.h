// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "optionstab.h"
#include "updatechecker.h"

class QPushButton;

namespace epr {

struct CacheStatus;
struct SettingsStatus;

/// How duplicates are found and which copy is kept.
class DetectionTab final : public OptionsTab {
    Q_OBJECT

public:
    explicit DetectionTab(const ScanOptions &options, QWidget *parent = nullptr);

private:
    QWidget *createMethods();
    QWidget *createSensitivity();
};

/// Which files a scan looks at.
class FilesTab final : public OptionsTab {
    Q_OBJECT

public:
    explicit FilesTab(const ScanOptions &options, QWidget *parent = nullptr);
};

/// The fingerprint engine at work, how much it does, and the analysis cache.
class PerformanceTab final : public OptionsTab {
    Q_OBJECT

public:
    PerformanceTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

    void setCacheStatus(const CacheStatus &status);
    void showCacheCleared();

Q_SIGNALS:
    void clearCacheRequested();

private:
    QLabel *m_cacheStatus;
};

/// When and where to ask for updates. Only a skipped version is given up at once; the rest waits for save().
class UpdatesTab final : public QWidget {
    Q_OBJECT

public:
    explicit UpdatesTab(QWidget *parent = nullptr);

    void save();

private:
    void stopSkipping();

    UpdateSettings m_settings;
    QCheckBox *m_checkOnStartup;
    QLineEdit *m_url;
    QPushButton *m_stopSkipping;
};

} // namespace epr
