// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "differencemonitor.h"

#include "mediadeck.h"

#include <cstdlib>

namespace epr {

DifferenceMonitor::DifferenceMonitor(QObject *parent)
    : QObject(parent)
{
    connect(&m_maker, &DifferenceMaker::made, this, [this](const QString &path, double remainderDb) {
        m_isPreparing = false;
        m_remainderDb = remainderDb;
        m_playback = std::make_unique<MediaDeck>();
        connect(m_playback.get(), &DeckPlayback::problem, this, &DifferenceMonitor::failed);
        m_playback->setSource(path);
        Q_EMIT changed();
    });
    connect(&m_maker, &DifferenceMaker::failed, this, [this](const QString &error) {
        m_isPreparing = m_isWanted = false;
        Q_EMIT failed(error);
        Q_EMIT changed();
    });
}

void DifferenceMonitor::listen(const DifferenceRequest &request)
{
    m_isWanted = true;
    if (!m_remainderDb && !m_isPreparing) {
        m_isPreparing = true;
        m_maker.request(request);
    }
    Q_EMIT changed();
}

void DifferenceMonitor::leave()
{
    if (std::exchange(m_isWanted, false))
        Q_EMIT changed();
}

void DifferenceMonitor::forget()
{
    m_playback.reset(); // first: it has the file open
    m_maker.cancel();
    m_remainderDb.reset();
    m_isPreparing = m_isWanted = false;
    Q_EMIT changed();
}

void DifferenceMonitor::follow(qint64 positionMs, bool play)
{
    constexpr qint64 mostDriftMs = 140; // as of the decks
    constexpr qint64 moveMs = 1000; // what no drift is
    if (!m_playback)
        return;
    if (!play || !isHeard() || positionMs < 0) {
        m_playback->pause();
        return;
    }
    m_playback->setVolume(1.0F);
    const qint64 offBy = std::abs(m_playback->position() - positionMs);
    const bool isSettled = !m_sinceMove.isValid() || m_sinceMove.hasExpired(moveMs);
    if (!m_playback->isPlaying() || offBy > moveMs || (offBy > mostDriftMs && isSettled)) {
        if (m_playback->isPlaying() && !isSettled)
            return; // on its way
        m_playback->setPosition(positionMs);
        m_sinceMove.start();
    }
    if (!m_playback->isPlaying() && !m_playback->hasEnded())
        m_playback->play();
}

} // namespace epr
