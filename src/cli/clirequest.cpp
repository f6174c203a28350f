// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clirequest.h"

#include "application.h"
#include "displaytext.h"
#include "result.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

/// One switch with an on and an off form; without either the saved setting holds.
struct SwitchOption {
    const char *name;
    const char *description;
    bool ScanOptions::*field;
};

constexpr std::array<SwitchOption, 7> switchOptions { {
    { "identical", QT_TRANSLATE_NOOP("epr::Cli", "Find identical files."), &ScanOptions::detectIdentical },
    { "same-audio", QT_TRANSLATE_NOOP("epr::Cli", "Find the same audio under different tags."),
      &ScanOptions::detectSameAudio },
    { "acoustic", QT_TRANSLATE_NOOP("epr::Cli", "Find the same recording, encoded differently."),
      &ScanOptions::detectAcoustic },
    { "thorough", QT_TRANSLATE_NOOP("epr::Cli", "With that, also find copies that start or end elsewhere."),
      &ScanOptions::compareThoroughly },
    { "metadata", QT_TRANSLATE_NOOP("epr::Cli", "Find matching artist, title and duration."),
      &ScanOptions::detectMetadata },
    { "check-whole",
      QT_TRANSLATE_NOOP("epr::Cli", "Then check groups found by sound or by tags over their whole length."),
      &ScanOptions::checkWhole },
    { "cache", QT_TRANSLATE_NOOP("epr::Cli", "Reuse and remember analysis results."), &ScanOptions::useCache },
} };

constexpr SwitchOption markOption {
    "csv-bom", QT_TRANSLATE_NOOP("epr::Cli", "Begin CSV reports with a byte order mark, which Excel needs."), nullptr
};

constexpr SwitchOption hashAllOption {
    "hash-all", QT_TRANSLATE_NOOP("epr::Cli", "Read every file whole, also where no copy is possible."), nullptr
};

QString offName(const SwitchOption &option)
{
    return "no-"_L1 + QLatin1StringView(option.name);
}

void addSwitch(QCommandLineParser &parser, const SwitchOption &option)
{
    parser.addOption(
        { QString(QLatin1StringView(option.name)), QCoreApplication::translate("epr::Cli", option.description) });
    parser.addOption({ offName(option), QCoreApplication::translate("epr::Cli", "Switch that off.") });
}

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QCoreApplication::translate(
        "epr::Cli",
        "Finds duplicate music in FOLDERs and prints the groups. Never changes a library file.\n"
        "What is not given on the command line is taken from the saved settings.\n\n"
        "Exit status: 0 no duplicates, 1 duplicates found, 2 wrong usage, or the scan or a "
        "report could not be completed, or a folder could not be read."));
    parser.addHelpOption();
    parser.addVersionOption();
    for (const SwitchOption &option : switchOptions)
        addSwitch(parser, option);
    addSwitch(parser, hashAllOption);
    parser.addOption(
        { u"report"_s,
          QCoreApplication::translate(
              "epr::Cli",
              "Write the groups to FILE, also when there are none. Its name ends in .csv, .html, .json, or "
              ".m3u8 for a playlist of the proposed duplicates. May be given several times."),
          u"FILE"_s });
    addSwitch(parser, markOption);
    parser.addOption({ u"include-set-aside"_s,
                       QCoreApplication::translate(
                           "epr::Cli", "Also report groups that were set aside as not duplicates in the window.") });
    parser.addOption(
        { u"verbose"_s, QCoreApplication::translate("epr::Cli", "Print the activity log on standard error.") });
    parser.addPositionalArgument(u"FOLDER"_s,
                                 QCoreApplication::translate("epr::Cli", "Folder to scan, with everything below it."),
                                 u"FOLDER..."_s);
}

/// Fails when a switch is given in both forms.
Result<> applySwitch(const QCommandLineParser &parser, const SwitchOption &option, bool &value)
{
    const QString name = QLatin1StringView(option.name);
    const bool on = parser.isSet(name);
    const bool off = parser.isSet(offName(option));
    if (on && off)
        return failure(
            QCoreApplication::translate("epr::Cli", "--%1 and --%2 contradict each other.").arg(name, offName(option)));
    if (on || off)
        value = on;
    return {};
}

