// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

/// Compares dotted versions part by part from the left: negative, zero or positive as a is older than, equal to or
/// newer than b. Missing parts count as 0; of a part that is not a number its leading digits count, and without any it
/// is 0. Parts may have any number of digits.
[[nodiscard]] int compareVersions(QStringView a, QStringView b);

/// The version on one line and short enough for a button: whatever a server calls its version, the layout holds.
[[nodiscard]] QString displayVersion(const QString &version);

} // namespace epr
