// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "systempaths.h"

#include <QDir>
#include <QFileInfo>

#include <array>

#include <qt_windows.h>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto longPrefix = "\\\\?\\"_L1;
constexpr auto longSharePrefix = "\\\\?\\UNC\\"_L1;

/// The text of a function of Windows that tells how much room it needs; empty if it fails.
template <typename Function> QString textOf(const Function &function)
{
    std::wstring text(MAX_PATH, L'\0');
    for (DWORD size = 0; (size = function(text.data(), static_cast<DWORD>(text.size()))) != 0;) {
        if (size < text.size())
            return QString::fromWCharArray(text.data(), static_cast<qsizetype>(size));
        text.resize(size + 1);
    }
    return {};
}

// Of a share the system keeps the spelling that was asked for in its own name and its server's.
QString withoutPrefix(const QString &path)
{
    if (!path.startsWith(longSharePrefix))
        return QDir::fromNativeSeparators(path);
    const QString share = QDir::fromNativeSeparators("\\\\"_L1 + path.mid(longSharePrefix.size()));
    return share.section(u'/', 0, 3).toLower() + share.mid(share.section(u'/', 0, 3).size());
}

// Some servers do not tell the spelling, some drivers of drives no path at all.
QString finalPath(HANDLE folder, const QString &path)
{
    for (const DWORD spelling : { FILE_NAME_NORMALIZED, FILE_NAME_OPENED }) {
        const QString found = textOf([folder, spelling](wchar_t *text, DWORD size) {
            return GetFinalPathNameByHandleW(folder, text, size, spelling | VOLUME_NAME_DOS);
        });
        if (!found.isEmpty())
            return QDir::cleanPath(withoutPrefix(found));
    }
    return QDir::cleanPath(asSystemReads(path)).toLower();
}

quint64 wide(DWORD high, DWORD low)
{
    return (static_cast<quint64>(high) << 32) | low;
}

} // namespace

QString asSystemReads(const QString &path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (native.startsWith(longPrefix))
        return path;
    const std::wstring name = native.toStdWString();
    const QString full =
        textOf([&name](wchar_t *text, DWORD size) { return GetFullPathNameW(name.c_str(), size, text, nullptr); });
    return full.isEmpty() ? path : QDir::fromNativeSeparators(full);
}

std::wstring longPath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(asSystemReads(path)));
    if (native.startsWith(longPrefix))
        return native.toStdWString();
    if (native.startsWith("\\\\"_L1)) // a device, too, is then a share that nobody has
        return QString(longSharePrefix + native.mid(2)).toStdWString();
    return QString(longPrefix + native).toStdWString();
}

FolderIdentity folderIdentity(const QString &path)
{
    const HANDLE folder = CreateFileW(longPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE)
        return {};
    FolderIdentity identity { .path = finalPath(folder, path) };
    identity.hasOnePath = !identity.path.startsWith("//"_L1);
    BY_HANDLE_FILE_INFORMATION numbers = {};
    if (GetFileInformationByHandle(folder, &numbers)) {
        identity.volume = numbers.dwVolumeSerialNumber;
        identity.index = wide(numbers.nFileIndexHigh, numbers.nFileIndexLow);
        identity.made =
            static_cast<qint64>(wide(numbers.ftCreationTime.dwHighDateTime, numbers.ftCreationTime.dwLowDateTime));
    }
    CloseHandle(folder);
    return identity;
}

// A volume that is mounted in a folder is a junction to Qt.
bool isFolderLink(const QFileInfo &folder)
{
    if (!folder.isJunction())
        return folder.isSymLink();
    constexpr DWORD volumeNameSize = 50;
    std::array<wchar_t, volumeNameSize> volume = {};
    return !GetVolumeNameForVolumeMountPointW((longPath(folder.filePath()) + L'\\').c_str(), volume.data(),
                                              volumeNameSize);
}

} // namespace epr
