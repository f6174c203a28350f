// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scancontroller.h"

#include "analysiscache.h"
#include "buildmatchgroups.h"
#include "cachecheck.h"
#include "discovery.h"
#include "ffmpeg.h"
#include "fileanalysis.h"
#include "fingerprintpool.h"
#include "fpcalc.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>
#include <QtConcurrentMap>

#include <algorithm>
#include <optional>
#include <utility>

namespace epr {

namespace {

constexpr int eventBudgetMs = 40; // of one polling round
constexpr unsigned long pollPauseMs = 50;

// What fpcalc and the built-in analysis make cannot be compared with each other, so the whole scan, its cache and its
// matching use the one that is really there.
FingerprintEngine engineFor(const ScanOptions &options)
{
    const bool fpcalc = options.fingerprintEngine == FingerprintEngine::Fpcalc && hasFpcalc();
    return fpcalc ? FingerprintEngine::Fpcalc : FingerprintEngine::BuiltIn;
}

// Whether the acoustic comparison can use the record's fingerprint. Only the built-in analysis makes masks.
bool hasUsableFingerprint(const TrackInfo &track, FingerprintEngine engine)
{
    return !track.fingerprint.words.isEmpty()
        && (engine != FingerprintEngine::BuiltIn || track.fingerprint.words.size() == track.fingerprint.mask.size());
}

QList<FingerprintJob> fingerprintJobs(const QList<TrackInfo> &tracks, FingerprintEngine engine)
{
    QList<FingerprintJob> jobs;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        if (!hasUsableFingerprint(tracks.at(i), engine))
            jobs.append({ static_cast<int>(i), tracks.at(i).path });
    }
    return jobs;
}

// A record whose fingerprint failed is not cached, because it has an error, so the next scan tries again.
void applyFingerprint(const FingerprintResult &result, TrackInfo &track)
{
    track.fingerprint = result.fingerprint;
    if (track.stream.durationMs < 1 && result.durationMs > 0)
        track.stream.durationMs = result.durationMs;
    if (result.error.isEmpty())
        track.analysed = true;
    else if (track.error.isEmpty())
        track.error = result.error;
}

bool isTooShort(const TrackInfo &track, qint64 minDurationMs)
{
    return track.stream.durationMs >= 1 && track.stream.durationMs < minDurationMs;
}

// What the cache knows and the analysis does not repeat, above all the fingerprint.
TrackInfo withoutTags(const TrackInfo &cached)
{
    TrackInfo track;
    track.path = cached.path;
    track.fileName = cached.fileName;
    track.suffix = cached.suffix;
    track.size = cached.size;
    track.mtime = cached.mtime;
    track.fullHash = cached.fullHash;
    track.audioHash = cached.audioHash;
    track.fingerprint = cached.fingerprint;
    return track;
}

QString megabytes(qint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / 1048576.0, 'f', 1);
}

} // namespace

// Everything that belongs to one scan only.
struct ScanController::Scan {
    ScanOptions options; // with the engine that this scan really uses
    AnalysisCache *cache = nullptr; // null when the scan runs without
    QStringList paths;
    QList<TrackInfo> tracks; // in discovery order
    QList<qsizetype> work; // indexes of the tracks that have to be analysed
    QList<TrackInfo> shortTracks; // left out of the results, but worth caching
    QList<MatchGroup> groups;
    bool cancelled = false;
    QElapsedTimer clock;

    void addTracks(QList<TrackInfo> checked);
    void dropFingerprints();
};

// An analysis that an earlier scan made with fewer methods is not enough: a file without a digest would match nothing.
void ScanController::Scan::addTracks(QList<TrackInfo> checked)
{
    for (TrackInfo &track : checked) {
        const bool found = (track.flags & TrackFromCache) != 0;
        if (found && hasWantedDigests(track, options)) {
            track.analysed = !options.detectAcoustic || hasUsableFingerprint(track, options.fingerprintEngine);
            tracks.append(std::move(track));
            continue;
        }
        work.append(tracks.size());
        tracks.append(found ? withoutTags(track) : std::move(track));
    }
}

ScanController::ScanController(QObject *parent)
    : QObject(parent)
{
}

ScanController::~ScanController() = default;

bool ScanController::isRunning() const
{
    return m_running.load() != 0;
}

bool ScanController::isCancelled() const
{
    return m_cancelFlag.load() != 0;
}

void ScanController::cancel()
{
    m_cancelFlag.store(1);
}

void ScanController::start(const ScanOptions &options)
{
    if (m_running.exchange(1) != 0) { // the event polling of a running scan delivers queued calls
        Q_EMIT failed(tr("A scan is already running."));
        return;
    }
    m_cancelFlag.store(0);
    Scan scan;
    scan.options = options;
    scan.options.fingerprintEngine = engineFor(options);
    scan.clock.start();
    Q_EMIT started();

    openCache(scan);
    discoverFiles(scan);
    if (!scan.paths.isEmpty()) {
        checkCache(scan);
        analyseFiles(scan);
        dropShortFiles(scan);
        fingerprintFiles(scan);
        writeCache(scan);
        groupDuplicates(scan);
    }
    finish(scan);
}

