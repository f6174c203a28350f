// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cachecheck.h"

#include "analysiscache.h"
#include "fileanalysis.h"

#include <QThread>

#include <algorithm>
#include <utility>

namespace epr {

namespace {

constexpr qsizetype maxThreads = 4; // more would wait for each other: at the disk, and for the time zone's lock
constexpr qsizetype slicesAhead = 2; // per thread; records with fingerprints weigh 4 MiB a slice

qsizetype threadsFor(qsizetype files)
{
    const qsizetype slices = (files + CacheCheck::sliceSize - 1) / CacheCheck::sliceSize;
    return std::max<qsizetype>(1, std::min({ slices, maxThreads, qsizetype { QThread::idealThreadCount() } }));
}

} // namespace

CacheCheck::CacheCheck(const QStringList &paths, std::optional<FingerprintEngine> engine)
    : m_paths(paths)
    , m_engine(engine)
{
    const qsizetype threads = threadsFor(paths.size());
    m_lookAhead = (1 + slicesAhead * threads) * sliceSize;
    for (qsizetype i = 0; i < threads; ++i)
        m_threads.emplace_back([this](const std::stop_token &stop) { work(stop); });
}

QList<TrackInfo> CacheCheck::take()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_done.contains(m_position); });
    QList<TrackInfo> tracks = std::move(m_done.extract(m_position).mapped());
    m_position += tracks.size();
    m_changed.notify_all();
    return tracks;
}

QString CacheCheck::error()
{
    const std::lock_guard lock(m_mutex);
    return m_error;
}

// A connection belongs to the thread that made it, so the cache is opened and closed here; and only once there is
// something to do.
void CacheCheck::work(const std::stop_token &stop)
{
    AnalysisCache cache;
    std::optional<qsizetype> first = claimSlice(stop);
    if (first && m_engine)
        openCache(cache);
    for (; first; first = claimSlice(stop)) {
        QList<TrackInfo> tracks = checkSlice(*first, cache);
        const std::lock_guard lock(m_mutex);
        m_done.emplace(*first, std::move(tracks));
        m_changed.notify_all();
    }
    cache.commitTransaction();
}

// Slices are handed out in order, so the one that is waited for is always under way.
std::optional<qsizetype> CacheCheck::claimSlice(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    const bool mayGoOn = m_changed.wait(
        lock, stop, [this] { return m_unclaimed >= m_paths.size() || m_unclaimed < m_position + m_lookAhead; });
    if (!mayGoOn || stop.stop_requested() || m_unclaimed >= m_paths.size())
        return {};
    return std::exchange(m_unclaimed, m_unclaimed + sliceSize);
}

// One transaction for all look-ups: otherwise each one locks and unlocks the database.
void CacheCheck::openCache(AnalysisCache &cache)
{
    QString error;
    if (cache.open(&error))
        cache.beginTransaction();
    else
        noteError(error);
}

// After an error the thread only measures. A database that is locked would cost the time-out again at every slice.
QList<TrackInfo> CacheCheck::checkSlice(qsizetype first, AnalysisCache &cache)
{
    const qsizetype size = std::min(sliceSize, m_paths.size() - first);
    QList<TrackInfo> tracks;
    tracks.reserve(size);
    for (qsizetype i = first; i < first + size; ++i)
        tracks.append(measureFile(m_paths.at(i)));
    if (cache.isOpen())
        cache.lookupAll(tracks, *m_engine);
    if (const QString error = cache.takeError(); !error.isEmpty()) {
        noteError(error);
        cache.close();
    }
    return tracks;
}

void CacheCheck::noteError(const QString &text)
{
    const std::lock_guard lock(m_mutex);
    if (m_error.isEmpty())
        m_error = text;
}

} // namespace epr
