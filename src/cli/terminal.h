// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr::terminal {

/// Whether standard error is a terminal, where a line that rewrites itself makes sense.
[[nodiscard]] bool errorIsTerminal();

/// Makes the console show UTF-8; needed on Windows only.
void useUtf8();

/// The text with control characters written as \xNN, so that a file name can neither break a line nor send the
/// terminal a command.
[[nodiscard]] QString printable(const QString &text);

} // namespace epr::terminal
