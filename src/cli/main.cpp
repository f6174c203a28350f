// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clirequest.h"
#include "consolescan.h"
#include "metadata.h"
#include "metatypes.h"
#include "qtdecoder.h"
#include "settingsstore.h"
#include "terminal.h"
#include "textreport.h"

#include <QCoreApplication>
#include <QTextStream>

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
            err << terminal::printable(track.path) << ": " << terminal::printable(track.error) << '\n';
    }
}

int scan(const CliRequest &request)
{
    const ConsoleScanResult result = runConsoleScan(request.options, request.verbose);
    if (!result.failure.isEmpty())
        return refuse(result.failure);
    reportProblems(result.tracks);
    if (result.cancelled)
        return refuse(QCoreApplication::translate("epr::Cli", "Stopped before the end; nothing is reported."));

    QTextStream out(stdout);
    writeTextReport(out, result.tracks, result.groups);
    return result.groups.isEmpty() ? NoDuplicates : DuplicatesFound;
}

} // namespace

int main(int argc, char *argv[])
{
    preferFfmpegMediaBackend();
    const QCoreApplication app(argc, argv);
    metadata::applyToApplication();
    registerMetaTypes();
    terminal::useUtf8();

    const CliRequest request = parseCommandLine(QCoreApplication::arguments(), SettingsStore().loadScanOptions());
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
