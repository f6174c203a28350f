// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

namespace epr {

/// What a reader learned about one audio file.
struct ProbeResult {
    Tags tags;
    StreamFacts stream;
    QString format; ///< container or codec name for the operator
    qint64 audioOffset = 0; ///< first byte of the audio payload
    qint64 audioLength = 0; ///< bytes
    bool audioRangeValid = false; ///< audioOffset and audioLength delimit a payload that is not empty

    bool operator==(const ProbeResult &) const = default;
};

} // namespace epr
