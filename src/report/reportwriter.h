// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"
#include "records.h"

#include <optional>

namespace epr {

enum class ReportFormat : qint32 {
    Csv = 0,
    Html = 1,
    Json = 2,
    Playlist = 3, ///< M3U8
    CsvWithMark = 256, ///< for writing only: a byte order mark, without which Excel takes UTF-8 for another encoding
};

/// Without the dot; "txt" for a value that is none of the four.
QString reportFormatExtension(ReportFormat format);

/// A translated filter for file dialogs; "All files (*)" for a value that is none of the four.
QString reportFormatFilter(ReportFormat format);

/// By the extension without the dot, in any letter case. Nothing for any other extension.
std::optional<ReportFormat> reportFormatFromExtension(const QString &extension);

/// The format with that reportFormatFilter(). Nothing for any other text.
std::optional<ReportFormat> reportFormatFromFilter(const QString &filter);

/// Whether a report can be written there at the moment, with the reason in *error if not. Leaves no trace.
[[nodiscard]] bool canWriteReport(const QString &path, QString *error);

/// Writes a report in UTF-8, with the platform's line ends. On failure, also when the disk fills up on the way, false
/// with the reason in *error, and the file is what it was before: the new one takes its place only when it is complete.
/// For that its folder must allow a new file. Memory does not grow with the number of groups.
[[nodiscard]] bool writeReport(const QString &path, ReportFormat format, const QList<TrackInfo> &tracks,
                               const QList<MatchGroup> &groups, const QStringList &roots, QString *error);

/// A table of what failed, as CSV.
[[nodiscard]] bool writeProblems(const QString &path, const QList<FileProblem> &problems, bool withMark,
                                 QString *error);

} // namespace epr
