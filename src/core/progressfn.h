// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace epr {

/// Called with (step, total, translated text) on the thread that does the work. May be empty.
using ProgressFn = std::function<void(int step, int total, const QString &text)>;

} // namespace epr
