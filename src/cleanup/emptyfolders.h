// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace epr {

/// Folders that are empty now and held one of the files that were removed, or nothing but such folders, the deepest
/// first. Only folders below a root and in no protected folder, and neither these themselves nor links.
QStringList foldersLeftEmpty(const QStringList &removedPaths, const QStringList &roots,
                             const QStringList &protectedFolders);

/// Removes each that is empty still, in this order, and returns those that have gone.
QStringList removeEmptyFolders(const QStringList &folders);

} // namespace epr
