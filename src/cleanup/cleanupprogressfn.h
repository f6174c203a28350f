// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace epr {

/// Called before each file with its number from 0, the number of files and its path, on the thread that does the work.
/// False stops before that file. May be empty.
using CleanupProgressFn = std::function<bool(qsizetype index, qsizetype total, const QString &path)>;

} // namespace epr
