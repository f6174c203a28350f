// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "folderlisting.h"

#include "systempaths.h"

#include <QDir>
#include <QFile>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#endif

namespace epr {

FolderListing::FolderListing(WantedNames wanted)
    : m_wanted(std::move(wanted))
{
}

bool FolderListing::isWantedFile(const QString &name, qint64 size, const QString &folder) const
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot >= 0 && m_wanted.extensions.contains(name.sliced(dot + 1).toLower()) && size >= m_wanted.minBytes
        && !m_wanted.isExcluded(folder + u'/' + name);
}

#ifdef Q_OS_WIN

Result<> FolderListing::read(const QString &folder)
{
    std::wstring pattern = longPath(folder);
    pattern += pattern.ends_with(L'\\') ? L"*" : L"\\*";
    WIN32_FIND_DATAW entry;
    const HANDLE listing = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr,
                                            FIND_FIRST_EX_LARGE_FETCH);
    for (bool isThere = listing != INVALID_HANDLE_VALUE; isThere; isThere = FindNextFileW(listing, &entry)) {
        const QString name = QString::fromWCharArray(entry.cFileName);
        const qint64 size = (qint64 { entry.nFileSizeHigh } << 32) | entry.nFileSizeLow;
        const bool isHidden = (entry.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && (m_wanted.includeHidden || !isHidden)
            && isWantedFile(name, size, folder)) {
            addIfDevice(name, folder);
        }
    }
    const DWORD error = GetLastError();
    if (listing != INVALID_HANDLE_VALUE)
        FindClose(listing);
    if (error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND) // the latter for an empty drive
        return {};
    return failure(qt_error_string(static_cast<int>(error)));
}

// Qt says that there is no such file.
void FolderListing::addIfDevice(const QString &name, const QString &folder)
{
    const QString path = QDir(folder).filePath(name);
    if (asSystemReads(path) == path)
        return;
    const FolderIdentity parent = folderIdentity(folder);
    m_unusable.insert({ parent.volume, qHash(name, parent.index) });
}

// Sizes come with the listing, so that there is nothing more to reach.
Result<> reachEntry(const QString &)
{
    return {};
}

#else

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

} // namespace

Result<> FolderListing::read(const QString &folder)
{
    const std::unique_ptr<DIR, CloseFolder> listing(opendir(QFile::encodeName(folder).constData()));
    if (!listing)
        return failure(qt_error_string(errno));
    while (true) {
        errno = 0; // which alone tells the end from an error
        const dirent *entry = readdir(listing.get());
        if (!entry)
            break;
        const QByteArray name(entry->d_name);
        if (!name.isValidUtf8())
            addUndecodable(dirfd(listing.get()), name, folder);
    }
    if (errno != 0)
        return failure(qt_error_string(errno));
    return {};
}

// Qt leaves such entries out of every listing.
void FolderListing::addUndecodable(int folderDescriptor, const QByteArray &name, const QString &folder)
{
    if (name.startsWith('.') && !m_wanted.includeHidden)
        return;
    struct stat entry = {};
    struct stat target = {};
    if (fstatat(folderDescriptor, name.constData(), &entry, AT_SYMLINK_NOFOLLOW) != 0
        || fstatat(folderDescriptor, name.constData(), &target, 0) != 0) {
        return;
    }
    const bool wantedFolder = S_ISDIR(target.st_mode) && (m_wanted.followSymlinks || !S_ISLNK(entry.st_mode));
    if (wantedFolder || (S_ISREG(target.st_mode) && isWantedFile(QString::fromUtf8(name), target.st_size, folder)))
        m_unusable.insert({ target.st_dev, target.st_ino });
}

Result<> reachEntry(const QString &path)
{
    struct stat entry = {};
    if (lstat(QFile::encodeName(path).constData(), &entry) == 0 || errno == ENOENT)
        return {};
    return failure(qt_error_string(errno));
}

#endif

} // namespace epr
