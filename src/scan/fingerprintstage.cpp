// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanstages.h"

#include "decoding.h"
#include "displaytext.h"
#include "fingerprintpool.h"
#include "fpcalc.h"
#include "libraryfiles.h"
#include "textfile.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrentFilter>

#include <utility>

namespace epr {

namespace {

constexpr int flagPauseMs = 50; // between two looks at the flags
constexpr int namedFiles = 100; // that could not be decoded, in the log

QList<FingerprintJob> fingerprintJobs(const QList<TrackInfo> &tracks, FingerprintEngine engine)
{
    QList<FingerprintJob> jobs;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        if (!hasCompleteFingerprint(tracks.at(i), engine))
            jobs.append({ static_cast<int>(i), tracks.at(i).path, tracks.at(i).stream.durationMs });
    }
    return jobs;
}

// A decoder follows a playlist or manifest to the file that it names. The text would pass for a copy of that, perhaps
// even for the one to keep, so it is not compared by sound. It is not cached, having an error.
void leaveOutTexts(QList<TrackInfo> &tracks, QList<FingerprintJob> &jobs, const StageContext &context)
{
    QThreadPool pool;
    const QList<FingerprintJob> texts = QtConcurrent::blockingFiltered(&pool, jobs, [&context](const auto &job) {
        context.waitWhilePaused();
        return !context.isCancelled() && looksLikeText(job.path);
    });
    if (texts.isEmpty())
        return;
    QSet<int> ids;
    for (const FingerprintJob &text : texts) {
        TrackInfo &track = tracks[text.id];
        track.analysed = false;
        track.error = QCoreApplication::translate("epr::ScanController", "Text, not audio: not compared by sound");
        ids.insert(text.id);
    }
    jobs.removeIf([&ids](const FingerprintJob &job) { return ids.contains(job.id); });
    context.log(QCoreApplication::translate("epr::ScanController",
                                            "%n file(s) are text and not audio. They are still checked by hash.",
                                            nullptr, static_cast<int>(texts.size())));
}

// A record whose fingerprint failed is not cached, because it has an error, so the next scan tries again.
void applyFingerprint(const FingerprintResult &result, TrackInfo &track)
{
    track.fingerprint = result.fingerprint;
    track.flags &= ~quint64(TrackFromCache); // which does not hold this
    if (track.stream.durationMs < 1 && result.durationMs > 0) {
        track.stream.durationMs = result.durationMs;
        track.stream.durationIsGuess = result.durationIsGuess;
        track.flags &= ~quint64(TrackKeysFromCache); // the same row says what is a guess
    }
    if (result.error.isEmpty())
        track.analysed = true;
    else if (track.error.isEmpty())
        track.error = result.error;
}

struct FingerprintCounts {
    int failed = 0;
    QStringList failures; ///< which files they were and why; the first hundred
    int shorter = 0; ///< than the analysed length, by what fpcalc says
};

// Runs the jobs of a pool, which reports on this thread, so that its handlers may write into the tracks. What files of
// one content sound like is found out once.
class FingerprintRun final {
public:
    FingerprintRun(QList<TrackInfo> &tracks, const ScanOptions &options, const StageContext &context)
        : m_tracks(tracks)
        , m_options(options)
        , m_context(context)
        , m_pool(options.decoderThreads, options.fingerprintSeconds,
                 options.fingerprintEngine == FingerprintEngine::Fpcalc)
    {
    }

    FingerprintCounts run(const QList<FingerprintJob> &jobs);

private:
    void connectPool();
    void setCopiesAside(const QList<FingerprintJob> &jobs);
    QList<FingerprintJob> finishCopies();
    void take(int id, const FingerprintResult &result);
    void report();

