// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "alignment.h"
#include "candidates.h"
#include "parallel.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace epr {

/// The tracks of a library by the alignment keys that they share. Of the keys only as many are in memory as are taken
/// at once; all tracks are gone through again for the next ones.
class KeyIndex final {
public:
    KeyIndex(const QList<TrackInfo> &tracks, FingerprintEngine engine, const IndexEffort &effort);

    /// To be called first. False if cancelled.
    bool count(const Checkpoint &checkpoint);

    qsizetype keyCount() const { return m_keyCount; } ///< over all tracks

    /// Calls visit(thread, tracks) on many threads for each key that two tracks have or more, but not more than
    /// maxPostingLength of them; they ascend. The order of the keys depends on the threads. False if cancelled.
    template <typename Visit> bool forEachList(const Checkpoint &checkpoint, ProgressSlice slice, const Visit &visit);

private:
    static constexpr int bucketBits = 11; // the upper bits of a key
    static constexpr int trackBits = 11; // the lower bits of a track; the others are its slice
    static constexpr int lowerBits = alignmentKeyBits - bucketBits;
    static constexpr std::size_t bucketCount = std::size_t(1) << bucketBits;
    static constexpr qsizetype tracksPerSlice = qsizetype(1) << trackBits;
    static_assert(lowerBits + trackBits <= 32);

    using KeyAndTrack = quint64; ///< key in the upper half, so that these sort by key and then by track

    struct Range {
        std::size_t begin = 0; ///< buckets
        std::size_t end = 0;
        std::size_t entries = 0;
    };

    struct Workspace {
        std::vector<KeyAndTrack> entries; ///< of a bucket, sorted
        std::vector<quint32> ends; ///< of slots of neighbouring keys
        std::vector<quint32> tracks; ///< of a key
    };

    template <typename Visit> void forEachKey(std::size_t slice, Visit visit) const;
    Range rangeFrom(std::size_t bucket) const;
    void fill(const Range &range);
    static std::vector<KeyAndTrack>::iterator takeKey(std::vector<KeyAndTrack>::iterator begin, Workspace &workspace);
    void sortBucket(std::size_t bucket, Workspace &workspace) const;

    const QList<TrackInfo> &m_tracks;
    FingerprintEngine m_engine;
    IndexEffort m_effort;
    qsizetype m_keyCount = 0;
    std::vector<std::array<std::size_t, bucketCount>> m_sizes; ///< entries, per slice and bucket
    std::vector<std::array<std::size_t, bucketCount>> m_ends; ///< where they end, for the range at work
    std::array<std::size_t, bucketCount> m_bucketSizes {};
    std::vector<quint32> m_entries; ///< of the range: the lower bits of the key, then those of the track
    std::vector<Workspace> m_workspaces; ///< one for each thread
};

template <typename Visit>
bool KeyIndex::forEachList(const Checkpoint &checkpoint, ProgressSlice slice, const Visit &visit)
{
    const qsizetype most = maxPostingLength(m_tracks.size());
    qsizetype done = 0;
    for (Range range; range.end < bucketCount; done += static_cast<qsizetype>(range.entries)) {
        if (!checkpoint.pass(slice, done, m_keyCount))
            return false;
        range = rangeFrom(range.end);
        fill(range);
        forEachOnThreads(m_effort.threads, static_cast<qsizetype>(range.end - range.begin),
                         [&](int thread, qsizetype index) {
                             if (checkpoint.isCancelled())
                                 return;
                             Workspace &workspace = m_workspaces[static_cast<std::size_t>(thread)];
                             sortBucket(range.begin + static_cast<std::size_t>(index), workspace);
                             for (auto begin = workspace.entries.begin(); begin != workspace.entries.end();) {
                                 begin = takeKey(begin, workspace);
                                 const qsizetype length = std::ssize(workspace.tracks);
                                 if (length >= 2 && length <= most)
                                     visit(thread, std::span<const quint32>(workspace.tracks));
                             }
                         });
    }
    return !checkpoint.isCancelled();
}

} // namespace epr
