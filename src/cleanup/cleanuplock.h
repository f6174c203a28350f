// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QFile>

namespace epr {

/// The name of the lock in a quarantine folder.
inline constexpr auto quarantineLockName = QLatin1String(".echoprune.lock");

/// Lets one clean-up or undo run at a time: one of a user, by a file beside the undo manifests, and one on a
/// quarantine, by a file in its folder, which also binds other users and machines that share it.
///
/// The locks go with this object, and with the process if that dies. Their files stay: between deleting one and making
/// it anew two programs could hold two files of one name. They say who holds the lock.
class CleanupLock final {
public:
    /// Fails with a sentence for the operator if another program is at work. A quarantine folder that does not exist,
    /// and one whose file system knows no locks, is not locked.
    [[nodiscard]] Result<> take(const QString &quarantineRoot);

    /// The second half alone, for a folder that was only made after take().
    [[nodiscard]] Result<> takeQuarantine(const QString &quarantineRoot);

    /// Whether the user's lock was taken, on a file system that knows locks.
    bool isCertain() const { return m_isCertain; }

private:
    QFile m_user;
    QFile m_quarantine;
    bool m_isCertain = false;
};

} // namespace epr
