// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reportwriter.h"

#include <QList>

namespace epr {

/// A report that the command line asks for.
struct ReportFile {
    QString path; ///< absolute
    ReportFormat format = ReportFormat::Html;

    bool operator==(const ReportFile &) const = default;
};

/// Takes each file once. Returns a message instead when a name does not tell the format, or when it can be known by now
/// that the file cannot be written: the answer of a scan that takes hours must have somewhere to go.
[[nodiscard]] QString readReportFiles(const QStringList &names, QList<ReportFile> &reports);

[[nodiscard]] QString cannotWriteReport(const QString &path, const QString &error);

} // namespace epr
