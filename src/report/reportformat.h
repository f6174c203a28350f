// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace epr {

enum class ReportFormat : qint32 {
    Csv = 0,
    Html = 1,
    Json = 2,
    Playlist = 3, ///< M3U8
};

/// Without the dot; "txt" for a value that is none of the four.
[[nodiscard]] QString reportFormatExtension(ReportFormat format);

/// A translated filter for file dialogs; "All files (*)" for a value that is none of the four.
[[nodiscard]] QString reportFormatFilter(ReportFormat format);

/// By the extension without the dot, in any letter case. Nothing for any other extension.
[[nodiscard]] std::optional<ReportFormat> reportFormatFromExtension(const QString &extension);

} // namespace epr
