// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportwriter.h"

#include "csvreport.h"
#include "htmlreport.h"
#include "jsonreport.h"
#include "playlistreport.h"
#include "reportdata.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace epr {

namespace {

void writeFormat(QTextStream &out, ReportFormat format, const ReportData &data)
{
    switch (format) {
    case ReportFormat::Csv:
        writeCsvReport(out, data);
        return;
    case ReportFormat::Html:
        writeHtmlReport(out, data);
        return;
    case ReportFormat::Json:
        writeJsonReport(out, data);
        return;
    case ReportFormat::Playlist:
        writePlaylistReport(out, data);
        return;
    }
}

// A complete file takes the place of what was there, which must not happen to a device or a pipe.
bool isReplaceable(const QString &path)
{
    const QFileInfo info(path);
    return !info.exists() || info.isFile();
}

bool openReport(QSaveFile &file, QString *error)
{
    if (!isReplaceable(file.fileName())) {
        *error = QCoreApplication::translate("epr::Report", "Not a regular file");
        return false;
    }
    if (file.open(QIODevice::WriteOnly | QIODevice::Text))
        return true;
    *error = file.errorString();
    return false;
}

} // namespace

// Asking the system for its permissions would not do: shares and read-only disks show only when something is written.
bool canWriteReport(const QString &path, QString *error)
{
    QSaveFile file(path);
    return openReport(file, error);
}

bool writeReport(const QString &path, ReportFormat format, const QList<TrackInfo> &tracks,
                 const QList<MatchGroup> &groups, const QStringList &roots, QString *error)
{
    QSaveFile file(path);
    if (!openReport(file, error))
        return false;
    QTextStream out(&file);
    writeFormat(out, format, { tracks, groups, roots, QDateTime::currentDateTime() });
    out.flush();
    // Committing alone would put a report in place of which the end is missing on a full disk. The stream flushes the
    // file too and remembers a failure.
    if (out.status() == QTextStream::Ok && file.commit())
        return true;
    // A write that was cut short is an "Unknown error"; the system says why when one more is tried.
    if (file.isOpen()) {
        file.write("\n");
        file.flush();
    }
    *error = file.errorString();
    return false;
}

} // namespace epr
