// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "emptyfolders.h"

#include "folderset.h"
#include "systempaths.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

namespace epr {

namespace {

/// Whether it has nothing in it but the folders given. A folder that cannot be listed looks as if it were empty.
bool holdsOnly(const QString &folder, const QSet<QString> &others)
{
    const QFileInfo info(folder);
    if (!info.isDir() || !info.isReadable() || isFolderLink(info))
        return false;
    const QDir dir(folder);
    const QStringList names =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    return std::ranges::all_of(names, [&](const QString &name) { return others.contains(dir.filePath(name)); });
}

bool isOneOf(const QString &folder, const QStringList &roots)
{
    const FolderIdentity identity = folderIdentity(folder);
    return std::ranges::any_of(roots,
                               [&identity](const QString &root) { return folderIdentity(root).isSameAs(identity); });
}

} // namespace

QStringList foldersLeftEmpty(const QStringList &removedPaths, const QStringList &roots,
                             const QStringList &protectedFolders)
{
    std::set<std::pair<qsizetype, QString>, std::greater<>> toLookAt; // the longest path is no folder's parent
    const auto lookAt = [&toLookAt](const QString &folder) { toLookAt.emplace(folder.size(), folder); };
    for (const QString &path : removedPaths)
        lookAt(QFileInfo(path).path());
    FolderSet library(roots);
    FolderSet locked(protectedFolders);
    QStringList empty;
    QSet<QString> found;
    while (!toLookAt.empty()) {
        const QString folder = toLookAt.extract(toLookAt.begin()).value().second;
        if (!holdsOnly(folder, found) || !library.contains(folder) || isOneOf(folder, roots) || locked.contains(folder))
            continue;
        empty.append(folder);
        found.insert(folder);
        lookAt(QFileInfo(folder).path());
    }
    return empty;
}

QStringList removeEmptyFolders(const QStringList &folders)
{
    QStringList gone;
    for (const QString &folder : folders) {
        if (!isFolderLink(QFileInfo(folder)) && QDir().rmdir(folder)) // which removes nothing that holds anything
            gone.append(folder);
    }
    return gone;
}

} // namespace epr
