// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "qtdecoder.h"

#include "analyser.h"
#include "externaltool.h"
#include "filedecoding.h"
#include "fingerprintworker.h"
#include "monosamples.h"

#include <QAudioBuffer>

#include <utility>

namespace epr {

namespace {

constexpr qint64 limitRate = 48000; // Hz

QString errorText(FileDecoding::End end, const QString &error)
{
    switch (end) {
    case FileDecoding::End::Impossible:
        return FingerprintWorker::tr("No audio decoder available");
    case FileDecoding::End::TimedOut:
        return FingerprintWorker::tr("Timed out decoding audio");
    default:
        return error;
    }
}

} // namespace

QtDecodeLimits qtDecodeLimits(int seconds)
{
    return { seconds * limitRate, toolTimeouts(seconds).waitMs };
}

QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser)
{
    QtDecodeOutcome outcome;
    bool isStarted = false;
    const auto take = [&](const QAudioBuffer &buffer) {
        if (!buffer.isValid())
            return true;
        if (!std::exchange(isStarted, true))
            analyser.reset(buffer.format().sampleRate());
        const QList<float> samples = monoSamples(buffer);
        analyser.feed(samples.constData(), samples.size());
        outcome.frames += samples.size();
        return outcome.frames < limits.frames;
    };
    FileDecoding decoding(take, limits.watchdogMs);
    const FileDecoding::End end = decoding.run(path);
    outcome.durationMs = decoding.durationMs();
    outcome.error = errorText(end, decoding.error());
    return outcome;
}

void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error)
{
    const QtDecodeOutcome outcome = decodeWithQt(path, qtDecodeLimits(worker.seconds()), analyser);
    if (outcome.durationMs > 0)
        durationMs = outcome.durationMs;
    if (!outcome.error.isEmpty())
        error = outcome.error;
}

} // namespace epr