void ScanController::openCache(Scan &scan)
{
    if (!scan.options.useCache)
        return;
    if (!m_cache)
        m_cache = std::make_unique<AnalysisCache>();
    QString error;
    if (!m_cache->isOpen() && !m_cache->open(&error)) {
        Q_EMIT logMessage(tr("Analysis cache unavailable (%1) - continuing without it.").arg(error));
        return;
    }
    scan.cache = m_cache.get();
    Q_EMIT logMessage(tr("Analysis cache: %1 entries at %2").arg(m_cache->count()).arg(m_cache->filePath()));
}

void ScanController::discoverFiles(Scan &scan)
{
    Q_EMIT phaseChanged(tr("Scanning folders"));
    for (const QString &root : scan.options.roots) {
        if (!QFileInfo(root).isDir())
            Q_EMIT logMessage(tr("Folder not found: %1").arg(root));
    }
    int undecodable = 0;
    scan.paths = discover(
        scan.options, m_cancelFlag,
        [this](int count, const QString &) { Q_EMIT progress(count, 0, tr("%1 files found").arg(count)); },
        &undecodable);
    scan.cancelled = isCancelled();
    if (scan.cancelled) {
        scan.paths.clear();
        return;
    }
    if (undecodable > 0)
        Q_EMIT logMessage(
            tr("Left out %n file(s) or folder(s) whose names are not valid UTF-8.", nullptr, undecodable));
    if (scan.paths.isEmpty())
        Q_EMIT logMessage(tr("No audio files matched the current filters."));
    else
        Q_EMIT logMessage(tr("Discovered %1 audio files.").arg(scan.paths.size()));
}

void ScanController::checkCache(Scan &scan)
{
    Q_EMIT phaseChanged(tr("Checking cache"));
    const qsizetype total = scan.paths.size();
    scan.tracks.reserve(total);
    CacheCheck files(scan.paths, scan.cache ? std::optional(scan.options.fingerprintEngine) : std::nullopt);
    for (; !files.atEnd(); scan.addTracks(files.take())) {
        const qsizetype done = files.position();
        Q_EMIT progress(static_cast<int>(done), static_cast<int>(total), tr("Checked %1 of %2").arg(done).arg(total));
        if (isCancelled())
            break;
    }
    const qsizetype reused = scan.tracks.size() - scan.work.size();
    if (reused > 0)
        Q_EMIT logMessage(tr("Reused %1 cached analysis results.").arg(reused));
    logCacheError(files.error(), tr("The analysis cache could not be read (%1)."));
}

// Each worker writes the record of its own file, in place: what is complete when a scan is cancelled stays complete,
// and the records keep their order.
void ScanController::analyseFiles(Scan &scan)
{
    if (isCancelled())
        return;
    Q_EMIT phaseChanged(tr("Reading tags and hashing"));
    if (scan.work.isEmpty())
        return;
    TrackInfo *const tracks = scan.tracks.data();
    std::atomic<int> done = 0;
    QFuture<void> running =
        QtConcurrent::map(&m_analysisPool, scan.work, [this, &scan, tracks, &done](qsizetype index) {
            tracks[index] = analyseFile(std::move(tracks[index]), scan.options, &m_cancelFlag);
            ++done;
        });
    while (!running.isFinished()) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, eventBudgetMs);
        reportAnalysed(done.load(), scan.work.size());
        if (isCancelled() && !running.isCanceled())
            running.cancel();
        QThread::msleep(pollPauseMs);
    }
    running.waitForFinished();
    reportAnalysed(done.load(), scan.work.size());
}

void ScanController::reportAnalysed(int done, qsizetype total)
{
    Q_EMIT progress(done, static_cast<int>(total), tr("Analysed %1 of %2 files").arg(done).arg(total));
}

void ScanController::dropShortFiles(Scan &scan)
{
    const qint64 minDurationMs = scan.options.minDurationMs;
    if (isCancelled() || minDurationMs <= 0)
        return;
    const auto firstShort =
        std::stable_partition(scan.tracks.begin(), scan.tracks.end(),
                              [minDurationMs](const TrackInfo &track) { return !isTooShort(track, minDurationMs); });
    scan.shortTracks = QList<TrackInfo>(firstShort, scan.tracks.end());
    scan.tracks.erase(firstShort, scan.tracks.end());
    if (!scan.shortTracks.isEmpty()) {
        Q_EMIT logMessage(
            tr("Skipped %1 file(s) shorter than %2 seconds.").arg(scan.shortTracks.size()).arg(minDurationMs / 1000));
    }
}

