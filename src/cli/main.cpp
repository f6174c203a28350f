// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "clirequest.h"
#include "displaytext.h"
#include "mediabackend.h"
#include "records.h"
#include "reportwriter.h"
#include "review.h"
#include "settingsstore.h"
#include "terminal.h"

#include <QCoreApplication>

using namespace epr;

namespace {

enum ExitStatus { NoDuplicates = 0, DuplicatesFound = 1, NotCompleted = 2 };

int refuse(const QString &message)
{
    QTextStream(stderr) << "echoprune-scan: " << terminal::printable(message) << '\n';
    return NotCompleted;
}

void reportProblems(const QList<TrackInfo> &tracks)
{
    QTextStream err(stderr);
    for (const TrackInfo &track : tracks) {
        if (!track.error.isEmpty())
            err << terminal::printable(nativePath(track.path)) << ": " << terminal::printable(track.error) << '\n';
    }
}

/// Writes as many of the reports as possible; true when that was all of them.
bool writeReports(const CliRequest &request, const terminal::ScanResult &result)
{
    bool all = true;
    for (const ReportFile &report : request.reports) {
        QString error;
        if (writeReport(report.path, report.format, result.tracks, result.groups, request.options.roots, &error))
            continue;
        refuse(cannotWriteReport(report.path, error));
        all = false;
    }
    return all;
}

int scan(const CliRequest &request)
{
    terminal::ScanResult result = terminal::runScan(request.options, request.verbose);
    if (!result.failure.isEmpty())
        return refuse(result.failure);
    reportProblems(result.tracks);
    if (result.cancelled)
        return refuse(request.reports.isEmpty()
                          ? QCoreApplication::translate("epr::Cli", "Stopped before the end; nothing is reported.")
                          : QCoreApplication::translate("epr::Cli", "Stopped before the end; no report is written."));

    if (!request.includeSetAside) {
        if (const Result<> known = terminal::leaveOutSetAside(result); !known)
            refuse(known.error());
    }
    const bool wasChecked =
        !request.options.checkWhole || terminal::checkWholeLength(result, request.options, request.verbose);
    // The files first: whoever reads the standard output may close it early, which ends the program.
    const bool written = writeReports(request, result);
    QTextStream out(stdout);
    terminal::writeTextReport(out, result);
    out.flush();
    if (result.unreadableFolders > 0) // said once more for whoever keeps the result in a file and looks at errors only
        return refuse(incompleteText(result.unreadableFolders));
    if (!wasChecked)
        return refuse(QCoreApplication::translate(
            "epr::Cli", "The check over the whole length was stopped; not all groups are checked."));
    if (!written)
        return NotCompleted;
    return result.groups.isEmpty() ? NoDuplicates : DuplicatesFound;
}

} // namespace

int main(int argc, char *argv[])
{
    avoidCompiledExpressions();
    preferFfmpegMediaBackend();
    const QCoreApplication app(argc, argv);
    metadata::applyToApplication();
    translation::install();
    registerMetaTypes();
    const terminal::Utf8Console console;

    CliRequest request = parseCommandLine(QCoreApplication::arguments(), SettingsStore().loadScanOptions(),
                                          SettingsStore().value(settings::csvMark));
    request.options.protectedFolders = SettingsStore().value(settings::protectedFolders);
    switch (request.kind) {
    case CliRequest::Kind::ShowText:
        QTextStream(stdout) << request.text;
        return 0;
    case CliRequest::Kind::Refuse:
        return refuse(request.text);
    case CliRequest::Kind::Scan:
        break;
    }
    return scan(request);
}
