// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "externaltool.h"

#include <QList>

class QAudioBuffer;

namespace epr {

class Analyser;
class FingerprintWorker;

/// Looks for the tool anew: EPR_FFMPEG, beside the program, the search path. Empty when there is none.
QString findFfmpeg();

/// What findFfmpeg() found when the process first asked. Safe to call from any thread.
QString ffmpegPath();
bool hasFfmpeg();

/// What ffmpeg is told about a file that it shall read: to open nothing else, and to say of errors alone.
QStringList ffmpegInput(const QString &path);

/// Decodes the first seconds of a file, all of it when seconds is below 1, to mono samples at sampleRate Hz. True on
/// success, with error empty and durationMs that of the samples; on failure only error is set, and hasRefused when it
/// was ffmpeg itself that found no audio in the file. Blocks the thread.
[[nodiscard]] bool decodeWithFfmpeg(const QString &path, int sampleRate, int seconds, QList<float> &samples,
                                    qint64 &durationMs, QString &error, bool *hasRefused = nullptr);

struct DecodeRequest {
    QString path;
    int sampleRate = 0; ///< Hz
    int seconds = 0; ///< below 1 = the whole file
};

/// The same with a given tool and given patience; the samples, nominally -1 to 1.
[[nodiscard]] tl::expected<QList<float>, ToolFailure>
decodeWithFfmpegTool(const QString &tool, const DecodeRequest &request, const ToolTimeouts &timeouts);

/// Decodes a file with Qt's decoder into the analyser, which it resets to the file's rate. Blocks in a local
/// event loop. durationMs is overwritten when the decoder knows the file's duration, error when something went wrong;
/// what was fed before that counts.
void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error);

struct QtDecodeLimits {
    qint64 frames = 0;
    int watchdogMs = 0;
};

/// At 48 kHz, whatever the file's rate.
QtDecodeLimits qtDecodeLimits(int seconds);

struct QtDecodeOutcome {
    qint64 frames = 0; ///< decoded
    qint64 durationMs = 0; ///< of the whole file, 0 = the decoder did not say
    QString error; ///< empty on success
};

/// The same with given limits.
QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser);

/// The samples of a buffer, -1 to 1, the channels in turn. Empty for a sample format that is not known here.
QList<float> interleavedSamples(const QAudioBuffer &buffer);

/// Mixes interleaved samples of a buffer down to mono, -1 to 1: the mean of the channels. Empty when the buffer has no
/// frames or a sample format that is not known here.
QList<float> monoSamples(const QAudioBuffer &buffer);

} // namespace epr