Result<> applySwitches(const QCommandLineParser &parser, CliRequest &request, bool &csvMark)
{
    Result<> applied = applySwitch(parser, markOption, csvMark);
    bool hashAll = !request.options.onlyPossibleCopies;
    if (applied)
        applied = applySwitch(parser, hashAllOption, hashAll);
    request.options.onlyPossibleCopies = !hashAll;
    for (const SwitchOption &option : switchOptions) {
        if (applied)
            applied = applySwitch(parser, option, request.options.*option.field);
    }
    return applied;
}

/// A folder that is not there is refused rather than skipped: an unattended run over a share that is not mounted
/// must not end with "no duplicates".
Result<QStringList> rootsOf(const QStringList &folders)
{
    if (folders.isEmpty())
        return failure(QCoreApplication::translate("epr::Cli", "No folder given."));
    QStringList roots;
    for (const QString &folder : folders) {
        const QFileInfo info(folder);
        if (!info.isDir())
            return failure(QCoreApplication::translate("epr::Cli", "Not a folder: %1").arg(nativePath(folder)));
        const QString path = QDir::cleanPath(info.absoluteFilePath());
        if (!roots.contains(path))
            roots.append(path);
    }
    return roots;
}

/// Each file once. Fails when a name does not tell the format, or when it can be known by now that the file cannot be
/// written: the answer of a scan that takes hours must have somewhere to go.
Result<QList<ReportFile>> reportFilesOf(const QStringList &names, bool csvMark)
{
    QList<ReportFile> reports;
    for (const QString &name : names) {
        const QFileInfo info(name);
        const std::optional<ReportFormat> format = reportFormatFromExtension(info.suffix());
        if (!format) {
            return failure(
                QCoreApplication::translate(
                    "epr::Cli", "Not a kind of report: \"%1\". The name must end in .csv, .html, .json or .m3u8.")
                    .arg(nativePath(name)));
        }
        const bool isMarked = csvMark && format == ReportFormat::Csv;
        const ReportFile report { QDir::cleanPath(info.absoluteFilePath()),
                                  isMarked ? ReportFormat::CsvWithMark : *format };
        QString error;
        if (!canWriteReport(report.path, &error))
            return failure(cannotWriteReport(report.path, error));
        if (!reports.contains(report))
            reports.append(report);
    }
    return reports;
}

/// What there is to do for a command line that asks for a scan.
Result<CliRequest> scanRequest(const QCommandLineParser &parser, const ScanOptions &defaults, bool csvMark)
{
    CliRequest request;
    request.options = defaults;
    request.verbose = parser.isSet(u"verbose"_s);
    request.includeSetAside = parser.isSet(u"include-set-aside"_s);
    if (const Result<> applied = applySwitches(parser, request, csvMark); !applied)
        return failure(applied.error());
    const Result<QStringList> roots = rootsOf(parser.positionalArguments());
    if (!roots)
        return failure(roots.error());
    const Result<QList<ReportFile>> reports = reportFilesOf(parser.values(u"report"_s), csvMark);
    if (!reports)
        return failure(reports.error());
    if (!request.options.anyDetection())
        return failure(QCoreApplication::translate("epr::Cli", "All detection methods are switched off."));
    request.options.roots = *roots;
    request.reports = *reports;
    return request;
}

} // namespace

QString cannotWriteReport(const QString &path, const QString &error)
{
    return QCoreApplication::translate("epr::Cli", "Could not write the report %1: %2").arg(nativePath(path), error);
}

CliRequest parseCommandLine(const QStringList &arguments, const ScanOptions &defaults, bool csvMark)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments))
        return { CliRequest::Kind::Refuse, parser.errorText(), {}, {} };
    if (parser.isSet(u"help"_s))
        return { CliRequest::Kind::ShowText, parser.helpText(), {}, {} };
    if (parser.isSet(u"version"_s))
        return { CliRequest::Kind::ShowText, metadata::applicationName() + u' ' + metadata::version() + u'\n', {}, {} };
    const Result<CliRequest> request = scanRequest(parser, defaults, csvMark);
    return request ? *request : CliRequest { CliRequest::Kind::Refuse, request.error(), {}, {} };
}

} // namespace epr
