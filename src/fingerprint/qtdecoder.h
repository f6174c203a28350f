// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

class Analyser;
class FingerprintWorker;

/// Decodes a file with the toolkit's decoder into the analyser, which it resets to the file's rate. Blocks in a local
/// event loop. durationMs is overwritten when the decoder knows the file's duration, error when something went wrong;
/// what was fed before that counts.
void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error);

struct QtDecodeLimits {
    qint64 frames = 0;
    int watchdogMs = 0;
};

/// At 48 kHz, whatever the file's rate.
[[nodiscard]] QtDecodeLimits qtDecodeLimits(int seconds);

struct QtDecodeOutcome {
    qint64 frames = 0; ///< decoded
    qint64 durationMs = 0; ///< of the whole file, 0 = the decoder did not say
    QString error; ///< empty on success
};

/// The same with given limits.
[[nodiscard]] QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser);

} // namespace epr
