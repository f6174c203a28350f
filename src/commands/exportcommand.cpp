// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "exportcommand.h"

#include "notices.h"
#include "reportwriter.h"
#include "review.h"
#include "runwithprogress.h"

#include <QDate>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
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
    if (m_review.groups().isEmpty()) {
        showInformation(window(), tr("Nothing to export"), tr("Run a scan first - there are no results to report on."));
        return;
    }
    QString filter;
    const QString path =
        QFileDialog::getSaveFileName(window(), tr("Export duplicate report"), proposedPath(), filterList(), &filter);
    if (path.isEmpty())
        return;
    const ReportFormat format = reportFormatFromFilter(filter).value_or(formats.front());
    bool isWritten = false;
    QString error;
    runWaiting([&, tracks = m_review.tracks(), groups = m_review.groups()] {
        isWritten = writeReport(path, format, tracks, groups, roots, &error);
    });
    if (!isWritten) {
        showCritical(window(), tr("Export failed"), tr("Could not write the report:\n\n%1").arg(error));
        return;
    }
    report(tr("Report written to %1").arg(path));
    if (askYesOrNo(window(), tr("Report saved"), tr("Report saved to:\n%1\n\nOpen it now?").arg(path)))
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace epr
