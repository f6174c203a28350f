// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "result.h"

#include <QElapsedTimer>
#include <QTextStream>

namespace epr::terminal {

/// Makes the console show UTF-8 as long as it lives; needed on Windows only, where the shell that started the program
/// goes on with the same console. What the console was set to comes back, also when Ctrl-C ends the program.
class Utf8Console final {
public:
    Utf8Console();
    Q_DISABLE_COPY_MOVE(Utf8Console)
    ~Utf8Console();
};

/// The text with control characters written as \xNN, marks of direction and separators of lines as \uNNNN, so that a
/// file name can neither break a line, nor send the terminal a command, nor show as another name.
QString printable(const QString &text);

/// One line on standard error that rewrites itself. Shows nothing where standard error is not a terminal.
class StatusLine final {
public:
    void setPhase(const QString &phase);
    void setProgress(int done, int total, const QString &detail);
    void clear();

private:
    void show(const QString &text, bool now);

    QTextStream m_err { stderr };
    QElapsedTimer m_sinceShown;
    QString m_phase;
};

/// What a scan in the terminal came to.
struct ScanResult {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
    bool cancelled = false;
    qint64 setAside = 0; ///< groups that were left out
    int unreadableFolders = 0; ///< their files are missing from the tracks
    QString failure; ///< why the scan could not run; empty when it did
};

/// Runs one scan on the calling thread. Progress is shown on standard error when that is a terminal, log lines there
/// when `verbose`. Ctrl-C cancels it.
ScanResult runScan(const ScanOptions &options, bool verbose);

/// Takes out the groups that are remembered as not duplicates. Fails if nobody can know which; nothing is then taken
/// out.
Result<> leaveOutSetAside(ScanResult &result);

/// Checks the groups that were found by sound or by tags over their whole length, several at a time, with progress as
/// a scan's. Ctrl-C stops it, which leaves the rest unchecked. False if it was stopped.
bool checkWholeLength(ScanResult &result, const ScanOptions &options, bool verbose);

/// Writes the groups as readable text, one line per copy, and a summary line at the end.
void writeTextReport(QTextStream &out, const ScanResult &result);

} // namespace epr::terminal
