// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareplayer.h"

#include "comparisontext.h"
#include "deckpair.h"
#include "deckview.h"
#include "transportview.h"

#include <QFileInfo>
#include <QHBoxLayout>

namespace epr {

ComparePlayer::ComparePlayer(QWidget *parent)
    : QWidget(parent)
    , m_player(new DeckPair(this))
{
    createViews();
    connectViews();
    connectPlayer();
    for (const int deck : { 0, 1 })
        onDeckChanged(deck);
    onMonitorChanged();
    m_levelTimer.setInterval(Envelope::bucketMs); // the levels come from the envelope
    connect(&m_levelTimer, &QTimer::timeout, this, &ComparePlayer::showLevels);
}

// The decks fall silent before their faces go.
ComparePlayer::~ComparePlayer()
{
    m_player->disconnect(this);
    delete m_player;
}

bool ComparePlayer::isLinked() const
{
    return m_player->isLinked();
}

int ComparePlayer::monitor() const
{
    return m_player->monitor();
}

TrackInfo ComparePlayer::track(int deck) const
{
    return m_player->track(deck);
}

void ComparePlayer::load(int deck, const TrackInfo &track)
{
    m_player->load(deck, track);
}

void ComparePlayer::loadIntoFreeDeck(const TrackInfo &track)
{
    const int unheard = 1 - m_player->monitor();
    load(!m_player->hasFile(0) ? 0 : !m_player->hasFile(1) ? 1 : unheard, track);
}

void ComparePlayer::clear(int deck)
{
    m_player->clear(deck);
}

void ComparePlayer::release(const QStringList &paths)
{
    for (const int deck : { 0, 1 }) {
        if (m_player->hasFile(deck) && paths.contains(m_player->track(deck).path))
            clear(deck);
    }
    leaveEmptyDeck();
}

void ComparePlayer::clearVanished()
{
    for (const int deck : { 0, 1 }) {
        if (m_player->hasFile(deck) && !QFileInfo::exists(m_player->track(deck).path))
            clear(deck);
    }
    leaveEmptyDeck();
}

// What plays on should be heard.
void ComparePlayer::leaveEmptyDeck()
{
    if (!m_player->hasFile(monitor()) && m_player->hasFile(1 - monitor()))
        swapMonitor();
}

void ComparePlayer::playPause()
{
    m_player->playPause();
}

void ComparePlayer::stop()
{
    m_player->stop();
}

void ComparePlayer::monitorDeckA()
{
    m_player->monitorDeckA();
}

void ComparePlayer::monitorDeckB()
{
    m_player->monitorDeckB();
}

void ComparePlayer::swapMonitor()
{
    m_player->swapMonitor();
}

void ComparePlayer::setLinked(bool linked)
{
    m_player->setLinked(linked);
}

void ComparePlayer::createViews()
{
    m_transport = new TransportView(this);
    m_decks = { new DeckView(0, this), new DeckView(1, this) };
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 2, 8, 4);
    layout->setSpacing(4);
    layout->addWidget(m_decks[0], 1);
    layout->addWidget(m_transport);
    layout->addWidget(m_decks[1], 1);
}

void ComparePlayer::connectViews()
{
    for (const int deck : { 0, 1 }) {
        connect(m_decks.at(deck), &DeckView::seekRequested, m_player,
                [this, deck](qint64 positionMs) { m_player->seek(deck, positionMs); });
    }
    connect(m_decks[0], &DeckView::clicked, m_player, &DeckPair::monitorDeckA);
    connect(m_decks[1], &DeckView::clicked, m_player, &DeckPair::monitorDeckB);
    connect(m_transport, &TransportView::playPauseRequested, m_player, &DeckPair::playPause);
    connect(m_transport, &TransportView::stopRequested, m_player, &DeckPair::stop);
    connect(m_transport, &TransportView::linkRequested, m_player, &DeckPair::setLinked);
    connect(m_transport, &TransportView::monitorRequested, this,
            [this](int deck) { deck == 0 ? monitorDeckA() : monitorDeckB(); });
}

void ComparePlayer::connectPlayer()
{
    const auto view = [this](int deck) { return m_decks.at(deck); };
    connect(m_player, &DeckPair::positionChanged, this,
            [view](int deck, qint64 positionMs) { view(deck)->setPositionMs(positionMs); });
    connect(m_player, &DeckPair::durationChanged, this,
            [view](int deck, qint64 durationMs) { view(deck)->setDurationMs(durationMs); });
    connect(m_player, &DeckPair::envelopeLoaded, this,
            [view](int deck, const Envelope &envelope) { view(deck)->setEnvelope(envelope); });
    connect(m_player, &DeckPair::previewFailed, this, [view](int deck) { view(deck)->setPreviewUnavailable(); });
    connect(m_player, &DeckPair::problemChanged, this,
            [view](int deck, const QString &problem) { view(deck)->setProblem(problem); });
    connect(m_player, &DeckPair::deckChanged, this, &ComparePlayer::onDeckChanged);
    connect(m_player, &DeckPair::playingChanged, this, &ComparePlayer::onPlayingChanged);
    connect(m_player, &DeckPair::monitorChanged, this, &ComparePlayer::onMonitorChanged);
    connect(m_player, &DeckPair::linkedChanged, m_transport, &TransportView::setLinked);
    connect(m_player, &DeckPair::linkedChanged, this, &ComparePlayer::linkedChanged);
    connect(m_player, &DeckPair::logMessage, this, &ComparePlayer::logMessage);
}

void ComparePlayer::onDeckChanged(int deck)
{
    DeckView *view = m_decks.at(deck);
    view->setTrack(m_player->track(deck));
    view->setProblem(m_player->problem(deck)); // what follows may be known since it was loaded, and is told only once
    if (m_player->duration(deck) > 0)
        view->setDurationMs(m_player->duration(deck));
    view->setPositionMs(m_player->position(deck));
    m_transport->setDeltas(comparisontext::durationDelta(m_player->track(0), m_player->track(1)),
                           comparisontext::bitrateDelta(m_player->track(0), m_player->track(1)));
}

void ComparePlayer::onPlayingChanged()
{
    const bool playing = m_player->anyPlaying();
    m_transport->setPlaying(playing);
    if (playing)
        m_levelTimer.start();
    else
        m_levelTimer.stop();
    for (const int deck : { 0, 1 }) {
        if (!m_player->isPlaying(deck))
            m_decks.at(deck)->resetLevels();
    }
}

void ComparePlayer::onMonitorChanged()
{
    m_transport->setMonitor(m_player->monitor());
    for (const int deck : { 0, 1 })
        m_decks.at(deck)->setHeard(deck == m_player->monitor());
}

void ComparePlayer::showLevels()
{
    for (const int deck : { 0, 1 }) {
        if (m_player->isPlaying(deck))
            m_decks.at(deck)->showLevelsAt(m_player->position(deck));
    }
}

} // namespace epr
