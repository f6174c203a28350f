// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "reportwriter.h"

namespace epr {

/// A report that the command line asks for.
struct ReportFile {
    QString path; ///< absolute
    ReportFormat format = ReportFormat::Html;

    bool operator==(const ReportFile &) const = default;
};

/// What a command line asks for.
struct CliRequest {
    enum class Kind {
        Scan,
        ShowText, ///< print text on standard output and end well (help, version)
        Refuse, ///< print text on standard error and end with the status for wrong usage
    };

    Kind kind = Kind::Scan;
    QString text;
    ScanOptions options; ///< roots are absolute paths of existing folders
    QList<ReportFile> reports; ///< to write after a complete scan
    bool includeSetAside = false; ///< also groups that are remembered as not duplicates
    bool verbose = false; ///< log lines on standard error
};

QString cannotWriteReport(const QString &path, const QString &error);

/// Reads a command line, program name first. What it does not mention stays as in `defaults` and `csvMark`, which is
/// whether CSV reports begin with a byte order mark.
CliRequest parseCommandLine(const QStringList &arguments, const ScanOptions &defaults, bool csvMark = false);

} // namespace epr
