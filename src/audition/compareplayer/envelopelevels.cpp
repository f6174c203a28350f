// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "envelopelevels.h"

namespace epr {

StereoLevels levelsAt(const Envelope &envelope, qint64 positionMs)
{
    const qsizetype bucket = positionMs / Envelope::bucketMs;
    if (positionMs < 0 || bucket >= envelope.left.size() || bucket >= envelope.right.size())
        return {};
    return { envelope.left.at(bucket), envelope.right.at(bucket) };
}

} // namespace epr