    QList<TrackInfo> &m_tracks;
    const ScanOptions &m_options;
    const StageContext &m_context;
    FingerprintPool m_pool;
    QList<FingerprintJob> m_originals;
    QList<std::pair<FingerprintJob, int>> m_copies; // with the original's id
    QHash<int, FingerprintResult> m_results; // of originals that have copies and could be decoded
    FingerprintCounts m_counts;
    int m_done = 0;
    int m_total = 0;
};

FingerprintCounts FingerprintRun::run(const QList<FingerprintJob> &jobs)
{
    m_total = static_cast<int>(jobs.size());
    setCopiesAside(jobs);
    connectPool();
    QTimer flagWatch; // a file may take a minute to report
    QObject::connect(&flagWatch, &QTimer::timeout, &m_pool, [this] {
        if (m_context.isCancelled())
            m_pool.cancel();
        m_pool.setPaused(m_context.isPaused());
    });
    m_pool.setPaused(m_context.isPaused());
    flagWatch.start(flagPauseMs);
    m_pool.run(m_originals);
    m_pool.run(finishCopies());
    return m_counts;
}

void FingerprintRun::connectPool()
{
    QObject::connect(
        &m_pool, &FingerprintPool::completed, &m_pool,
        [this](int id, const FingerprintResult &result) {
            if (m_results.contains(id) && result.error.isEmpty())
                m_results[id] = result;
            take(id, result);
        },
        Qt::DirectConnection);
    QObject::connect(
        &m_pool, &FingerprintPool::progress, &m_pool,
        [this] {
            report();
            m_pool.setPaused(m_context.isPaused()); // before it hands out the next file
        },
        Qt::DirectConnection);
}

// Decoders go by the ending of the name as well.
void FingerprintRun::setCopiesAside(const QList<FingerprintJob> &jobs)
{
    QHash<std::pair<QString, QString>, int> originals;
    for (const FingerprintJob &job : jobs) {
        const TrackInfo &track = m_tracks.at(job.id);
        int original = job.id;
        if (!track.fullHash.isEmpty()) {
            const std::pair content(track.fullHash, track.suffix);
            original = originals.value(content, job.id);
            originals.insert(content, original);
        }
        if (original == job.id) {
            m_originals.append(job);
        } else {
            m_copies.append({ job, original });
            m_results.insert(original, {});
        }
    }
}

// Returns the copies that have to be decoded themselves: the original failed, and says so in words of its own, or is no
// longer the file that was found to be the same.
QList<FingerprintJob> FingerprintRun::finishCopies()
{
    QList<FingerprintJob> left;
    for (const auto &[job, original] : std::as_const(m_copies)) {
        m_context.waitWhilePaused();
        if (m_context.isCancelled())
            return {};
        const FingerprintResult &result = m_results[original];
        const TrackInfo &source = m_tracks.at(original);
        const TrackInfo now = measureFile(source.path);
        if (result.fingerprint.words.isEmpty() || now.size != source.size || now.mtime != source.mtime) {
            left.append(job);
            continue;
        }
        take(job.id, result);
        report();
    }
    return left;
}

void FingerprintRun::take(int id, const FingerprintResult &result)
{
    TrackInfo &track = m_tracks[id];
    applyFingerprint(result, track);
    if (!result.error.isEmpty()) {
        if (++m_counts.failed <= namedFiles)
            m_counts.failures.append(QCoreApplication::translate("epr::ScanController", "Could not decode %1: %2")
                                         .arg(nativePath(track.path), result.error.simplified()));
    } else if (m_options.fingerprintEngine == FingerprintEngine::Fpcalc && result.durationMs > 0
               && result.durationMs < m_options.fingerprintSeconds * qint64 { 1000 })
        ++m_counts.shorter;
}

void FingerprintRun::report()
{
    ++m_done;
    m_context.progress(
        m_done, m_total,
        QCoreApplication::translate("epr::ScanController", "Fingerprinted %1 of %2").arg(m_done).arg(m_total));
}

void logFingerprinting(qsizetype files, const ScanOptions &options, const StageContext &context)
{
    const bool byFpcalc = options.fingerprintEngine == FingerprintEngine::Fpcalc;
    const QString engine = byFpcalc
        ? QCoreApplication::translate("epr::ScanController", "Chromaprint fpcalc (%1)").arg(nativePath(fpcalcPath()))
        : hasFfmpeg() ? QCoreApplication::translate("epr::ScanController", "built-in analysis, ffmpeg decode")
                      : QCoreApplication::translate("epr::ScanController", "built-in analysis, Qt decode");
    context.log(
        QCoreApplication::translate("epr::ScanController", "Fingerprinting %1 file(s) on %2 thread(s) using %3.")
            .arg(files)
            .arg(options.decoderThreads)
            .arg(engine));
    if (!byFpcalc) {
        context.log(QCoreApplication::translate(
            "epr::ScanController",
            "Tip: installing Chromaprint's fpcalc and putting it on the PATH makes fingerprinting several "
            "times faster and more accurate."));
    }
}

} // namespace

QList<TrackInfo> fingerprintFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context)
{
    if (context.isCancelled() || !options.detectAcoustic)
        return tracks;
    QList<FingerprintJob> jobs = fingerprintJobs(tracks, options.fingerprintEngine);
    if (jobs.isEmpty())
        return tracks;
    context.step({ .number = 4, .count = stepCount(options), .hasUnknownPace = false, .toCompare = tracks.size() });
    context.phase(QCoreApplication::translate("epr::ScanController", "Fingerprinting audio"));
    leaveOutTexts(tracks, jobs, context);
    if (jobs.isEmpty() || context.isCancelled())
        return tracks;
    logFingerprinting(jobs.size(), options, context);
    const FingerprintCounts counts = FingerprintRun(tracks, options, context).run(jobs);
    if (counts.shorter > 0) {
        context.log(QCoreApplication::translate("epr::ScanController",
                                                "%n file(s) are shorter than the analysed length and were "
                                                "fingerprinted as far as they go.",
                                                nullptr, counts.shorter));
    }
    if (counts.failed > 0) {
        for (const QString &failure : counts.failures)
            context.log(failure);
        if (const int unnamed = counts.failed - namedFiles; unnamed > 0) {
            context.log(QCoreApplication::translate("epr::ScanController", "Could not decode %n more file(s).", nullptr,
                                                    unnamed));
        }
        context.log(QCoreApplication::translate("epr::ScanController",
                                                "%1 file(s) could not be decoded for fingerprinting. They are still "
                                                "checked by hash and metadata.")
                        .arg(counts.failed));
    }
    return tracks;
}

} // namespace epr
