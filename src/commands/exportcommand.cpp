// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "exportcommand.h"

#include "backgroundjob.h"
#include "plainbox.h"
#include "reportwriter.h"
#include "review.h"

#include <QCoreApplication>
#include <QDate>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QUrl>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct ExportCommand {
    Q_DECLARE_TR_FUNCTIONS(epr::ExportCommand)
};

struct Choice {
    QString path; ///< empty = the operator chose none
    ReportFormat format = ReportFormat::Html;
};

QString proposedPath()
{
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QDir folder = documents.exists() ? documents : QDir::home(); // the dialog would start anywhere
    return folder.filePath(u"Echoprune-%1.html"_s.arg(QDate::currentDate().toString(Qt::ISODate)));
}

QString filterList()
{
    return u"%1;;%2;;%3;;%4"_s.arg(reportFormatFilter(ReportFormat::Html), reportFormatFilter(ReportFormat::Csv),
                                   reportFormatFilter(ReportFormat::Json), reportFormatFilter(ReportFormat::Playlist));
}

// Translations keep the pattern, and with it the extension.
ReportFormat formatOfFilter(const QString &filter)
{
    if (filter.contains("csv"_L1))
        return ReportFormat::Csv;
    if (filter.contains("json"_L1))
        return ReportFormat::Json;
    if (filter.contains("m3u"_L1))
        return ReportFormat::Playlist;
    return ReportFormat::Html;
}

// The filter decides alone: the proposed name ends in .html, and whoever then chooses another format wants that one.
Choice chooseReport(QWidget *parent)
{
    QString filter;
    const QString path = QFileDialog::getSaveFileName(parent, ExportCommand::tr("Export duplicate report"),
                                                      proposedPath(), filterList(), &filter);
    return { path, formatOfFilter(filter) };
}

// On a thread of its own, so that the windows are painted during the seconds that tens of thousands of groups take;
// their input waits.
bool writeInBackground(const Choice &choice, const Review &review, const QStringList &roots, QString *error)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    bool written = false;
    BackgroundJob writer([&, tracks = review.tracks(), groups = review.groups()] {
        written = writeReport(choice.path, choice.format, tracks, groups, roots, error);
    });
    writer.wait(QEventLoop::ExcludeUserInputEvents);
    writer.finish();
    QGuiApplication::restoreOverrideCursor();
    return written;
}

} // namespace

void exportReport(const Review &review, const QStringList &roots,
                  const std::function<void(const QString &message)> &log, QWidget *parent)
{
    if (review.groups().isEmpty()) {
        showInformation(parent, ExportCommand::tr("Nothing to export"),
                        ExportCommand::tr("Run a scan first - there are no results to report on."));
        return;
    }
    const Choice choice = chooseReport(parent);
    if (choice.path.isEmpty())
        return;
    QString error;
    if (!writeInBackground(choice, review, roots, &error)) {
        showCritical(parent, ExportCommand::tr("Export failed"),
                     ExportCommand::tr("Could not write the report:\n\n%1").arg(error));
        return;
    }
    log(ExportCommand::tr("Report written to %1").arg(choice.path));
    if (askYesOrNo(parent, ExportCommand::tr("Report saved"),
                   ExportCommand::tr("Report saved to:\n%1\n\nOpen it now?").arg(choice.path)))
        QDesktopServices::openUrl(QUrl::fromLocalFile(choice.path));
}

} // namespace epr
