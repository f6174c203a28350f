// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "quarantinepath.h"

#include <QDir>
#include <QFileInfo>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString relativeDestination(const QString &path, const QStringList &scanRoots)
{
    for (const QString &root : scanRoots) {
        const QDir folder(QDir::cleanPath(QDir(root).absolutePath()));
        const QString relative = folder.relativeFilePath(path);
        if (!relative.startsWith(".."_L1) && QDir::isRelativePath(relative))
            return folder.dirName() + u'/' + relative; // the top of a drive has no name
    }
    return QFileInfo(path).fileName();
}

} // namespace

QString quarantineDestination(const QString &path, const QString &runFolder, const QStringList &scanRoots)
{
    const QString inside = runFolder + u'/';
    const QString destination = QDir::cleanPath(inside + relativeDestination(path, scanRoots));
    return destination.startsWith(inside) ? destination : inside + QFileInfo(path).fileName();
}

QString numberedPath(const QString &path, int number)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    const QString name = u"%1 (%2)%3"_s.arg(info.completeBaseName(), QString::number(number), suffix);
    return info.path() + u'/' + name;
}

} // namespace epr
