// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "nativefile.h"

#include "systempaths.h"

#include <QFileDevice>

#include <io.h>
#include <memory>
#include <string>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace epr::nativefile {

namespace {

struct CloseFileHandle {
    void operator()(HANDLE handle) const
    {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};

using FileHandle = std::unique_ptr<void, CloseFileHandle>;

bool isOpen(const FileHandle &handle)
{
    return handle.get() != INVALID_HANDLE_VALUE;
}

FileHandle openFile(const QString &path, DWORD access)
{
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return FileHandle(CreateFileW(longPath(path).c_str(), access, shareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

tl::unexpected<QString> systemFailure(DWORD error)
{
    return failure(qt_error_string(static_cast<int>(error)));
}

Result<Outcome> outcomeOfError(DWORD error)
{
    switch (error) {
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return Outcome::Occupied;
    case ERROR_NOT_SAME_DEVICE:
        return Outcome::OtherDevice;
    default:
        return systemFailure(error);
    }
}

quint64 wide(DWORD high, DWORD low)
{
    return (static_cast<quint64>(high) << 32) | low;
}

constexpr qint64 secondsTo1970 = 11644473600; // from 1601, where Windows begins to count
constexpr qint64 ticksPerSecond = 10000000;
constexpr qint64 nanosecondsPerTick = 100;

Time timeOf(const FILETIME &time)
{
    const auto ticks = static_cast<qint64>(wide(time.dwHighDateTime, time.dwLowDateTime));
    return { ticks / ticksPerSecond - secondsTo1970, ticks % ticksPerSecond * nanosecondsPerTick };
}

FILETIME fileTimeOf(const Time &time)
{
    const qint64 ticks = (time.seconds + secondsTo1970) * ticksPerSecond + time.nanoseconds / nanosecondsPerTick;
    return { static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32) };
}

// The reason is asked for before a handle is closed, which may have an outcome of its own.
Result<> copyTimes(const QString &from, const QString &to)
{
    FILETIME created = {};
    FILETIME accessed = {};
    FILETIME modified = {};
    const FileHandle source = openFile(from, FILE_READ_ATTRIBUTES);
    if (!isOpen(source) || !GetFileTime(source.get(), &created, &accessed, &modified))
        return systemFailure(GetLastError());
    const FileHandle copy = openFile(to, FILE_WRITE_ATTRIBUTES);
    if (!isOpen(copy) || !SetFileTime(copy.get(), &created, &accessed, &modified))
        return systemFailure(GetLastError());
    return {};
}

} // namespace

Result<Outcome> renameWithoutReplacing(const QString &from, const QString &to,
                                       [[maybe_unused]] const std::function<void()> &beforePlaceholder)
{
    if (MoveFileExW(longPath(from).c_str(), longPath(to).c_str(), MOVEFILE_WRITE_THROUGH))
        return Outcome::Done;
    return outcomeOfError(GetLastError());
}

Result<> makeFolder(const QString &path)
{
    if (CreateDirectoryW(longPath(path).c_str(), nullptr))
        return {};
    return systemFailure(GetLastError());
}

// Other reparse points are files to whoever reads them: those of a cloud drive, say.
Result<bool> isSymbolicLink(const QString &path)
{
    WIN32_FIND_DATAW data = {};
    const HANDLE search = FindFirstFileW(longPath(path).c_str(), &data);
    if (search == INVALID_HANDLE_VALUE)
        return systemFailure(GetLastError());
    FindClose(search);
    return (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && data.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

// Making a symbolic link takes a privilege that few accounts have, so a link does not leave its volume.
Result<Outcome> copySymbolicLink([[maybe_unused]] const QString &from, [[maybe_unused]] const QString &to)
{
    return systemFailure(ERROR_PRIVILEGE_NOT_HELD);
}

Result<> copyTimesAndPermissions(const QString &from, const QString &to)
{
    if (const Result<> copied = copyTimes(from, to); !copied)
        return copied;
    constexpr DWORD kept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE;
    const DWORD attributes = GetFileAttributesW(longPath(from).c_str());
    const DWORD wanted = attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes & kept;
    SetFileAttributesW(longPath(to).c_str(), wanted == 0 ? FILE_ATTRIBUTE_NORMAL : wanted); // hidden no longer
    return {};
}

void hideFile(const QString &path)
{
    SetFileAttributesW(longPath(path).c_str(), FILE_ATTRIBUTE_HIDDEN);
}

// Windows refuses to delete a write-protected file, although it lets it be moved.
Result<> removeFile(const QString &path)
{
    const std::wstring name = longPath(path);
    if (DeleteFileW(name.c_str()))
        return {};
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0)
        return systemFailure(error);
    SetFileAttributesW(name.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    if (DeleteFileW(name.c_str()))
        return {};
    const DWORD secondError = GetLastError();
    SetFileAttributesW(name.c_str(), attributes);
    return systemFailure(secondError);
}

Result<> flushToDisk(QFileDevice &file)
{
    if (!file.flush())
        return failure(file.errorString());
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    if (FlushFileBuffers(handle))
        return {};
    const DWORD error = GetLastError();
    if (error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED) // of a network drive, say
        return {};
    return systemFailure(error);
}

// NTFS journals names by itself and offers no call for one folder.
void flushFolderToDisk([[maybe_unused]] const QString &folder)
{
}

// A locked range cannot be read by others, so it lies where no text ever reaches.
Result<LockOutcome> lockFile(QFileDevice &file, LockKind kind)
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    OVERLAPPED range = {};
    range.OffsetHigh = 0x40000000;
    const DWORD exclusive = kind == LockKind::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0;
    if (LockFileEx(handle, exclusive | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &range))
        return LockOutcome::Locked;
    switch (const DWORD error = GetLastError()) {
    case ERROR_LOCK_VIOLATION:
    case ERROR_IO_PENDING:
        return LockOutcome::Held;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION:
        return LockOutcome::Unsupported;
    default:
        return systemFailure(error);
    }
}

std::optional<Identity> identityOf(const QString &path)
{
    const std::optional<Status> status = statusOf(path);
    if (!status || status->identity.index == 0) // some network file systems number nothing
        return std::nullopt;
    return status->identity;
}

std::optional<Status> statusOf(const QString &path)
{
    const FileHandle file = openFile(path, FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!isOpen(file) || !GetFileInformationByHandle(file.get(), &information))
        return std::nullopt;
    return Status { .identity = { information.dwVolumeSerialNumber,
                                  wide(information.nFileIndexHigh, information.nFileIndexLow),
                                  information.nNumberOfLinks },
                    .size = static_cast<qint64>(wide(information.nFileSizeHigh, information.nFileSizeLow)),
                    .accessed = timeOf(information.ftLastAccessTime),
                    .modified = timeOf(information.ftLastWriteTime) };
}

Result<> setTimes(const QString &path, const Time &accessed, const Time &modified)
{
    const FileHandle file = openFile(path, FILE_WRITE_ATTRIBUTES);
    const FILETIME access = fileTimeOf(accessed);
    const FILETIME write = fileTimeOf(modified);
    if (isOpen(file) && SetFileTime(file.get(), nullptr, &access, &write))
        return {};
    return systemFailure(GetLastError());
}

} // namespace epr::nativefile
