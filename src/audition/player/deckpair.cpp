// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "deckpair.h"

#include "comparisontext.h"

namespace epr {

namespace {

constexpr int syncIntervalMs = 1000;

} // namespace

DeckPair::DeckPair(QObject *parent)
    : QObject(parent)
    , m_logic(m_decks[0], m_decks[1])
{
    connectDeck(0);
    connectDeck(1);
    connect(&m_previews, &WaveformLoader::loaded, this, [this](int deck, const Envelope &envelope) {
        m_isPreviewWanted.at(deck) = false;
        Q_EMIT envelopeLoaded(deck, envelope);
    });
    connect(&m_previews, &WaveformLoader::failed, this, &DeckPair::giveUpPreview);
    m_syncTimer.setInterval(syncIntervalMs);
    connect(&m_syncTimer, &QTimer::timeout, this, [this] { m_logic.syncTick(); });
}

// The decks stop together, and report no more to listeners that may be going too.
DeckPair::~DeckPair()
{
    for (MediaDeck &deck : m_decks)
        deck.disconnect(this);
    m_logic.stop();
}

void DeckPair::connectDeck(int deck)
{
    const MediaDeck &media = m_decks.at(deck);
    connect(&media, &MediaDeck::positionChanged, this, [this, deck](qint64 ms) { Q_EMIT positionChanged(deck, ms); });
    connect(&media, &MediaDeck::durationChanged, this, [this, deck](qint64 ms) { Q_EMIT durationChanged(deck, ms); });
    connect(&media, &MediaDeck::playingChanged, this, [this, deck] { onPlayingChanged(deck); });
    connect(&media, &MediaDeck::problem, this, [this, deck](const QString &message) { reportProblem(deck, message); });
}

// What plays has no problem any more: an output has come, say.
void DeckPair::onPlayingChanged(int deck)
{
    if (isPlaying(deck) && !m_problems.at(deck).isEmpty()) {
        m_problems.at(deck).clear();
        Q_EMIT problemChanged(deck, {});
    }
    Q_EMIT playingChanged();
}

// A decoder may stay silent for a minute about a file that the player has already given up, and would hold up the other
// deck's preview for as long.
void DeckPair::reportProblem(int deck, const QString &problem)
{
    m_problems.at(deck) = problem;
    Q_EMIT problemChanged(deck, problem);
    Q_EMIT logMessage(tr("Deck %1: %2").arg(comparisontext::deckName(deck), problem));
    if (m_decks.at(deck).hasFailed() && m_isPreviewWanted.at(deck))
        giveUpPreview(deck, problem);
}

void DeckPair::giveUpPreview(int deck, const QString &error)
{
    m_isPreviewWanted.at(deck) = false;
    m_previews.cancel(deck);
    Q_EMIT previewFailed(deck, error);
    Q_EMIT logMessage(tr("Preview: %1").arg(error));
}

void DeckPair::playPause()
{
    m_logic.playPause();
}

void DeckPair::stop()
{
    m_logic.stop();
}

void DeckPair::monitorDeckA()
{
    setMonitor(0);
}

void DeckPair::monitorDeckB()
{
    setMonitor(1);
}

void DeckPair::swapMonitor()
{
    setMonitor(1 - monitor());
}

void DeckPair::setMonitor(int deck)
{
    if (m_logic.setMonitor(deck))
        Q_EMIT monitorChanged(deck);
}

void DeckPair::setLinked(bool linked)
{
    const bool changed = linked != isLinked();
    m_logic.setLinked(linked);
    if (linked)
        m_syncTimer.start();
    else
        m_syncTimer.stop();
    if (changed)
        Q_EMIT linkedChanged(linked);
}

void DeckPair::seek(int deck, qint64 positionMs)
{
    m_logic.seek(deck, positionMs);
}

void DeckPair::load(int deck, const TrackInfo &track)
{
    if (track.path.isEmpty())
        return clear(deck);
    m_problems.at(deck).clear();
    m_isPreviewWanted.at(deck) = false;
    m_logic.load(deck, track);
    Q_EMIT deckChanged(deck);
    if (m_decks.at(deck).hasFailed())
        return giveUpPreview(deck, problem(deck));
    m_isPreviewWanted.at(deck) = true;
    m_previews.request(deck, track.path);
}

void DeckPair::clear(int deck)
{
    m_problems.at(deck).clear();
    m_isPreviewWanted.at(deck) = false;
    m_logic.clear(deck);
    m_previews.cancel(deck);
    Q_EMIT deckChanged(deck);
}

} // namespace epr
