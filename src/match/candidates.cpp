// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "candidates.h"

#include "acousticcomparison.h"

#include <bit>
#include <limits>

namespace epr {

namespace {

constexpr qsizetype tracksPerReport = 2048;

/// Room for one list of limited length per half-word key. There are few enough keys to have a slot for each.
class HalfWordTable final {
public:
    explicit HalfWordTable(qsizetype trackCount)
        : m_maxLength(static_cast<std::size_t>(maxPostingLength(trackCount)))
        , m_room(std::min(m_maxLength, static_cast<std::size_t>(trackCount)))
        , m_entries(keyCount * m_room)
        , m_slots(keyCount)
    {
    }

    void addTrack(quint32 track, Words words)
    {
        const std::size_t step = std::max<std::size_t>(1, words.size() / sampledWords);
        for (std::size_t i = 0; i < words.size(); i += step) {
            add(words[i] & 0xFFFF, track);
            add((words[i] >> 16) | highHalf, track);
        }
    }

    /// Moves the lists that are neither too short nor too long together. The table is used up by that.
    PostingLists takeLists()
    {
        std::size_t end = 0;
        qint64 kept = 0;
        for (std::size_t key = 0; key < keyCount; ++key) {
            const std::size_t length = m_slots[key].length;
            kept += length > 0 && length <= m_maxLength ? 1 : 0;
            if (length < 2 || length > m_maxLength)
                continue;
            const auto list = m_entries.begin() + static_cast<std::ptrdiff_t>(key * m_room);
            std::copy_n(list, length, m_entries.begin() + static_cast<std::ptrdiff_t>(end));
            end += length;
            m_entries[end - 1] |= PostingLists::endFlag;
        }
        m_entries.resize(end);
        m_entries.shrink_to_fit();
        return { std::move(m_entries), kept };
    }

private:
    static constexpr std::size_t keyCount = 1U << 17;
    static constexpr quint32 highHalf = 1U << 16; // keeps a high half apart from the equal low half
    static constexpr std::size_t sampledWords = 400;

    struct Slot {
        quint32 length = 0; ///< one more than the maximum stands for any number of tracks
        quint32 lastTrack = 0;
    };

    void add(quint32 key, quint32 track)
    {
        Slot &slot = m_slots[key];
        if (slot.length > m_maxLength || (slot.length > 0 && slot.lastTrack == track))
            return;
        if (slot.length < m_maxLength)
            m_entries[key * m_room + slot.length] = track;
        ++slot.length;
        slot.lastTrack = track;
    }

    std::size_t m_maxLength = 0;
    std::size_t m_room = 0; ///< entries per key
    std::vector<quint32> m_entries;
    std::vector<Slot> m_slots;
};

} // namespace

qsizetype maxPostingLength(qsizetype trackCount)
{
    constexpr double share = 0.02;
    return std::clamp<qsizetype>(static_cast<qsizetype>(static_cast<double>(trackCount) * share), 64, 256);
}

PostingLists halfWordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint)
{
    HalfWordTable table(tracks.size());
    for (qsizetype track = 0; track < tracks.size(); ++track) {
        if (track % tracksPerReport == 0 && !checkpoint.pass(acousticprogress::indexingHalfWords, track, tracks.size()))
            return {};
        if (isLongEnoughToCompare(tracks[track].fingerprint))
            table.addTrack(static_cast<quint32>(track), tracks[track].fingerprint.words);
    }
    return table.takeLists();
}

CandidateRows::CandidateRows(PostingLists lists, qsizetype trackCount, int minSharedKeys)
    : m_minSharedKeys(static_cast<quint8>(minSharedKeys))
    , m_entries(std::move(lists.entries))
    , m_firstPlace(static_cast<std::size_t>(trackCount) + 1)
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
            m_places[next[m_entries[place]]++] = static_cast<quint32>(place);
}

RowCounter::RowCounter(const CandidateRows &rows)
    : m_rows(&rows)
    , m_minSharedKeys(rows.minSharedKeys())
    , m_counts(static_cast<std::size_t>(rows.trackCount()))
    , m_touched(m_counts.size() + 1)
    , m_reached(m_counts.size() + 1)
    , m_reachedBits(m_counts.size() / 64 + 1)
{
}

std::span<const qint32> RowCounter::row(qint32 track)
{
    const auto index = static_cast<std::size_t>(track);
    m_row.clear();
    countShared(index);
    sortReached(index);
    clearCounts();
    return m_row;
}

void RowCounter::countShared(std::size_t track)
{
    for (const quint32 place : m_rows->places(track)) {
        const quint32 *entry = m_rows->entry(place);
        do {
            ++entry;
            countEntry(*entry & ~PostingLists::endFlag);
        } while (*entry < PostingLists::endFlag);
    }
}

/// Without branches, which would be mispredicted all the time: a track is always written behind the touched and the
/// reached ones, and stays there only if it is one of them. Both arrays have room for one more.
void RowCounter::countEntry(quint32 track)
{
    quint8 &count = m_counts[track];
    m_touched[m_touchedCount] = track;
    m_touchedCount += count == 0 ? 1 : 0;
    m_reached[m_reachedCount] = track;
    m_reachedCount += count + 1 == m_minSharedKeys ? 1 : 0;
    count = static_cast<quint8>(count + (count < std::numeric_limits<quint8>::max() ? 1 : 0));
}

void RowCounter::sortReached(std::size_t track)
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

void RowCounter::clearCounts()
{
    for (std::size_t i = 0; i < m_touchedCount; ++i)
        m_counts[m_touched[i]] = 0;
    m_touchedCount = 0;
}

} // namespace epr
