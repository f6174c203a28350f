// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDevice>

namespace epr {

/// Why a file could not be written, asked right after the failure. A write that was cut short is an "Unknown error";
/// the system says why when one more is tried.
[[nodiscard]] inline QString writeErrorOf(QFileDevice &file)
{
    if (file.isOpen()) {
        file.write("\n");
        file.flush();
    }
    return file.errorString();
}

} // namespace epr
