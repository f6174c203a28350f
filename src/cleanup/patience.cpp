// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "patience.h"

#include "displaytext.h"
#include "fileproblems.h"

#include <QCoreApplication>

#include <algorithm>
#include <thread>

namespace epr {

namespace {

using namespace std::chrono_literals;

constexpr auto longestWait = 1000ms;
constexpr auto shortestWait = 20ms; // about what Windows' clock can tell
constexpr auto longestPause = 80ms; // also how long a stop may go unnoticed

} // namespace

Patience::Patience(GoesOnFn goesOn)
    : m_goesOn(std::move(goesOn))
    , m_limit(longestWait)
{
}

Result<> Patience::awaitFree(const QString &path)
{
    auto waited = 0ms;
    for (auto pause = shortestWait;; pause = std::min(2 * pause, longestPause)) {
        const QString reason = inUse(path);
        if (reason.isEmpty()) {
            if (waited > 0ms)
                m_limit = longestWait;
            return {};
        }
        if (m_limit < shortestWait)
            return failure(reason);
        if (waited >= m_limit) {
            m_limit = m_limit * 3 / 4;
            return failure(reason);
        }
        m_hasStopped =
            m_goesOn && !m_goesOn(QCoreApplication::translate("epr::Cleanup", "Waiting for %1").arg(nativePath(path)));
        if (m_hasStopped)
            return failure(reason);
        std::this_thread::sleep_for(pause);
        waited += pause;
    }
}

} // namespace epr
