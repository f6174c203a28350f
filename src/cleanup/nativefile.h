// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <functional>
#include <optional>

class QFileDevice;

/// What Qt cannot promise about files, asked of the operating system itself. Paths are absolute. A symbolic link is
/// taken as the link, never as its target, unless said otherwise. What fails does so with the system's reason.
namespace epr::nativefile {

enum class Outcome {
    Done,
    Occupied, ///< something has the new name already; nothing was changed
    OtherDevice, ///< the new name lies on another file system; nothing was changed
};

/// Gives a file another name in one step. Whatever has that name already stays, also when it appeared a moment ago.
/// Some file systems leave no way but two steps, the first of which takes the name by an empty file; beforePlaceholder
/// is called before.
[[nodiscard]] Result<Outcome> renameWithoutReplacing(const QString &from, const QString &to,
                                                     const std::function<void()> &beforePlaceholder);

/// Fails also if something has that name already.
[[nodiscard]] Result<> makeFolder(const QString &path);

/// Fails if the system does not say, where a link that is taken for its target would be moved with what it leads to.
[[nodiscard]] Result<bool> isSymbolicLink(const QString &path);

/// Makes a symbolic link with the very target text and times of an existing one. Never replaces anything.
[[nodiscard]] Result<Outcome> copySymbolicLink(const QString &from, const QString &to);

/// Gives the file at to the modification time of the one at from, to the full precision of the file system, and as far
/// as possible its permissions. Fails if the time could not be set.
[[nodiscard]] Result<> copyTimesAndPermissions(const QString &from, const QString &to);

/// Takes a file out of sight where a leading full stop in its name does not do that, until
/// copyTimesAndPermissions() gives it the look of another one.
void hideFile(const QString &path);

/// Removes one file, also a write-protected one where the system makes a difference.
[[nodiscard]] Result<> removeFile(const QString &path);

/// Waits until the file's content is on the disk and would survive a power cut.
[[nodiscard]] Result<> flushToDisk(QFileDevice &file);

/// The same for the names in a folder, as far as the system offers it.
void flushFolderToDisk(const QString &folder);

enum class LockOutcome {
    Locked,
    Held, ///< by another program, or by another opening of the file in this one
    Unsupported, ///< the file system knows no locks
};

enum class LockKind {
    Exclusive,
    Shared, ///< any number of them at a time
};

/// Takes the system's own lock on an open file without waiting for it. It lasts until the file is closed or the process
/// ends, however it ends. What the file holds can be read by everybody meanwhile.
[[nodiscard]] Result<LockOutcome> lockFile(QFileDevice &file, LockKind kind = LockKind::Exclusive);

/// The file behind a path, whatever path leads to it.
struct Identity {
    quint64 volume = 0;
    quint64 index = 0;
    quint64 links = 0; ///< names that the file has on its volume

    bool operator==(const Identity &) const = default;
};

/// Follows symbolic links. Nothing if there is no file or its file system does not tell files apart.
std::optional<Identity> identityOf(const QString &path);

/// A moment to the full precision of the file system: seconds since 1970 and what is beyond them.
struct Time {
    qint64 seconds = 0;
    qint64 nanoseconds = 0;

    bool operator==(const Time &) const = default;
};

struct Status {
    Identity identity; ///< index 0 if the file system does not tell files apart
    qint64 size = 0; ///< bytes
    Time accessed;
    Time modified;
    bool isMountPoint = false; ///< the file was put over another one's name; false if the system does not say
};

/// Asks the file system itself, past what a network drive or another program that serves files left in the system's
/// memory. Follows symbolic links.
std::optional<Status> statusOf(const QString &path);

/// Takes both times, because some programs that serve files lose the one when told to leave it. Needs the right of the
/// file's owner. Follows symbolic links.
[[nodiscard]] Result<> setTimes(const QString &path, const Time &accessed, const Time &modified);

} // namespace epr::nativefile
