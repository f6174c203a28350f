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

std::optional<ScanOptions> SettingsCommand::edit(const ScanOptions &options)
{
    SettingsDialog dialog(options, { .fpcalcPath = fpcalcPath(), .cache = cacheStatus() }, window());
    connect(&dialog, &SettingsDialog::clearCacheRequested, &dialog, [this, &dialog] {
        if (clearAnalysisCache())
            dialog.showCacheCleared();
        else
            dialog.setCacheStatus(cacheStatus());
    });
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.options();
}

bool SettingsCommand::clearAnalysisCache()
{
    AnalysisCache cache;
    QString error;
    const bool cleared = cache.open(&error) && cache.clear(&error);
    report(cleared
               ? QCoreApplication::translate("epr::MainWindow", "Analysis cache cleared.")
               : QCoreApplication::translate("epr::MainWindow", "Could not clear the analysis cache: %1").arg(error));
    return cleared;
}

} // namespace epr
