// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decisionhistory.h"

#include <algorithm>
#include <utility>

namespace epr {

void DecisionHistory::add(DecisionStep step)
{
    m_steps.resize(m_done);
    step.ticks.shrink_to_fit();
    m_steps.push_back(std::move(step));
    m_done = m_steps.size();
}

void DecisionHistory::forget(const QSet<qint32> &tracks, const QSet<qint32> &groups)
{
    std::vector<DecisionStep> left;
    std::size_t done = 0;
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        DecisionStep &step = m_steps[i];
        std::erase_if(step.ticks,
                      [&](DecisionStep::Tick tick) { return tracks.contains(static_cast<qint32>(tick.track)); });
        step.groups.removeIf([&](const DecisionStep::Group &group) { return groups.contains(group.id); });
        if (step.isEmpty())
            continue;
        left.push_back(std::move(step));
        done += i < m_done ? 1U : 0U;
    }
    m_steps = std::move(left);
    m_done = done;
}

} // namespace epr
