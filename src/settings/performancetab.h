// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settingsstatus.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QSpinBox;

namespace epr {

struct ScanOptions;

/// The fingerprint engine at work, how much it does, and the analysis cache.
class PerformanceTab final : public QWidget {
    Q_OBJECT

public:
    PerformanceTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent = nullptr);

    void applyTo(ScanOptions &options) const;
    void setCacheStatus(const CacheStatus &status);
    void showCacheCleared();

Q_SIGNALS:
    void clearCacheRequested();

private:
    QLabel *m_engine;
    QSpinBox *m_threads;
    QSpinBox *m_seconds;
    QCheckBox *m_useCache;
    QLabel *m_cacheStatus;
};

} // namespace epr
