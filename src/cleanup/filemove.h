// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

enum class MoveOutcome {
    Moved,
    Occupied, ///< something has the new name; nothing was changed
    Failed, ///< the file is where it was, and no part of it anywhere else
};

/// Whether anything has that name, a symbolic link that leads nowhere included.
[[nodiscard]] bool entryExists(const QString &path);

/// Moves one file, or a symbolic link as such, to another absolute path and makes the folders that are missing there.
///
/// Nothing is ever replaced. On another file system the file is copied beside its new name, read back and compared by
/// digest, flushed to the disk and put in place before the original is removed; modification time and permissions are
/// kept. Folders made for a move that failed are removed again.
[[nodiscard]] MoveOutcome moveFile(const QString &from, const QString &to);

} // namespace epr
