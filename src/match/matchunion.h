// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchtype.h"

#include <vector>

namespace epr {

/// Disjoint sets of tracks (by index into the scan's track list), joined by the links of all matching passes, with the
/// least certain match type that touched each track.
class MatchUnion final {
public:
    explicit MatchUnion(qsizetype trackCount);

    [[nodiscard]] qint32 trackCount() const { return static_cast<qint32>(m_nodes.size()); }

    /// The largest type of any link that touched the track, or its set while the track stood for the set; Unmatched
    /// if none did.
    [[nodiscard]] MatchType method(qint32 track) const { return node(track).method; }

    /// The track that stands for the track's set. Shortens the path on the way, so that it is not const.
    [[nodiscard]] qint32 findRoot(qint32 track);

    /// Joins the sets of two tracks and records the type on both and on the joined set's root, also when they were in
    /// one set already.
    void link(qint32 a, qint32 b, MatchType type);

private:
    struct Node {
        qint32 parent = 0;
        qint32 rank = 0;
        MatchType method = MatchType::Unmatched;
    };

    [[nodiscard]] Node &node(qint32 track) { return m_nodes[static_cast<std::size_t>(track)]; }
    [[nodiscard]] const Node &node(qint32 track) const { return m_nodes[static_cast<std::size_t>(track)]; }
    void joinRoots(qint32 a, qint32 b);
    void raiseMethod(qint32 track, MatchType type);

    std::vector<Node> m_nodes;
};

/// The less certain of two match types, where Unmatched gives way to any other.
[[nodiscard]] MatchType leastCertain(MatchType a, MatchType b);

} // namespace epr
