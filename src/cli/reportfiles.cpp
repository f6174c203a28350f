// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportfiles.h"

#include "reportwriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace epr {

QString readReportFiles(const QStringList &names, QList<ReportFile> &reports)
{
    for (const QString &name : names) {
        const QFileInfo info(name);
        const std::optional<ReportFormat> format = reportFormatFromExtension(info.suffix());
        if (!format) {
            return QCoreApplication::translate(
                       "epr::Cli", "Not a kind of report: \"%1\". The name must end in .csv, .html, .json or .m3u8.")
                .arg(QDir::toNativeSeparators(name));
        }
        const ReportFile report { QDir::cleanPath(info.absoluteFilePath()), *format };
        QString error;
        if (!canWriteReport(report.path, &error))
            return cannotWriteReport(report.path, error);
        if (!reports.contains(report))
            reports.append(report);
    }
    return {};
}

QString cannotWriteReport(const QString &path, const QString &error)
{
    return QCoreApplication::translate("epr::Cli", "Could not write the report %1: %2")
        .arg(QDir::toNativeSeparators(path), error);
}

} // namespace epr
