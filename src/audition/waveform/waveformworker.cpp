// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformworker.h"

#include "waveformdecoding.h"

#include <QThread>

#include <utility>

namespace epr {

WaveformWorker::WaveformWorker(std::shared_ptr<const WaveformGenerations> generations, int watchdogMs)
    : m_generations(std::move(generations))
    , m_watchdogMs(watchdogMs)
{
}

void WaveformWorker::analyse(const WaveformRequest &request)
{
    m_waiting.at(request.deck) = request;
    if (m_decoding)
        return dropOutdated();
    while (const auto next = takeWaiting())
        decode(*next);
}

void WaveformWorker::dropOutdated()
{
    if (m_decoding && !isWanted(m_current))
        m_decoding->end();
}

bool WaveformWorker::isWanted(const WaveformRequest &request) const
{
    return request.isNewest(*m_generations) && !QThread::currentThread()->isInterruptionRequested();
}

std::optional<WaveformRequest> WaveformWorker::takeWaiting()
{
    for (auto &waiting : m_waiting) {
        if (waiting)
            return std::exchange(waiting, std::nullopt);
    }
    return std::nullopt;
}

void WaveformWorker::decode(const WaveformRequest &request)
{
    if (!isWanted(request))
        return;
    WaveformDecoding decoding([this, &request] { return isWanted(request); }, m_watchdogMs);
    m_current = request;
    m_decoding = &decoding;
    const WaveformOutcome outcome = decoding.run(request.path);
    m_decoding = nullptr;
    if (!isWanted(request))
        return;
    if (outcome.envelope.peak.isEmpty())
        Q_EMIT failed(request, outcome.error);
    else
        Q_EMIT loaded(request, outcome.envelope);
}

} // namespace epr
