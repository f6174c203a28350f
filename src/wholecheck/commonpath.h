// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "leveldistance.h"
#include "placefinder.h"

namespace epr {

/// For each frame of a first recording, where the second has it: the way that two copies go together, which follows
/// another speed and jumps where one of them lacks a part.
class CommonPath final {
public:
    static constexpr qsizetype nowhere = std::numeric_limits<qsizetype>::min();

    /// From a place that they are known to have in common, to both ends.
    CommonPath(const LevelDistance &distance, const PlaceFinder &finder, const PlaceFinder::Place &start);

    /// Frames that the second is later; nowhere for what it lacks.
    const std::vector<qsizetype> &offsets() const { return m_offsets; }

private:
    struct Jump {
        qsizetype from = 0; ///< the first frame that the old offset does not hold for any more
        qsizetype to = 0; ///< the first that the new one holds for
    };

    void walk(qsizetype from, qsizetype offset, int direction);
    qsizetype followed(qsizetype frame, qsizetype offset) const;
    bool isLost(qsizetype frame, qsizetype offset, int direction) const;
    std::optional<qsizetype> foundAnew(qsizetype frame, qsizetype offset, int direction) const;
    bool goesOn(qsizetype frame, qsizetype before, qsizetype after, int direction) const;
    std::optional<Jump> jumpTo(qsizetype after, qsizetype frame, qsizetype before, int direction) const;
    void leave(qsizetype frame, qsizetype offset, qsizetype jumpsAt, int direction);

    const LevelDistance &m_distance;
    const PlaceFinder &m_finder;
    std::vector<qsizetype> m_offsets;
};

} // namespace epr
