// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "undecodablenames.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace epr {

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

QString extensionOf(const QByteArray &name)
{
    const qsizetype dot = name.lastIndexOf('.');
    return dot < 0 ? QString() : QString::fromUtf8(name.sliced(dot + 1)).toLower();
}

} // namespace

UndecodableNames::UndecodableNames(WantedNames wanted)
    : m_wanted(std::move(wanted))
{
}

void UndecodableNames::addFolder(const QString &folder)
{
    const std::unique_ptr<DIR, CloseFolder> listing(opendir(QFile::encodeName(folder).constData()));
    if (!listing)
        return;
    while (const dirent *entry = readdir(listing.get())) {
        const QByteArray name(entry->d_name);
        if (!name.isValidUtf8())
            addEntry(dirfd(listing.get()), name, folder);
    }
}

void UndecodableNames::addEntry(int folderDescriptor, const QByteArray &name, const QString &folder)
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
    const bool wantedFile = S_ISREG(target.st_mode) && m_wanted.extensions.contains(extensionOf(name))
        && target.st_size >= m_wanted.minBytes && !m_wanted.isExcluded(folder + u'/' + QString::fromUtf8(name));
    if (wantedFolder || wantedFile)
        m_seen.insert({ target.st_dev, target.st_ino });
}

} // namespace epr
