// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <string>

class QFileInfo;

namespace epr {

// What the operating system makes of a path: two spellings may be one folder, and a name may be read as another.

/// The path as the system reads it. Windows takes full stops and spaces off the end of a name, and some names for
/// devices; Qt follows it, although with the prefix of longPath() there are such files. Elsewhere the path itself.
QString asSystemReads(const QString &path);

#ifdef Q_OS_WIN
/// The path for a function of Windows, read as Qt reads it, with the prefix that lifts the limit of 260 characters.
std::wstring longPath(const QString &path);
#endif

/// A folder as the system knows it, by whatever path it was reached: through links, mounts, another drive letter, the
/// name of a share, or in other letter case.
struct FolderIdentity {
    QString path; ///< the system's own spelling, links resolved; empty if there is no such folder
    quint64 volume = 0;
    quint64 index = 0; ///< on the volume; 0 if the file system does not number folders
    qint64 made = 0; ///< a time: shares that span several disks give one number to a folder of each
    bool hasOnePath = false; ///< no other path leads there: it is no alias, and a copied disk has the same numbers

    [[nodiscard]] bool isSameAs(const FolderIdentity &other) const
    {
        if (path == other.path)
            return !path.isEmpty();
        return index != 0 && index == other.index && volume == other.volume && made == other.made
            && !(hasOnePath && other.hasOnePath);
    }
};

/// Also tells the resolved path of a file. Costs a few calls to the system, on a network drive a few journeys.
FolderIdentity folderIdentity(const QString &path);

/// Whether the folder is a link to another one: a symbolic link or a junction. A place where a volume is mounted is
/// not.
bool isFolderLink(const QFileInfo &folder);

} // namespace epr
