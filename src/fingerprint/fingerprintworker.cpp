// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fingerprintworker.h"

#include "analyser.h"
#include "ffmpeg.h"
#include "fpcalc.h"
#include "qtdecoder.h"

namespace epr {

FingerprintWorker::FingerprintWorker(int seconds, bool preferFpcalc)
    : m_seconds(seconds)
    , m_preferFpcalc(preferFpcalc)
{
}

void FingerprintWorker::process(int id, const QString &path)
{
    FingerprintResult result = m_preferFpcalc && hasFpcalc() ? runTool(path) : analyse(path);
    if (result.fingerprint.words.isEmpty() && result.error.isEmpty())
        result.error = tr("No decodable audio found");
    Q_EMIT completed(id, result);
}

// A file that fails here stays failed: fingerprints of the two engines cannot be compared with each other.
FingerprintResult FingerprintWorker::runTool(const QString &path) const
{
    const FpcalcResult tool = runFpcalc(path, m_seconds);
    FingerprintResult result;
    result.fingerprint.words = tool.fingerprint;
    result.durationMs = tool.durationMs;
    result.error = tool.error;
    return result;
}

FingerprintResult FingerprintWorker::analyse(const QString &path) const
{
    FingerprintResult result;
    Analyser analyser;
    QList<float> samples;
    QString error;
    if (decodeWithFfmpeg(path, analysisRate, m_seconds, samples, result.durationMs, error))
        analyser.feed(samples.constData(), samples.size());
    else
        decodeWithQt(*this, analyser, path, result.durationMs, error);
    result.fingerprint.words = analyser.main().words();
    result.fingerprint.mask = analyser.main().masks();
    result.fingerprint.alternative = analyser.alternative().words();
    result.fingerprint.alternativeMask = analyser.alternative().masks();
    if (result.fingerprint.words.isEmpty())
        result.error = error;
    return result;
}

} // namespace epr
