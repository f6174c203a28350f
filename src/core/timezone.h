// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace epr {

/// Keeps the C library from looking at the time zone's file again for every time that is converted, which for a scan of
/// many files is half the cost of learning their times. A zone that changes later is noticed at the next start. To be
/// called before the first thread; does something with the GNU C library only, and only where TZ is not set.
void rememberTimeZone();

} // namespace epr
