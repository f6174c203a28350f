// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "commands.h"

#include "analysiscache.h"
#include "application.h"
#include "displaytext.h"
#include "fpcalc.h"
#include "notices.h"
#include "reportwriter.h"
#include "review.h"
#include "runwithprogress.h"
#include "settingsdialog.h"
#include "updatedialog.h"

#include <QAction>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QScopedValueRollback>
#include <QStandardPaths>
#include <QTimer>

#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// In the order of the dialog's list.
constexpr std::array formats { ReportFormat::Html, ReportFormat::Csv, ReportFormat::Json, ReportFormat::Playlist };

QString proposedPath()
{
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QDir folder = documents.exists() ? documents : QDir::home(); // the dialog would start anywhere
    return folder.filePath(u"Echoprune-%1.html"_s.arg(QDate::currentDate().toString(Qt::ISODate)));
}

QString filterList()
{
    QStringList filters;
    for (const ReportFormat format : formats)
        filters << reportFormatFilter(format);
    return filters.join(";;"_L1);
}

// A cache object of its own: the scan's belongs to the scan's thread, and SQLite lets both look at one file.
CacheStatus cacheStatus()
{
    AnalysisCache cache;
    if (!cache.open())
        return {};
    return { .available = true, .entries = cache.count(), .bytes = cache.fileSize() };
}

} // namespace

ExportCommand::ExportCommand(const Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
{
}

// The filter decides on the format alone: the proposed name ends in .html, and whoever then chooses another format
// wants that one.
void ExportCommand::exportReport(const QStringList &roots)
{
    if (m_review.totals().groups == 0) {
        showInformation(window(), tr("Nothing to export"),
                        m_review.totals().setAside > 0
                            ? tr("All groups are set aside as not duplicates. Tools > Not Duplicates restores them.")
                            : tr("Run a scan first - there are no results to report on."));
        return;
    }
    QString filter;
    const QString path =
        QFileDialog::getSaveFileName(window(), tr("Export duplicate report"), proposedPath(), filterList(), &filter);
    if (path.isEmpty())
        return;
    ReportFormat format = reportFormatFromFilter(filter).value_or(formats.front());
    if (format == ReportFormat::Csv && SettingsStore().value(settings::csvMark))
        format = ReportFormat::CsvWithMark;
    bool isWritten = false;
    QString error;
    runWaiting([&, tracks = m_review.tracks(), groups = m_review.groupsOfDuplicates()] {
        isWritten = writeReport(path, format, tracks, groups, roots, &error);
    });
    if (!isWritten) {
        showCritical(window(), tr("Export failed"), tr("Could not write the report:\n\n%1").arg(error));
        return;
    }
    report(tr("Report written to %1").arg(nativePath(path)));
    if (askYesOrNo(window(), tr("Report saved"), tr("Report saved to:\n%1\n\nOpen it now?").arg(nativePath(path))))
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void ExportCommand::exportProblems(const QList<FileProblem> &problems)
{
    const QString path = QFileDialog::getSaveFileName(window(), tr("Export problems"),
                                                      QFileInfo(proposedPath()).path() + "/problems.csv"_L1,
                                                      reportFormatFilter(ReportFormat::Csv));
    if (path.isEmpty())
        return;
    bool isWritten = false;
    QString error;
    const bool withMark = SettingsStore().value(settings::csvMark);
    runWaiting([&] { isWritten = writeProblems(path, problems, withMark, &error); });
    if (isWritten)
        report(tr("Problems written to %1").arg(nativePath(path)));
    else
        showCritical(window(), tr("Export failed"), tr("Could not write the report:\n\n%1").arg(error));
}

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

UpdateNotices::UpdateNotices(QAction *checkAction, QWidget *window)
    : Command(window)
    , m_checker(new UpdateChecker(this))
    , m_checkAction(checkAction)
{
    connect(m_checker, &UpdateChecker::updateAvailable, this, &UpdateNotices::announce);
    connect(m_checker, &UpdateChecker::upToDate, this, &UpdateNotices::reportUpToDate);
    connect(m_checker, &UpdateChecker::checkFailed, this, &UpdateNotices::reportFailure);
}

// Late enough not to compete with the window's first appearance.
void UpdateNotices::scheduleStartupCheck()
{
    if (!SettingsStore().value(settings::checkForUpdatesOnStartup))
        return;
    constexpr std::chrono::milliseconds delay { 2500 };
    auto *timer = new QTimer(this);
    timer->setObjectName(u"startupCheck"_s);
    timer->setSingleShot(true);
    timer->callOnTimeout(this, [this] {
        if (m_checker->isDue())
            m_checker->check(true);
    });
    timer->start(delay);
}

void UpdateNotices::reloadAddress()
{
    m_checker->setUrl(UpdateSettings().url());
}

void UpdateNotices::startExplicitCheck()
{
    m_checkAction->setEnabled(false);
    m_checker->check(false);
}

void UpdateNotices::announce(const UpdateChecker::Release &release, bool silent)
{
    finishCheck(silent);
    const QString text =
        release.critical ? tr("Important update available: version %1.") : tr("Update available: version %1.");
    Q_EMIT logMessage(text.arg(displayVersion(release.version)));
    if (m_isAnnouncing)
        return;
    const QScopedValueRollback announcing(m_isAnnouncing, true);
    UpdateDialog(release, window()).exec();
}

void UpdateNotices::reportUpToDate(bool silent)
{
    finishCheck(silent);
    Q_EMIT logMessage(tr("%1 %2 is up to date.").arg(metadata::applicationName(), metadata::version()));
    if (!silent) {
        showInformation(
            window(), tr("No update available"),
            tr("You are running the latest version of %1 (%2).").arg(metadata::applicationName(), metadata::version()));
    }
}

void UpdateNotices::reportFailure(const QString &error, bool silent)
{
    finishCheck(silent);
    Q_EMIT logMessage(tr("Update check failed: %1").arg(error));
    if (!silent) {
        showWarning(window(), tr("Update check failed"), tr("Could not reach the update service.\n\n%1").arg(error));
    }
}

void UpdateNotices::finishCheck(bool silent)
{
    if (!silent)
        m_checkAction->setEnabled(true);
}

} // namespace epr
