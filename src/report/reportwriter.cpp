// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportwriter.h"

#include "fileproblems.h"
#include "reportcontent.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct FormatEntry {
    ReportFormat format;
    QLatin1StringView extension;
    const char *filter;
    void (*write)(QTextStream &out, const ReportContent &content);
};

constexpr std::array formats {
    FormatEntry { ReportFormat::Csv, "csv"_L1, QT_TRANSLATE_NOOP("epr::Report", "Comma separated values (*.csv)"),
                  writeCsvReport },
    FormatEntry { ReportFormat::Html, "html"_L1, QT_TRANSLATE_NOOP("epr::Report", "HTML report (*.html)"),
                  writeHtmlReport },
    FormatEntry { ReportFormat::Json, "json"_L1, QT_TRANSLATE_NOOP("epr::Report", "JSON data (*.json)"),
                  writeJsonReport },
    FormatEntry { ReportFormat::Playlist, "m3u8"_L1, QT_TRANSLATE_NOOP("epr::Report", "M3U playlist (*.m3u8)"),
                  writePlaylistReport },
};

const FormatEntry *entryOf(ReportFormat format)
{
    const auto *const entry = std::find_if(
        formats.begin(), formats.end(), [format](const FormatEntry &candidate) { return candidate.format == format; });
    return entry == formats.end() ? nullptr : entry;
}

template <typename Condition> std::optional<ReportFormat> formatWhere(Condition condition)
{
    const auto *const entry = std::find_if(formats.begin(), formats.end(), condition);
    return entry == formats.end() ? std::nullopt : std::optional(entry->format);
}

bool openReport(QSaveFile &file, QString *error)
{
    if (isSpecialFile(file.fileName())) { // a complete report takes the place of what was there
        *error = QCoreApplication::translate("epr::Report", "Not a regular file");
        return false;
    }
    *error = inUse(QFileInfo(file).absoluteFilePath()); // which the system would call denied access, at the very end
    if (!error->isEmpty())
        return false;
    if (file.open(QIODevice::WriteOnly | QIODevice::Text))
        return true;
    *error = file.errorString();
    return false;
}

// Committing alone would put a report in place of which the end is missing on a full disk. The stream flushes the file
// too and remembers a failure.
bool write(const QString &path, QString *error, const std::function<void(QTextStream &out)> &content)
{
    QSaveFile file(path);
    if (!openReport(file, error))
        return false;
    QTextStream out(&file);
    content(out);
    out.flush();
    if (out.status() == QTextStream::Ok && file.commit())
        return true;
    *error = writeErrorOf(file);
    if (const QString reason = inUse(QFileInfo(file).absoluteFilePath()); !reason.isEmpty()) // by now
        *error = reason;
    return false;
}

} // namespace

QString reportFormatExtension(ReportFormat format)
{
    const FormatEntry *entry = entryOf(format);
    return entry ? QString(entry->extension) : u"txt"_s;
}

QString reportFormatFilter(ReportFormat format)
{
    const FormatEntry *entry = entryOf(format);
    return QCoreApplication::translate("epr::Report",
                                       entry ? entry->filter : QT_TRANSLATE_NOOP("epr::Report", "All files (*)"));
}

std::optional<ReportFormat> reportFormatFromExtension(const QString &extension)
{
    return formatWhere([&extension](const FormatEntry &entry) {
        return extension.compare(entry.extension, Qt::CaseInsensitive) == 0;
    });
}

std::optional<ReportFormat> reportFormatFromFilter(const QString &filter)
{
    return formatWhere([&filter](const FormatEntry &entry) { return filter == reportFormatFilter(entry.format); });
}

// Asking the system for its permissions would not do: shares and read-only disks show only when something is written.
bool canWriteReport(const QString &path, QString *error)
{
    QSaveFile file(path);
    return openReport(file, error);
}

bool writeReport(const QString &path, ReportFormat format, const QList<TrackInfo> &tracks,
                 const QList<MatchGroup> &groups, const QStringList &roots, QString *error)
{
    return write(path, error, [&](QTextStream &out) {
        if (format == ReportFormat::CsvWithMark)
            writeMarkedCsvReport(out, { tracks, groups, roots, QDateTime::currentDateTime() });
        else if (const FormatEntry *entry = entryOf(format))
            entry->write(out, { tracks, groups, roots, QDateTime::currentDateTime() });
    });
}

bool writeProblems(const QString &path, const QList<FileProblem> &problems, bool withMark, QString *error)
{
    return write(path, error, [&](QTextStream &out) {
        out.setGenerateByteOrderMark(withMark);
        writeCsvProblems(out, problems);
    });
}

} // namespace epr
