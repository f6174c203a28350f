// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewrecord.h"

#include <QSet>

#include <vector>

namespace epr {

/// What is decided of a group as a whole.
struct GroupFacts {
    qint32 keep = -1; ///< track index
    bool keeperByHand = false;
    GroupState state = GroupState::Undecided;

    bool operator==(const GroupFacts &) const = default;
};

/// Bits of what is decided of a copy.
enum DecisionMark : quint8 {
    MarkTicked = 1,
    MarkByHand = 2,
    MarkKept = 4, ///< it was the copy to keep at that time
};

/// What one command of the operator's changed, by numbers of groups and indexes of tracks, which a clean-up leaves as
/// they are. Four bytes for a tick, because a bulk command may change hundreds of thousands;
/// more tracks than 26 bits can number fit into no memory.
struct DecisionStep {
    struct Group {
        qint32 id = 0;
        GroupFacts before;
        GroupFacts after;
    };
    struct Tick {
        quint32 track : 26;
        quint32 before : 3; ///< DecisionMark bits
        quint32 after : 3;
    };
    static_assert(sizeof(Tick) == 4);

    QString text; ///< what the operator calls it
    QList<Group> groups;
    std::vector<Tick> ticks;

    bool isEmpty() const { return groups.isEmpty() && ticks.empty(); }
};

/// The steps that can be undone, and behind those the ones that can be done once more.
class DecisionHistory final {
public:
    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_steps.size(); }
    QString undoText() const { return canUndo() ? m_steps[m_done - 1].text : QString(); }
    QString redoText() const { return canRedo() ? m_steps[m_done].text : QString(); }

    void add(DecisionStep step); ///< what was undone is forgotten
    const DecisionStep &stepBack() { return m_steps[--m_done]; } ///< only if it can
    const DecisionStep &stepForward() { return m_steps[m_done++]; }
    void forget(const QSet<qint32> &tracks, const QSet<qint32> &groups); ///< and steps of nothing else

private:
    std::vector<DecisionStep> m_steps;
    std::size_t m_done = 0;
};

} // namespace epr
