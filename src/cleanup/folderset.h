// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "systempaths.h"

#include <QHash>
#include <QStringList>

namespace epr {

/// Folders with all that is in them, known by whatever path they are reached: links, mounts, other letter case. What
/// cannot be found on the disk is known by its path.
class FolderSet final {
public:
    explicit FolderSet(const QStringList &folders);

    bool isEmpty() const { return m_folders.empty(); }

    /// Whether the folder is one of them or inside one. It need not exist yet. Costs a look at the folder, and when it
    /// is not the one that was found there before, one at each folder above.
    bool contains(const QString &folder);

private:
    bool isInside(FolderIdentity inner) const;

    struct Answer {
        FolderIdentity folder;
        bool isInside = false;
    };

    QList<FolderIdentity> m_folders;
    QHash<QString, Answer> m_known; ///< by path
};

} // namespace epr
