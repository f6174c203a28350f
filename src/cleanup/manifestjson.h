// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "undomanifest.h"

class QJsonObject;
class QJsonValue;

namespace epr {

[[nodiscard]] QJsonObject toJson(const ManifestEntry &entry);
[[nodiscard]] QJsonObject toJson(const UndoManifest &manifest);

/// Anything that is not an object with two path texts gives an entry with empty paths.
[[nodiscard]] ManifestEntry entryFromJson(const QJsonValue &value);

} // namespace epr
