// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

namespace epr {

struct ToolTimeouts;

/// Looks for the tool anew: EPR_FFMPEG, beside the program, the search path. Empty when there is none.
[[nodiscard]] QString findFfmpeg();

/// What findFfmpeg() found when the process first asked. Safe to call from any thread.
[[nodiscard]] QString ffmpegPath();
[[nodiscard]] bool hasFfmpeg();

/// Decodes the first seconds of a file, all of it when seconds is below 1, to mono samples at sampleRate Hz. True on
/// success, with error empty and durationMs that of the samples; on failure only error is set. Blocks the thread.
[[nodiscard]] bool decodeWithFfmpeg(const QString &path, int sampleRate, int seconds, QList<float> &samples,
                                    qint64 &durationMs, QString &error);

struct DecodeRequest {
    QString path;
    int sampleRate = 0; ///< Hz
    int seconds = 0; ///< below 1 = the whole file
};

struct DecodedAudio {
    QList<float> samples; ///< nominally -1 to 1; empty on failure
    QString error; ///< empty on success
};

/// The same with a given tool and given patience.
[[nodiscard]] DecodedAudio decodeWithFfmpegTool(const QString &tool, const DecodeRequest &request,
                                                const ToolTimeouts &timeouts);

} // namespace epr
