// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingscommand.h"

#include "analysiscache.h"
#include "fpcalc.h"
#include "settingsdialog.h"

#include <QCoreApplication>

namespace epr {

namespace {

// A cache object of its own: the scan's belongs to the scan's thread, and SQLite lets both look at one file.
CacheStatus cacheStatus()
{
    AnalysisCache cache;
    if (!cache.open())
        return {};
    return { .available = true, .entries = cache.count(), .bytes = cache.fileSize() };
}

} // namespace

std::optional<ScanOptions> editSettings(const ScanOptions &options, const LogFn &log, QWidget *parent)
{
    SettingsDialog dialog(options, { .fpcalcPath = fpcalcPath(), .cache = cacheStatus() }, parent);
    QObject::connect(&dialog, &SettingsDialog::clearCacheRequested, &dialog, [&dialog, &log] {
        if (clearAnalysisCache(log))
            dialog.showCacheCleared();
        else
            dialog.setCacheStatus(cacheStatus());
    });
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.options();
}

bool clearAnalysisCache(const LogFn &log)
{
    AnalysisCache cache;
    QString error;
    const bool cleared = cache.open(&error) && cache.clear(&error);
    log(cleared ? QCoreApplication::translate("epr::MainWindow", "Analysis cache cleared.")
                : QCoreApplication::translate("epr::MainWindow", "Could not clear the analysis cache: %1").arg(error));
    return cleared;
}

} // namespace epr
