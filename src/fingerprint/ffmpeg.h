// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QList>

namespace epr {

struct ToolTimeouts;

/// Looks for the tool anew: EPR_FFMPEG, beside the program, the search path. Empty when there is none.
QString findFfmpeg();

/// What findFfmpeg() found when the process first asked. Safe to call from any thread.
QString ffmpegPath();
bool hasFfmpeg();

/// Decodes the first seconds of a file, all of it when seconds is below 1, to mono samples at sampleRate Hz. True on
/// success, with error empty and durationMs that of the samples; on failure only error is set. Blocks the thread.
[[nodiscard]] bool decodeWithFfmpeg(const QString &path, int sampleRate, int seconds, QList<float> &samples,
                                    qint64 &durationMs, QString &error);

struct DecodeRequest {
    QString path;
    int sampleRate = 0; ///< Hz
    int seconds = 0; ///< below 1 = the whole file
};

/// The same with a given tool and given patience; the samples, nominally -1 to 1.
Result<QList<float>> decodeWithFfmpegTool(const QString &tool, const DecodeRequest &request,
                                          const ToolTimeouts &timeouts);

} // namespace epr
