// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "candidaterows.h"

#include <bit>
#include <limits>
#include <utility>

namespace epr {

CandidateRows::CandidateRows(PostingLists lists, qsizetype trackCount, int minSharedKeys)
    : m_minSharedKeys(static_cast<quint8>(minSharedKeys))
    , m_entries(std::move(lists.entries))
    , m_firstPlace(static_cast<std::size_t>(trackCount) + 1)
    , m_counts(static_cast<std::size_t>(trackCount))
    , m_touched(m_counts.size() + 1)
    , m_reached(m_counts.size() + 1)
    , m_reachedBits(m_counts.size() / 64 + 1)
{
    indexEntries();
}

/// A counting sort of the entries by track. The last entry of a list has no track behind it to be paired with.
void CandidateRows::indexEntries()
{
    for (const quint32 entry : m_entries)
        if (entry < PostingLists::endFlag)
            ++m_firstPlace[entry + 1];
    for (std::size_t track = 1; track < m_firstPlace.size(); ++track)
        m_firstPlace[track] += m_firstPlace[track - 1];
    m_places.resize(m_firstPlace.back());
    std::vector<std::size_t> next(m_firstPlace.begin(), m_firstPlace.end() - 1);
    for (std::size_t place = 0; place < m_entries.size(); ++place)
        if (m_entries[place] < PostingLists::endFlag)
            m_places[next[m_entries[place]]++] = place;
}

std::span<const qint32> CandidateRows::row(qint32 track)
{
    const auto index = static_cast<std::size_t>(track);
    m_row.clear();
    countShared(index);
    sortReached(index);
    clearCounts();
    return m_row;
}

void CandidateRows::countShared(std::size_t track)
{
    for (std::size_t i = m_firstPlace[track]; i < m_firstPlace[track + 1]; ++i) {
        const quint32 *entry = m_entries.data() + m_places[i];
        do {
            ++entry;
            countEntry(*entry & ~PostingLists::endFlag);
        } while (*entry < PostingLists::endFlag);
    }
}

/// Without branches, which would be mispredicted all the time: a track is always written behind the touched and the
/// reached ones, and stays there only if it is one of them. Both arrays have room for one more.
void CandidateRows::countEntry(quint32 track)
{
    quint8 &count = m_counts[track];
    m_touched[m_touchedCount] = track;
    m_touchedCount += count == 0 ? 1 : 0;
    m_reached[m_reachedCount] = track;
    m_reachedCount += count + 1 == m_minSharedKeys ? 1 : 0;
    count = static_cast<quint8>(count + (count < std::numeric_limits<quint8>::max() ? 1 : 0));
}

void CandidateRows::sortReached(std::size_t track)
{
    if (m_reachedCount == 0)
        return;
    for (std::size_t i = 0; i < m_reachedCount; ++i)
        m_reachedBits[m_reached[i] / 64] |= quint64(1) << m_reached[i] % 64;
    m_reachedCount = 0;
    for (std::size_t block = track / 64; block < m_reachedBits.size(); ++block)
        for (quint64 bits = std::exchange(m_reachedBits[block], 0); bits != 0; bits &= bits - 1)
            m_row.push_back(static_cast<qint32>(block * 64) + std::countr_zero(bits));
}

void CandidateRows::clearCounts()
{
    for (std::size_t i = 0; i < m_touchedCount; ++i)
        m_counts[m_touched[i]] = 0;
    m_touchedCount = 0;
}

} // namespace epr
