// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

namespace epr {

class Patience;
class TraceNotes;

enum class MoveOutcome {
    Moved,
    Occupied, ///< something has the new name; nothing was changed
};

/// Whether anything has that name, a symbolic link that leads nowhere included.
bool entryExists(const QString &path);

/// Makes a folder with all that are missing above it, and those that it made go again if one cannot be made.
[[nodiscard]] Result<> makeFolders(const QString &folder);

/// Moves one file, or a symbolic link as such, to another absolute path and makes the folders that are missing there.
///
/// Nothing is ever replaced. On another file system the file is copied beside its new name, read back and compared by
/// digest, flushed to the disk and put in place before the original is removed; modification time and permissions are
/// kept. A move that failed, with the system's reason, leaves the file where it was and no part of it anywhere else;
/// folders made for it are removed again.
///
/// What would be left if the program were killed meanwhile is noted first. A file that is in use gets some patience.
[[nodiscard]] Result<MoveOutcome> moveFile(const QString &from, const QString &to, TraceNotes &notes,
                                           Patience &patience);

} // namespace epr
