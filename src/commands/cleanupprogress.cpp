// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupprogress.h"

namespace epr {

CleanupProgress::State CleanupProgress::state() const
{
    const std::scoped_lock lock(m_mutex);
    return m_state;
}

bool CleanupProgress::hasStopped() const
{
    const std::scoped_lock lock(m_mutex);
    return m_hasStopped;
}

void CleanupProgress::requestStop()
{
    const std::scoped_lock lock(m_mutex);
    m_stopRequested = true;
}

bool CleanupProgress::advance(const State &next)
{
    const std::scoped_lock lock(m_mutex);
    m_hasStopped = m_stopRequested;
    if (!m_stopRequested)
        m_state = next;
    return !m_stopRequested;
}

} // namespace epr
