// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanoptions.h"
#include "trackinfo.h"

#include <QStringList>

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

namespace epr {

class AnalysisCache;

/// Measures files and completes their records from the analysis cache, slice by slice, on a few threads that work ahead
/// of whoever takes the slices. It is used on the thread that made it; every thread has a cache object of its own. The
/// destructor waits for the slices that are under way.
class CacheCheck final {
public:
    static constexpr qsizetype sliceSize = 512;

    /// Without an engine the files are only measured.
    CacheCheck(const QStringList &paths, std::optional<FingerprintEngine> engine);
    Q_DISABLE_COPY_MOVE(CacheCheck)

    [[nodiscard]] qsizetype position() const { return m_position; } ///< index of the first file of the next slice
    [[nodiscard]] bool atEnd() const { return m_position >= m_paths.size(); }

    /// The next slice, in the order of the paths; never at the end. What was found says so by TrackFromCache in its
    /// flags.
    [[nodiscard]] QList<TrackInfo> take();

    /// Why files that have been taken were not looked up, as the first thread to fail said it; empty = all were.
    [[nodiscard]] QString error();

private:
    void work(const std::stop_token &stop);
    [[nodiscard]] std::optional<qsizetype> claimSlice(const std::stop_token &stop);
    void openCache(AnalysisCache &cache);
    [[nodiscard]] QList<TrackInfo> checkSlice(qsizetype first, AnalysisCache &cache);
    void noteError(const QString &text);

    const QStringList m_paths;
    const std::optional<FingerprintEngine> m_engine;
    qsizetype m_lookAhead = 0; ///< how many files may be worked on from the position on
    std::mutex m_mutex; ///< guards what follows
    std::condition_variable_any m_changed;
    qsizetype m_position = 0; ///< written by the taker only
    qsizetype m_unclaimed = 0; ///< index of the first file that no thread has begun
    std::map<qsizetype, QList<TrackInfo>> m_done; ///< slices by the index of their first file
    QString m_error;
    std::vector<std::jthread> m_threads; ///< last, so that they end before what they use
};

} // namespace epr
