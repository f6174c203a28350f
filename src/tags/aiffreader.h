// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

class QIODevice;

namespace epr {

/// AIFF and AIFF-C: the common chunk, name, author and the "SSND" chunk, which holds the payload. False when the
/// duration stays unknown.
[[nodiscard]] bool readAiff(QIODevice &device, ProbeResult &result);

} // namespace epr
