// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace epr {

/// Where in the run folder a file goes: below the name of the first scan root that holds it, or under its bare name.
/// The answer never leads out of the run folder.
[[nodiscard]] QString quarantineDestination(const QString &path, const QString &runFolder,
                                            const QStringList &scanRoots);

/// "folder/name (2).mp3" for "folder/name.mp3".
[[nodiscard]] QString numberedPath(const QString &path, int number);

} // namespace epr
