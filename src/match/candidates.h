// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"
#include "records.h"

#include <QCoreApplication>

#include <atomic>
#include <span>
#include <vector>

namespace epr {

/// A stretch of the acoustic pass on its progress scale from 0 to 1. The shares are fixed; how long each stretch really
/// takes depends on the library.
struct ProgressSlice {
    double base = 0;
    double span = 0;
    const char *text = nullptr; ///< to be translated in the context QObject
};

namespace acousticprogress {
constexpr const char *indexingText = QT_TRANSLATE_NOOP("QObject", "Indexing fingerprints");
constexpr ProgressSlice indexingHalfWords { 0.0, 0.7, indexingText };
constexpr ProgressSlice collectingWords { 0.0, 0.35, indexingText };
constexpr ProgressSlice sortingWords { 0.35, 0.35, indexingText };
constexpr ProgressSlice finding { 0.7, 0.2, QT_TRANSLATE_NOOP("QObject", "Finding candidate matches") };
constexpr ProgressSlice comparing { 0.9, 0.1, QT_TRANSLATE_NOOP("QObject", "Comparing acoustic fingerprints") };
} // namespace acousticprogress

/// Reports how far work of `total` steps has come on a scale of a thousand. Does nothing without a callable or steps.
inline void reportSubProgress(const ProgressFn &progress, const ProgressSlice &slice, qint64 done, qint64 total)
{
    constexpr int scale = 1000;
    if (!progress || total <= 0)
        return;
    const double position = slice.base + slice.span * static_cast<double>(done) / static_cast<double>(total);
    progress(static_cast<int>(position * scale), scale, QCoreApplication::translate("QObject", slice.text));
}

/// The points at which a long pass looks whether it has been cancelled and says how far it is.
class Checkpoint final {
public:
    Checkpoint(const std::atomic<qint32> &cancelFlag, const ProgressFn &progress)
        : m_cancelFlag(cancelFlag)
        , m_progress(progress)
    {
    }

    bool isCancelled() const { return m_cancelFlag.load(std::memory_order_relaxed) != 0; }

    /// False if the pass is to end here; nothing is reported then.
    [[nodiscard]] bool pass(const ProgressSlice &slice, qint64 done, qint64 total) const
    {
        if (isCancelled())
            return false;
        reportSubProgress(m_progress, slice, done, total);
        return true;
    }

private:
    const std::atomic<qint32> &m_cancelFlag;
    const ProgressFn &m_progress;
};

/// Reports a stretch in even steps of one measure while the work goes on in another: in lists, say, while the tracks
/// are gone through.
class Milestones final {
public:
    Milestones(const Checkpoint &checkpoint, const ProgressSlice &slice, qint64 step, qint64 total)
        : m_checkpoint(checkpoint)
        , m_slice(slice)
        , m_step(step)
        , m_total(total)
    {
    }

    /// Reports each step up to where the work is, in its own measure. False if the pass is to end here.
    [[nodiscard]] bool reach(qint64 done, qint64 all)
    {
        for (; m_next < m_total && m_next * all <= done * m_total; m_next += m_step)
            if (!m_checkpoint.pass(m_slice, m_next, m_total))
                return false;
        return !m_checkpoint.isCancelled();
    }

private:
    const Checkpoint &m_checkpoint;
    ProgressSlice m_slice;
    qint64 m_step = 1;
    qint64 m_total = 0;
    qint64 m_next = 0; ///< to be reported
};

/// Which tracks share a key of their fingerprints: for each key that two or more tracks have, but no more than
/// maxPostingLength, the ascending indexes of these tracks. All lists lie in one array, one behind the other, with
/// endFlag added to the last entry of each.
struct PostingLists {
    static constexpr quint32 endFlag = 1U << 31;

    std::vector<quint32> entries;
    qint64 keyCount = 0; ///< keys that are not too common, with those of a single track where these have been counted
};

/// The most tracks that may share a key, by the number of all tracks; a key more common than that says nothing.
qsizetype maxPostingLength(qsizetype trackCount);

/// Keys are the halves of up to about 400 words per track. Built-in words are too noisy to agree in all bits.
PostingLists halfWordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint);

struct IndexEffort {
    int threads = 1;
    std::size_t entriesAtOnce = 40'000'000; ///< of 4 bytes; the tracks are gone through once for so many
};

/// Keys are all the words of a track. The memory, beyond that of the lists, is what the effort allows.
PostingLists wordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint, const IndexEffort &effort);

/// Where each track stands in the posting lists. Does not change, so that many threads can count rows of it at once.
class CandidateRows final {
public:
    /// A row names the tracks that share at least minSharedKeys keys, which is at most 255.
    CandidateRows(PostingLists lists, qsizetype trackCount, int minSharedKeys);

    qint32 trackCount() const { return static_cast<qint32>(m_firstPlace.size()) - 1; }
    quint8 minSharedKeys() const { return m_minSharedKeys; }

    /// Where the track stands among the entries, the places where it ends its list left out.
    std::span<const quint32> places(std::size_t track) const
    {
        return std::span(m_places).subspan(m_firstPlace[track], m_firstPlace[track + 1] - m_firstPlace[track]);
    }

    const quint32 *entry(quint32 place) const { return m_entries.data() + place; }

private:
    void indexEntries();

    quint8 m_minSharedKeys = 0;
    std::vector<quint32> m_entries; ///< of the posting lists
    std::vector<std::size_t> m_firstPlace; ///< per track and one past the last: index into m_places
    std::vector<quint32> m_places;
};

/// Finds, for one track after the other, the later tracks that share enough keys with it. Counting a row at a time
/// keeps the memory proportional to the tracks, where a count per pair would be quadratic: by chance alone nearly every
/// two tracks of a mid-size library share some half-word.
class RowCounter final {
public:
    explicit RowCounter(const CandidateRows &rows);

    /// The tracks behind the given one, ascending. Valid until the next call.
    std::span<const qint32> row(qint32 track);

private:
    void countShared(std::size_t track);
    void countEntry(quint32 track);
    void sortReached(std::size_t track);
    void clearCounts();

    const CandidateRows *m_rows = nullptr;
    quint8 m_minSharedKeys = 0;
    std::vector<quint8> m_counts; ///< shared keys per track of the current row; more than 255 count as 255
    std::vector<quint32> m_touched; ///< tracks with a count
    std::size_t m_touchedCount = 0;
    std::vector<quint32> m_reached; ///< tracks whose count has reached the minimum, in the order they did
    std::size_t m_reachedCount = 0;
    std::vector<quint64> m_reachedBits; ///< one bit per track, to put them in order
    std::vector<qint32> m_row;
};

} // namespace epr
