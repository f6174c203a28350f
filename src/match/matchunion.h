// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace epr {

/// The less certain of two match types, where Unmatched gives way to any other.
inline MatchType leastCertain(MatchType a, MatchType b)
{
    const bool oneIsUnmatched = a == MatchType::Unmatched || b == MatchType::Unmatched;
    return oneIsUnmatched ? std::min(a, b) : std::max(a, b);
}

/// Disjoint sets of tracks (by index into the scan's track list), joined by the links of all matching passes, with the
/// least certain match type that touched each track, and the links that joined two sets. The passes come in the order
/// of certainty, so that of all ways between two tracks that could be told, these links are the one whose weakest link
/// is the most certain.
class MatchUnion final {
public:
    explicit MatchUnion(qsizetype trackCount)
        : m_nodes(static_cast<std::size_t>(trackCount))
    {
        qint32 track = 0;
        for (Node &each : m_nodes)
            each.parent = track++;
    }

    qint32 trackCount() const { return static_cast<qint32>(m_nodes.size()); }

    /// The largest type of any link that touched the track, or its set while the track stood for the set; Unmatched
    /// if none did.
    MatchType method(qint32 track) const { return m_nodes[static_cast<std::size_t>(track)].method; }

    /// The track that stands for the track's set. Shortens the path on the way, so that it is not const.
    qint32 findRoot(qint32 track)
    {
        while (node(track).parent != track) {
            node(track).parent = node(node(track).parent).parent;
            track = node(track).parent;
        }
        return track;
    }

    /// The same without the shortening, for many threads at once while none of them links.
    qint32 root(qint32 track) const
    {
        while (parent(track) != track)
            track = parent(track);
        return track;
    }

    /// Joins the sets of two tracks and records the type on both and on the joined set's root, also when they were in
    /// one set already. The error rate is that of MatchLink.
    void link(qint32 a, qint32 b, MatchType type, double errorRate = 0)
    {
        if (joinRoots(findRoot(a), findRoot(b)))
            m_links.push_back({ a, b, type, errorRate });
        for (const qint32 track : { findRoot(a), a, b })
            node(track).method = leastCertain(method(track), type);
    }

    /// Whether the track was linked by its sound wherever that begins, so that its copies may differ in length.
    bool isAligned(qint32 track) const { return m_nodes[static_cast<std::size_t>(track)].isAligned; }

    void linkAligned(qint32 a, qint32 b, double errorRate = 0)
    {
        link(a, b, MatchType::SameRecording, errorRate);
        node(a).isAligned = node(b).isAligned = true;
    }

    /// Those that joined two sets, one fewer than a set has tracks.
    const std::vector<MatchLink> &links() const { return m_links; }

    /// Two tracks, in ascending order, of which one may be an edit of the other. It links nothing.
    void noteEdit(qint32 a, qint32 b) { m_edits.emplace_back(a, b); }
    const std::vector<std::pair<qint32, qint32>> &edits() const { return m_edits; }

private:
    struct Node {
        qint32 parent = 0;
        qint32 rank = 0;
        MatchType method = MatchType::Unmatched;
        bool isAligned = false;
    };

    qint32 parent(qint32 track) const { return m_nodes[static_cast<std::size_t>(track)].parent; }
    Node &node(qint32 track) { return m_nodes[static_cast<std::size_t>(track)]; }

    bool joinRoots(qint32 a, qint32 b)
    {
        if (a == b)
            return false;
        if (node(a).rank < node(b).rank)
            std::swap(a, b);
        if (node(a).rank == node(b).rank)
            ++node(a).rank;
        node(b).parent = a;
        return true;
    }

    std::vector<Node> m_nodes;
    std::vector<MatchLink> m_links;
    std::vector<std::pair<qint32, qint32>> m_edits;
};

} // namespace epr
