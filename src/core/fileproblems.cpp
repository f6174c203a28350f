// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fileproblems.h"

#ifdef Q_OS_WIN
#include "systempaths.h"

#include <QCoreApplication>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif

namespace epr {

// Opening with the right to delete is what a move, a deletion and a replacement each begin with.
QString inUse([[maybe_unused]] const QString &path)
{
#ifdef Q_OS_WIN
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(longPath(path).c_str(), DELETE, shareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    else if (GetLastError() == ERROR_SHARING_VIOLATION)
        return QCoreApplication::translate("epr::FileProblem",
                                           "Sharing violation: the file is in use by another program");
#endif
    return {};
}

} // namespace epr
