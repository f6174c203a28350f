// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

/// Name of an ID3v1 genre number; empty when the number is not from 0 to 83.
[[nodiscard]] QString id3Genre(int number);

} // namespace epr
