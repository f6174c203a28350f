// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "folderset.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace epr {

namespace {

// Of what is missing the nearest folder above that exists is resolved; the rest cannot be a link.
FolderIdentity plannedFolder(const QString &folder)
{
    QString existing = QDir::cleanPath(QDir(asSystemReads(folder)).absolutePath());
    QString missing;
    while (!QFileInfo::exists(existing)) {
        const QFileInfo info(existing);
        if (info.path() == existing)
            break;
        missing = u'/' + info.fileName() + missing;
        existing = info.path();
    }
    FolderIdentity found = folderIdentity(existing);
    const QString path = QDir::cleanPath((found.path.isEmpty() ? existing : found.path) + missing);
    return missing.isEmpty() && !found.path.isEmpty() ? found : FolderIdentity { .path = path };
}

} // namespace

FolderSet::FolderSet(const QStringList &folders)
{
    for (const QString &folder : folders)
        m_folders.append(plannedFolder(folder));
}

bool FolderSet::contains(const QString &folder)
{
    if (m_folders.isEmpty())
        return false;
    const FolderIdentity found = plannedFolder(folder);
    Answer &answer = m_known[folder];
    if (!answer.folder.isSameAs(found) || answer.folder.path != found.path)
        answer = { found, isInside(found) };
    return answer.isInside;
}

bool FolderSet::isInside(FolderIdentity inner) const
{
    const auto isInner = [&inner](const FolderIdentity &folder) { return folder.isSameAs(inner); };
    while (std::none_of(m_folders.cbegin(), m_folders.cend(), isInner)) {
        const QString above = QFileInfo(inner.path).path();
        if (above == inner.path)
            return false;
        inner = plannedFolder(above);
    }
    return true;
}

} // namespace epr
