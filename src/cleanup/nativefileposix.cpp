// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "nativefile.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif
#include <unistd.h>

namespace epr::nativefile {

namespace {

tl::unexpected<QString> systemFailure()
{
    return failure(qt_error_string(errno));
}

Result<Outcome> outcomeOf(int status)
{
    if (status == 0)
        return Outcome::Done;
    switch (errno) {
    case EEXIST:
        return Outcome::Occupied;
    case EXDEV:
        return Outcome::OtherDevice;
    default:
        return systemFailure();
    }
}

bool isEmptyFile(const char *path)
{
    struct stat status = {};
    return lstat(path, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
}

// For file systems without hard links. The name is first taken by an empty file, which cannot happen where a file is,
// and then renamed over: nobody else's file can be in the way.
Result<Outcome> renameOverPlaceholder(const char *from, const char *to)
{
    const int placeholder = open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (placeholder < 0)
        return outcomeOf(-1);
    close(placeholder);
    const Result<Outcome> outcome = outcomeOf(std::rename(from, to));
    if (outcome != Outcome::Done && isEmptyFile(to))
        unlink(to);
    return outcome;
}

// For file systems that can only rename over what is there.
Result<Outcome> linkAndUnlink(const char *from, const char *to, const std::function<void()> &beforePlaceholder)
{
    if (linkat(AT_FDCWD, from, AT_FDCWD, to, 0) != 0) {
        const bool noHardLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
        if (!noHardLinks)
            return outcomeOf(-1);
        beforePlaceholder();
        return renameOverPlaceholder(from, to);
    }
    struct stat status = {};
    // Only while the old name is still seen to be there is the new one not the last.
    if (unlink(from) == 0)
        return Outcome::Done;
    const auto refusal = systemFailure();
    if (lstat(from, &status) != 0)
        return Outcome::Done;
    unlink(to);
    return refusal;
}

bool isUnsupported(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

std::array<timespec, 2> timesOf(const struct stat &status)
{
#ifdef __APPLE__
    return { status.st_atimespec, status.st_mtimespec };
#else
    return { status.st_atim, status.st_mtim };
#endif
}

bool copyTimes(const struct stat &source, const char *to)
{
    return utimensat(AT_FDCWD, to, timesOf(source).data(), AT_SYMLINK_NOFOLLOW) == 0;
}

} // namespace

Result<Outcome> renameWithoutReplacing(const QString &from, const QString &to,
                                       const std::function<void()> &beforePlaceholder)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    const int status = renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE);
    if (status == 0 || !isUnsupported(errno))
        return outcomeOf(status);
#endif
    return linkAndUnlink(source.constData(), target.constData(), beforePlaceholder);
}

Result<> makeFolder(const QString &path)
{
    if (mkdir(QFile::encodeName(path).constData(), 0777) == 0)
        return {};
    return systemFailure();
}

Result<bool> isSymbolicLink(const QString &path)
{
    struct stat status = {};
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return systemFailure();
    return S_ISLNK(status.st_mode);
}

Result<Outcome> copySymbolicLink(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray copy = QFile::encodeName(to);
    std::array<char, PATH_MAX + 1> target = {};
    struct stat status = {};
    const ssize_t length = readlink(source.constData(), target.data(), target.size());
    if (length < 0)
        return systemFailure();
    if (static_cast<size_t>(length) >= target.size())
        return failure(qt_error_string(ENAMETOOLONG));
    if (lstat(source.constData(), &status) != 0)
        return systemFailure();
    const Result<Outcome> outcome = outcomeOf(symlink(target.data(), copy.constData()));
    if (outcome == Outcome::Done)
        static_cast<void>(copyTimes(status, copy.constData())); // a link's own time tells nothing about music
    return outcome;
}

Result<> copyTimesAndPermissions(const QString &from, const QString &to)
{
    const QByteArray copy = QFile::encodeName(to);
    struct stat status = {};
    if (stat(QFile::encodeName(from).constData(), &status) != 0)
        return systemFailure();
    // Only the administrator may give a file away, and some file systems keep neither owner nor mode.
    const bool owned = chown(copy.constData(), status.st_uid, status.st_gid) == 0;
    const mode_t mode = status.st_mode & (owned ? 07777U : 0777U);
    static_cast<void>(chmod(copy.constData(), mode));
    if (copyTimes(status, copy.constData()))
        return {};
    return systemFailure();
}

void hideFile([[maybe_unused]] const QString &path)
{
}

Result<> removeFile(const QString &path)
{
    if (unlink(QFile::encodeName(path).constData()) == 0)
        return {};
    return systemFailure();
}

Result<> flushToDisk(QFileDevice &file)
{
    if (!file.flush())
        return failure(file.errorString());
    if (fsync(file.handle()) != 0 && !isUnsupported(errno))
        return systemFailure();
#ifdef POSIX_FADV_DONTNEED
    // Whoever reads the file back to check it wants the disk's answer, not the page cache's.
    posix_fadvise(file.handle(), 0, 0, POSIX_FADV_DONTNEED);
#endif
    return {};
}

void flushFolderToDisk(const QString &folder)
{
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    static_cast<void>(fsync(descriptor));
    close(descriptor);
}

Result<LockOutcome> lockFile(QFileDevice &file, LockKind kind)
{
    int status = 0;
    do {
        status = flock(file.handle(), (kind == LockKind::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB);
    } while (status != 0 && errno == EINTR);
    if (status == 0)
        return LockOutcome::Locked;
    if (errno == EWOULDBLOCK)
        return LockOutcome::Held;
    if (errno == ENOLCK || isUnsupported(errno))
        return LockOutcome::Unsupported;
    return systemFailure();
}

std::optional<Identity> identityOf(const QString &path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return Identity { status.st_dev, status.st_ino, status.st_nlink };
}

std::optional<Status> statusOf(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
#ifdef STATX_ATTR_MOUNT_ROOT
    struct statx status = {};
    if (statx(AT_FDCWD, name.constData(), AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &status) != 0)
        return std::nullopt;
    return Status { .identity = { makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino,
                                  status.stx_nlink },
                    .size = static_cast<qint64>(status.stx_size),
                    .accessed = { status.stx_atime.tv_sec, status.stx_atime.tv_nsec },
                    .modified = { status.stx_mtime.tv_sec, status.stx_mtime.tv_nsec },
                    .isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 };
#else
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return std::nullopt;
    const auto [accessed, modified] = timesOf(status);
    return Status { .identity = { static_cast<quint64>(status.st_dev), status.st_ino, status.st_nlink },
                    .size = status.st_size,
                    .accessed = { accessed.tv_sec, accessed.tv_nsec },
                    .modified = { modified.tv_sec, modified.tv_nsec } };
#endif
}

Result<> setTimes(const QString &path, const Time &accessed, const Time &modified)
{
    const std::array<timespec, 2> times { timespec { accessed.seconds, accessed.nanoseconds },
                                          timespec { modified.seconds, modified.nanoseconds } };
    if (utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times.data(), 0) == 0)
        return {};
    return systemFailure();
}

} // namespace epr::nativefile
