// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportformat.h"

#include <QCoreApplication>

namespace epr {

using namespace Qt::StringLiterals;

QString reportFormatExtension(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Csv:
        return u"csv"_s;
    case ReportFormat::Html:
        return u"html"_s;
    case ReportFormat::Json:
        return u"json"_s;
    case ReportFormat::Playlist:
        return u"m3u8"_s;
    }
    return u"txt"_s;
}

QString reportFormatFilter(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Csv:
        return QCoreApplication::translate("epr::Report", "Comma separated values (*.csv)");
    case ReportFormat::Html:
        return QCoreApplication::translate("epr::Report", "HTML report (*.html)");
    case ReportFormat::Json:
        return QCoreApplication::translate("epr::Report", "JSON data (*.json)");
    case ReportFormat::Playlist:
        return QCoreApplication::translate("epr::Report", "M3U playlist (*.m3u8)");
    }
    return QCoreApplication::translate("epr::Report", "All files (*)");
}

std::optional<ReportFormat> reportFormatFromExtension(const QString &extension)
{
    for (const ReportFormat format :
         { ReportFormat::Csv, ReportFormat::Html, ReportFormat::Json, ReportFormat::Playlist }) {
        if (extension.compare(reportFormatExtension(format), Qt::CaseInsensitive) == 0)
            return format;
    }
    return std::nullopt;
}

} // namespace epr
