// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QFileDevice;

namespace epr {

/// Whether the name belongs to a folder, a device or a pipe. Opening a pipe waits for a writer that may never come, and
/// reading a device may never end; nothing may replace them either. False for what does not exist.
bool isSpecialFile(const QString &path);

/// Why a file could not be written, asked right after the failure. A write that was cut short is an "Unknown error";
/// the system says why when one more is tried.
QString writeErrorOf(QFileDevice &file);

} // namespace epr
