// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace epr {

/// Calls work(thread, index) once for each index below count, on so many threads numbered from 0. Number 0 is the
/// calling thread; the others are begun and ended here, so that all their work lies before what the caller does next.
/// Indexes are begun in ascending order.
template <typename Work> void forEachOnThreads(int threads, qsizetype count, const Work &work)
{
    std::atomic<qsizetype> next = 0;
    const auto takeTurns = [&](int thread) {
        for (qsizetype index = next++; index < count; index = next++)
            work(thread, index);
    };
    std::vector<std::jthread> others;
    for (int thread = 1; thread < std::min<qsizetype>(threads, count); ++thread)
        others.emplace_back(takeTurns, thread);
    takeTurns(0);
}

/// How many threads a pass over so many tracks starts: those wanted, as far as there is enough for each to do.
inline int usefulThreads(int wanted, qsizetype trackCount)
{
    constexpr qsizetype most = 16;
    constexpr qsizetype tracksPerThread = 256; // at least, to be worth starting it
    return std::clamp(wanted, 1, static_cast<int>(std::min(most, 1 + trackCount / tracksPerThread)));
}

} // namespace epr
