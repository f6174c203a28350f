// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <array>
#include <atomic>

namespace epr {

/// How many requests each deck has seen, which makes the newest known. Written by the loader, read by its thread.
using WaveformGenerations = std::array<std::atomic<quint64>, 2>;

struct WaveformRequest {
    int deck = 0; ///< 0 or 1
    QString path;
    quint64 generation = 0; ///< of the deck, when the request was made

    [[nodiscard]] bool isNewest(const WaveformGenerations &generations) const
    {
        return generations.at(deck).load(std::memory_order_relaxed) == generation;
    }
};

} // namespace epr
