// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <array>
#include <limits>

namespace epr::bench {

/// Shortest time in seconds of each task over some rounds. The tasks take turns, so that a busy spell on the machine
/// hits all of them alike.
template <typename... Tasks> std::array<double, sizeof...(Tasks)> shortestTimes(int rounds, Tasks &&...tasks)
{
    std::array<double, sizeof...(Tasks)> best;
    best.fill(std::numeric_limits<double>::infinity());
    const auto time = [](auto &task) {
        QElapsedTimer timer;
        timer.start();
        task();
        return static_cast<double>(timer.nsecsElapsed()) / 1e9;
    };
    for (int round = 0; round < rounds; ++round) {
        std::size_t index = 0;
        ((best[index] = std::min(best[index], time(tasks)), ++index), ...);
    }
    return best;
}

} // namespace epr::bench
