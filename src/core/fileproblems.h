// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDevice>
#include <QFileInfo>

namespace epr {

/// Whether the name belongs to a folder, a device or a pipe. Opening a pipe waits for a writer that may never come, and
/// reading a device may never end; nothing may replace them either. False for what does not exist.
inline bool isSpecialFile(const QString &path)
{
    const QFileInfo info(path);
    return !info.isFile() && info.exists(); // one question to the system for nearly every path
}

/// Why the file cannot be moved, deleted or replaced at the moment: another program has it open. Empty if none does,
/// and on systems that let a file go while it is open. The path is absolute.
QString inUse(const QString &path);

/// Why a file could not be written, asked right after the failure. A write that was cut short is an "Unknown error";
/// the system says why when one more is tried.
inline QString writeErrorOf(QFileDevice &file)
{
    if (file.isOpen()) {
        file.write("\n");
        file.flush();
    }
    return file.errorString();
}

} // namespace epr
