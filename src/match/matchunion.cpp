// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matchunion.h"

#include <algorithm>

namespace epr {

MatchUnion::MatchUnion(qsizetype trackCount)
    : m_nodes(static_cast<std::size_t>(trackCount))
{
    qint32 track = 0;
    for (Node &each : m_nodes)
        each.parent = track++;
}

qint32 MatchUnion::findRoot(qint32 track)
{
    while (node(track).parent != track) {
        node(track).parent = node(node(track).parent).parent;
        track = node(track).parent;
    }
    return track;
}

void MatchUnion::link(qint32 a, qint32 b, MatchType type)
{
    joinRoots(findRoot(a), findRoot(b));
    raiseMethod(findRoot(a), type);
    raiseMethod(a, type);
    raiseMethod(b, type);
}

void MatchUnion::joinRoots(qint32 a, qint32 b)
{
    if (a == b)
        return;
    if (node(a).rank < node(b).rank)
        std::swap(a, b);
    if (node(a).rank == node(b).rank)
        ++node(a).rank;
    node(b).parent = a;
}

void MatchUnion::raiseMethod(qint32 track, MatchType type)
{
    node(track).method = leastCertain(node(track).method, type);
}

MatchType leastCertain(MatchType a, MatchType b)
{
    if (a == MatchType::Unmatched || b == MatchType::Unmatched)
        return std::min(a, b);
    return std::max(a, b);
}

} // namespace epr
