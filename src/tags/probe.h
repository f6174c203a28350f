// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

namespace epr {

/// Reads tags, technical properties and the payload range of the file at path into result, which the caller passes
/// in its default state. The reader is chosen by the extension alone; a file with an extension that has no reader
/// succeeds with nothing but a format name. On false a message is written to error, unless one stands there already,
/// and result holds what was read before the failure. Re-entrant.
[[nodiscard]] bool probeFile(const QString &path, ProbeResult &result, QString *error = nullptr);

/// True for an extension that has a reader. Case-sensitive: pass the suffix in lower case, without the dot.
[[nodiscard]] bool isReadableExtension(const QString &suffix);

} // namespace epr
