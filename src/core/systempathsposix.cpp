// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "systempaths.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif

namespace epr {

namespace {

constexpr qint64 nanosecondsPerSecond = 1000000000;

#ifdef STATX_BTIME

// A time of change, for want of the other, sets a folder apart from itself if it changes between two looks.
void addNumbers(FolderIdentity &identity)
{
    struct statx status = {};
    if (statx(AT_FDCWD, QFile::encodeName(identity.path).constData(), 0, STATX_INO | STATX_MTIME | STATX_BTIME, &status)
        != 0) {
        return;
    }
    const statx_timestamp &made = (status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime;
    identity.volume = makedev(status.stx_dev_major, status.stx_dev_minor);
    identity.index = status.stx_ino;
    identity.made = made.tv_sec * nanosecondsPerSecond + made.tv_nsec;
}

#else

void addNumbers(FolderIdentity &identity)
{
    struct stat status = {};
    if (stat(QFile::encodeName(identity.path).constData(), &status) != 0)
        return;
    identity.volume = static_cast<quint64>(status.st_dev);
    identity.index = status.st_ino;
    identity.made = qint64 { status.st_mtime } * nanosecondsPerSecond;
}

#endif

} // namespace

QString asSystemReads(const QString &path)
{
    return path;
}

FolderIdentity folderIdentity(const QString &path)
{
    FolderIdentity identity { .path = QFileInfo(path).canonicalFilePath() };
    if (!identity.path.isEmpty())
        addNumbers(identity);
    return identity;
}

bool isFolderLink(const QFileInfo &folder)
{
    return folder.isSymLink();
}

} // namespace epr
