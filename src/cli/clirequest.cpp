// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clirequest.h"

#include "metadata.h"

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

constexpr std::array<SwitchOption, 5> switchOptions { {
    { "identical", QT_TRANSLATE_NOOP("epr::Cli", "Find identical files."), &ScanOptions::detectIdentical },
    { "same-audio", QT_TRANSLATE_NOOP("epr::Cli", "Find the same audio under different tags."),
      &ScanOptions::detectSameAudio },
    { "acoustic", QT_TRANSLATE_NOOP("epr::Cli", "Find the same recording, encoded differently."),
      &ScanOptions::detectAcoustic },
    { "metadata", QT_TRANSLATE_NOOP("epr::Cli", "Find matching artist, title and duration."),
      &ScanOptions::detectMetadata },
    { "cache", QT_TRANSLATE_NOOP("epr::Cli", "Reuse and remember analysis results."), &ScanOptions::useCache },
} };

struct Cli {
    Q_DECLARE_TR_FUNCTIONS(epr::Cli)
};

QString offName(const SwitchOption &option)
{
    return "no-"_L1 + QLatin1StringView(option.name);
}

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        Cli::tr("Finds duplicate music in FOLDERs and prints the groups. Never changes a library file.\n"
                "What is not given on the command line is taken from the saved settings.\n\n"
                "Exit status: 0 no duplicates, 1 duplicates found, 2 wrong usage, or the scan or a "
                "report could not be completed."));
    parser.addHelpOption();
    parser.addVersionOption();
    for (const SwitchOption &option : switchOptions) {
        parser.addOption({ QString(QLatin1StringView(option.name)), Cli::tr(option.description) });
        parser.addOption({ offName(option), Cli::tr("Switch that off.") });
    }
    parser.addOption(
        { u"report"_s,
          Cli::tr("Write the groups to FILE, also when there are none. Its name ends in .csv, .html, .json, or "
                  ".m3u8 for a playlist of the proposed duplicates. May be given several times."),
          u"FILE"_s });
    parser.addOption({ u"verbose"_s, Cli::tr("Print the activity log on standard error.") });
    parser.addPositionalArgument(u"FOLDER"_s, Cli::tr("Folder to scan, with everything below it."), u"FOLDER..."_s);
}

CliRequest refusal(const QString &message)
{
    CliRequest request;
    request.kind = CliRequest::Kind::Refuse;
    request.text = message;
    return request;
}

CliRequest textToShow(const QString &text)
{
    CliRequest request;
    request.kind = CliRequest::Kind::ShowText;
    request.text = text;
    return request;
}

/// Applies the switches; returns a message when one is given in both forms.
QString applySwitches(const QCommandLineParser &parser, ScanOptions &options)
{
    for (const SwitchOption &option : switchOptions) {
        const QString name = QLatin1StringView(option.name);
        const bool on = parser.isSet(name);
        const bool off = parser.isSet(offName(option));
        if (on && off)
            return Cli::tr("--%1 and --%2 contradict each other.").arg(name, offName(option));
        if (on || off)
            options.*option.field = on;
    }
    return {};
}

/// A folder that is not there is refused rather than skipped: an unattended run over a share that is not mounted
/// must not end with "no duplicates".
QString applyFolders(const QStringList &folders, ScanOptions &options)
{
    if (folders.isEmpty())
        return Cli::tr("No folder given.");
    options.roots.clear();
    for (const QString &folder : folders) {
        const QFileInfo info(folder);
        if (!info.isDir())
            return Cli::tr("Not a folder: %1").arg(QDir::toNativeSeparators(folder));
        const QString path = QDir::cleanPath(info.absoluteFilePath());
        if (!options.roots.contains(path))
            options.roots.append(path);
    }
    return {};
}

} // namespace

CliRequest parseCommandLine(const QStringList &arguments, const ScanOptions &defaults)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments))
        return refusal(parser.errorText());
    if (parser.isSet(u"help"_s))
        return textToShow(parser.helpText());
    if (parser.isSet(u"version"_s))
        return textToShow(metadata::applicationName() + u' ' + metadata::version() + u'\n');

    CliRequest request;
    request.options = defaults;
    request.verbose = parser.isSet(u"verbose"_s);
    if (const QString problem = applySwitches(parser, request.options); !problem.isEmpty())
        return refusal(problem);
    if (const QString problem = applyFolders(parser.positionalArguments(), request.options); !problem.isEmpty())
        return refusal(problem);
    if (const QString problem = readReportFiles(parser.values(u"report"_s), request.reports); !problem.isEmpty())
        return refusal(problem);
    if (!request.options.anyDetection())
        return refusal(Cli::tr("All detection methods are switched off."));
    return request;
}

} // namespace epr
