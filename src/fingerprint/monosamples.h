// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

class QAudioBuffer;

namespace epr {

/// Mixes interleaved samples of a buffer down to mono, -1 to 1: the mean of the channels. Empty when the buffer has no
/// frames or a sample format that is not known here.
[[nodiscard]] QList<float> monoSamples(const QAudioBuffer &buffer);

} // namespace epr