void ScanController::fingerprintFiles(Scan &scan)
{
    if (isCancelled() || !scan.options.detectAcoustic)
        return;
    const QList<FingerprintJob> jobs = fingerprintJobs(scan.tracks, scan.options.fingerprintEngine);
    if (jobs.isEmpty())
        return;
    Q_EMIT phaseChanged(tr("Fingerprinting audio"));
    logFingerprinting(scan, jobs.size());
    const int failures = runFingerprintPool(scan, jobs);
    if (failures > 0) {
        Q_EMIT logMessage(tr("%1 file(s) could not be decoded for fingerprinting. They are still checked by hash and "
                             "metadata.")
                              .arg(failures));
    }
}

// The pool reports on this thread, so its handlers may write into the tracks. Returns how many files failed.
int ScanController::runFingerprintPool(Scan &scan, const QList<FingerprintJob> &jobs)
{
    FingerprintPool pool(scan.options.decoderThreads, scan.options.fingerprintSeconds,
                         scan.options.fingerprintEngine == FingerprintEngine::Fpcalc);
    int failures = 0;
    connect(
        &pool, &FingerprintPool::completed, this,
        [&scan, &failures](int id, const FingerprintResult &result) {
            if (id >= 0 && id < scan.tracks.size())
                applyFingerprint(result, scan.tracks[id]);
            failures += result.error.isEmpty() ? 0 : 1;
        },
        Qt::DirectConnection);
    connect(
        &pool, &FingerprintPool::progress, this,
        [this, &pool](int done, int total) {
            Q_EMIT progress(done, total, tr("Fingerprinted %1 of %2").arg(done).arg(total));
            if (isCancelled())
                pool.cancel();
        },
        Qt::DirectConnection);
    pool.run(jobs);
    return failures;
}

void ScanController::logFingerprinting(const Scan &scan, qsizetype files)
{
    const bool byFpcalc = scan.options.fingerprintEngine == FingerprintEngine::Fpcalc;
    const QString engine = byFpcalc ? tr("Chromaprint fpcalc (%1)").arg(fpcalcPath())
        : hasFfmpeg()               ? tr("built-in analysis, ffmpeg decode")
                                    : tr("built-in analysis, Qt decode");
    Q_EMIT logMessage(tr("Fingerprinting %1 file(s) on %2 thread(s) using %3.")
                          .arg(files)
                          .arg(scan.options.decoderThreads)
                          .arg(engine));
    if (!byFpcalc) {
        Q_EMIT logMessage(
            tr("Tip: installing Chromaprint's fpcalc and putting it on the PATH makes fingerprinting several "
               "times faster and more accurate."));
    }
}

// Also after a cancel: what has been analysed need not be analysed again.
void ScanController::writeCache(const Scan &scan)
{
    if (!scan.cache)
        return;
    scan.cache->beginTransaction();
    for (const QList<TrackInfo> *tracks : { &scan.tracks, &scan.shortTracks }) {
        for (const TrackInfo &track : *tracks) {
            if (track.analysed && track.error.isEmpty())
                scan.cache->store(track, scan.options.fingerprintEngine);
        }
    }
    scan.cache->commitTransaction();
    logCacheError(scan.cache->takeError(), tr("The analysis cache could not be written (%1)."));
}

void ScanController::logCacheError(const QString &error, const QString &message)
{
    if (!error.isEmpty())
        Q_EMIT logMessage(message.arg(error));
}

// A cancel is noticed before grouping or not at all: the groups that have been found by then are worth showing.
void ScanController::groupDuplicates(Scan &scan)
{
    scan.cancelled = isCancelled();
    if (scan.cancelled)
        return;
    Q_EMIT phaseChanged(tr("Grouping duplicates"));
    QString phase;
    scan.groups =
        buildMatchGroups(scan.tracks, scan.options, m_cancelFlag, [&](int step, int total, const QString &text) {
            if (text != std::exchange(phase, text))
                Q_EMIT phaseChanged(text);
            Q_EMIT progress(step, total, text);
        });
    qint64 reclaimable = 0;
    for (const MatchGroup &group : std::as_const(scan.groups))
        reclaimable += group.reclaimableBytes;
    Q_EMIT logMessage(tr("Found %1 duplicate group(s); %2 MB could be reclaimed.")
                          .arg(scan.groups.size())
                          .arg(megabytes(reclaimable)));
}

// Nobody compares fingerprints after the scan, and they are most of what a record weighs: 1.5 GB for 200,000 files.
void ScanController::Scan::dropFingerprints()
{
    for (TrackInfo &track : tracks)
        dropFingerprint(track);
}

void ScanController::finish(Scan &scan)
{
    scan.dropFingerprints();
    if (scan.cancelled) // files that the scan did not get round to
        scan.tracks.removeIf([](const TrackInfo &track) { return !track.analysed && track.error.isEmpty(); });
    m_running.store(0);
    Q_EMIT finished(scan.tracks, scan.groups, scan.cancelled, scan.clock.elapsed());
}

} // namespace epr
