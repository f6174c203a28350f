// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "undomanifest.h"

namespace epr {

/// Reads a manifest as it stands in its file, without its journal, in memory that does not grow with its length: the
/// entries are handed over one by one, whichever keys come before or after them, and the result has none. Fails if the
/// file is not whole, which may show only after the last entry.
[[nodiscard]] Result<UndoManifest> parseManifest(const QString &path, const ManifestEntryFn &each);

} // namespace epr
