// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFileDevice>
#include <QFileInfo>

#include <string>

namespace epr {

#ifdef Q_OS_WIN
/// The path for a function of Windows. The prefix lifts the limit of 260 characters and needs a clean absolute path.
inline std::wstring longPath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(path));
    if (native.startsWith(QLatin1String("\\\\?\\")))
        return native.toStdWString();
    if (native.startsWith(QLatin1String("\\\\")))
        return QString(QLatin1String("\\\\?\\UNC\\") + native.mid(2)).toStdWString();
    return QString(QLatin1String("\\\\?\\") + native).toStdWString();
}
#endif

/// Whether the name belongs to a folder, a device or a pipe. Opening a pipe waits for a writer that may never come, and
/// reading a device may never end; nothing may replace them either. False for what does not exist.
inline bool isSpecialFile(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
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
