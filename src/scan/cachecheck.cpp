// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"
#include "libraryfiles.h"
#include "scanstages.h"
#include "textfile.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>
#include <QThreadStorage>
#include <QtConcurrentMap>

#include <algorithm>
#include <mutex>

namespace epr {

namespace {

constexpr qsizetype sliceSize = 512;
constexpr qsizetype maxThreads = 4; // more would wait for each other at the disk
constexpr qint64 largestText = 1 << 20; // bytes; opening every large file of a format without reader would take long

// Earlier versions took down the fingerprint and the duration of the file that a playlist or manifest names. No reader
// knows a rate of such a file.
bool mayBeText(const TrackInfo &track)
{
    return track.stream.sampleRate == 0 && track.stream.bitrateKbps == 0 && track.size <= largestText;
}

bool isFingerprintOfText(const TrackInfo &track)
{
    return !track.fingerprint.words.isEmpty() && mayBeText(track) && looksLikeText(track.path);
}

// An analysis that an earlier scan made with fewer methods is not enough: a file without a digest would match nothing,
// unless its keys tell that later. What the cache knows and the analysis does not repeat, above all the fingerprint,
// stays, and so is read now if it was not needed before.
void takeFromCache(TrackInfo &track, const ScanOptions &options, AnalysisCache &cache)
{
    if ((track.flags & TrackFromCache) == 0)
        return;
    const bool isKnown = hasWantedDigests(track, options) || (usesKeys(options) && track.keys.isKnown());
    if (!options.detectAcoustic && (mayBeText(track) || !isKnown))
        static_cast<void>(cache.lookup(track, options.fingerprintEngine));
    const bool isText = isFingerprintOfText(track);
    if (isText) {
        track.fingerprint = {};
        track.stream = {};
    }
    // A text is analysed anew, to be right in the cache; the acoustic method will find it to be one, which is an error.
    if (isKnown && (!isText || options.detectAcoustic)) {
        track.analysed = !options.detectAcoustic || hasCompleteFingerprint(track, options.fingerprintEngine);
        return;
    }
    track.tags = {};
    track.stream = {};
    track.keys = {};
    track.flags = 0;
    track.analysed = false;
}

// Measures files and completes their records from the cache, a slice at a time on any thread.
class SliceCheck {
public:
    SliceCheck(const QStringList &paths, const ScanOptions &options, TrackInfo *tracks)
        : m_paths(paths)
        , m_options(options)
        , m_tracks(tracks)
    {
    }

    void check(qsizetype first)
    {
        const std::span slice(m_tracks + first, std::min(sliceSize, m_paths.size() - first));
        for (TrackInfo &track : slice)
            track = measureFile(m_paths.at(&track - m_tracks));
        if (m_options.useCache)
            lookUp(slice);
        ++m_done;
        m_done.notify_one();
    }

    void waitFor(int slices) const
    {
        for (int done = m_done.load(); done < slices; done = m_done.load())
            m_done.wait(done);
    }

    /// Why files were not looked up, as the first thread to fail said it; empty = all were.
    QString error() const
    {
        const std::lock_guard lock(m_mutex);
        return m_error;
    }

    bool isCacheDamaged() const { return m_isCacheDamaged; }

private:
    void lookUp(std::span<TrackInfo> slice);
    AnalysisCache &cacheOfThread();
    void noteError(const AnalysisCache &cache, const QString &text);

    const QStringList &m_paths;
    const ScanOptions &m_options;
    TrackInfo *const m_tracks;
    std::atomic<int> m_done = 0;
    QThreadStorage<AnalysisCache *> m_caches; // a connection belongs to the thread that made it
    mutable std::mutex m_mutex;
    QString m_error;
    std::atomic<bool> m_isCacheDamaged = false;
};

// After an error the thread only measures. A database that is locked would cost the time-out again at every slice.
void SliceCheck::lookUp(std::span<TrackInfo> slice)
{
    AnalysisCache &cache = cacheOfThread();
    using enum AnalysisCache::LookupScope;
    cache.lookupAll(slice, m_options.fingerprintEngine, m_options.detectAcoustic ? Everything : AllButFingerprint);
    cache.lookupKeys(slice);
    for (TrackInfo &track : slice)
        takeFromCache(track, m_options, cache);
    if (const QString error = cache.takeError(); !error.isEmpty()) {
        noteError(cache, error);
        cache.close();
    }
}

// One transaction for all look-ups: otherwise each one locks and unlocks the database. It ends with the thread.
AnalysisCache &SliceCheck::cacheOfThread()
{
    if (!m_caches.hasLocalData()) {
        auto *cache = new AnalysisCache;
        m_caches.setLocalData(cache);
        QString error;
        if (cache->open(&error))
            cache->beginTransaction();
        else
            noteError(*cache, error);
    }
    return *m_caches.localData();
}

void SliceCheck::noteError(const AnalysisCache &cache, const QString &text)
{
    const std::lock_guard lock(m_mutex);
    m_isCacheDamaged = m_isCacheDamaged || cache.isDamaged();
    if (m_error.isEmpty())
        m_error = text;
}

// The files of the first slices, as many as have been reported; the slices are begun in order.
void reportCheck(const QList<TrackInfo> &tracks, const QString &error, const StageContext &context)
{
    const auto reused = std::count_if(tracks.cbegin(), tracks.cend(),
                                      [](const TrackInfo &track) { return (track.flags & TrackFromCache) != 0; });
    if (reused > 0) {
        context.log(
            QCoreApplication::translate("epr::ScanController", "Reused %1 cached analysis results.").arg(reused));
    }
    if (!error.isEmpty()) {
        context.log(QCoreApplication::translate("epr::ScanController", "The analysis cache could not be read (%1).")
                        .arg(error));
    }
}

} // namespace

CheckedFiles checkCache(const QStringList &paths, const ScanOptions &options, const StageContext &context)
{
    context.step({ .number = 2, .count = stepCount(options) });
    context.phase(QCoreApplication::translate("epr::ScanController", "Checking cache"));
    const qsizetype total = paths.size();
    QList<TrackInfo> tracks(total);
    SliceCheck slices(paths, options, tracks.data());
    QList<qsizetype> firsts;
    for (qsizetype first = 0; first < total; first += sliceSize)
        firsts.append(first);
    QThreadPool pool; // its threads end here, and with them their connections
    pool.setMaxThreadCount(static_cast<int>(
        std::clamp<qsizetype>(firsts.size(), 1, std::min<qsizetype>(maxThreads, QThread::idealThreadCount()))));
    QFuture<void> running = QtConcurrent::map(&pool, firsts, [&](qsizetype first) {
        context.waitWhilePaused();
        slices.check(first);
    });
    int done = 0;
    for (; done < firsts.size(); slices.waitFor(++done)) {
        const qsizetype first = firsts.at(done);
        context.progress(static_cast<int>(first), static_cast<int>(total),
                         QCoreApplication::translate("epr::ScanController", "Checked %1 of %2").arg(first).arg(total));
        if (context.isCancelled())
            break;
    }
    running.cancel();
    running.waitForFinished();
    tracks.resize(std::min(done * sliceSize, total)); // slices are begun in order, so these are complete
    reportCheck(tracks, slices.error(), context);
    return { tracks, slices.isCacheDamaged() };
}

} // namespace epr
