// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "postinglists.h"

#include <span>

namespace epr {

/// Finds, for one track after the other, the later tracks that share enough keys with it. Counting a row at a time
/// keeps the memory proportional to the tracks, where a count per pair would be quadratic: by chance alone nearly every
/// two tracks of a mid-size library share some half-word.
class CandidateRows final {
public:
    /// A row names the tracks that share at least minSharedKeys keys, which is at most 255.
    CandidateRows(PostingLists lists, qsizetype trackCount, int minSharedKeys);

    [[nodiscard]] qint32 trackCount() const { return static_cast<qint32>(m_counts.size()); }

    /// The tracks behind the given one, ascending. Valid until the next call.
    [[nodiscard]] std::span<const qint32> row(qint32 track);

private:
    void indexEntries();
    void countShared(std::size_t track);
    void countEntry(quint32 track);
    void sortReached(std::size_t track);
    void clearCounts();

    quint8 m_minSharedKeys = 0;
    std::vector<quint32> m_entries; ///< of the posting lists
    std::vector<std::size_t> m_firstPlace; ///< per track and one past the last: index into m_places
    std::vector<std::size_t> m_places; ///< where in m_entries a track stands, unless it ends its list

    std::vector<quint8> m_counts; ///< shared keys per track of the current row; more than 255 count as 255
    std::vector<quint32> m_touched; ///< tracks with a count
    std::size_t m_touchedCount = 0;
    std::vector<quint32> m_reached; ///< tracks whose count has reached the minimum, in the order they did
    std::size_t m_reachedCount = 0;
    std::vector<quint64> m_reachedBits; ///< one bit per track, to put them in order
    std::vector<qint32> m_row;
};

} // namespace epr
