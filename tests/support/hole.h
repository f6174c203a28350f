// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "temporarylibrary.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>
#include <winioctl.h>
#endif

namespace epr::test {

/// A file of nothing but a hole: long to hash, quick to make, and without cost to the disk. A suffix that has no tag
/// reader keeps it from being walked for empty chunks, which some systems take minutes for.
inline bool makeHole(const QString &path, qint64 size)
{
    writeFile(path, {});
#ifdef Q_OS_WIN // where a file has holes only on demand
    const HANDLE file = CreateFileW(qUtf16Printable(QDir::toNativeSeparators(path)), GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD length = 0;
    const bool sparse = DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &length, nullptr) != 0;
    CloseHandle(file);
    if (!sparse)
        return false;
#endif
    return QFile::resize(path, size);
}

} // namespace epr::test
