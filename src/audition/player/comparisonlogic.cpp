// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparisonlogic.h"

#include "deckplayback.h"

#include <algorithm>
#include <cstdlib>

namespace epr {

namespace {

constexpr int deckB = 1;
constexpr qint64 maxDriftMs = 140;

bool isDeck(int deck)
{
    return deck == 0 || deck == deckB;
}

} // namespace

ComparisonLogic::ComparisonLogic(DeckPlayback &a, DeckPlayback &b)
    : m_decks { &a, &b }
{
    applyVolumes();
}

bool ComparisonLogic::isAnyPlaying() const
{
    return deckAt(0).isPlaying() || deckAt(deckB).isPlaying();
}

bool ComparisonLogic::hasFile(int deck) const
{
    return isDeck(deck) && !m_tracks.at(deck).path.isEmpty();
}

TrackInfo ComparisonLogic::track(int deck) const
{
    return isDeck(deck) ? m_tracks.at(deck) : TrackInfo();
}

void ComparisonLogic::load(int deck, const TrackInfo &track)
{
    if (!isDeck(deck))
        return;
    DeckPlayback &playback = deckAt(deck);
    const bool same = hasFile(deck) && m_tracks.at(deck).path == track.path;
    const qint64 position = playback.position();
    const bool wasPlaying = playback.isPlaying();
    m_tracks.at(deck) = track;
    playback.setSource(track.path);
    if (!same)
        return;
    playback.setPosition(position);
    if (wasPlaying)
        playback.play();
}

void ComparisonLogic::clear(int deck)
{
    if (!isDeck(deck))
        return;
    deckAt(deck).stop();
    deckAt(deck).setSource({});
    m_tracks.at(deck) = {};
}

void ComparisonLogic::playPause()
{
    DeckPlayback &heard = deckAt(m_monitor);
    if (isAnyPlaying()) {
        for (DeckPlayback *deck : m_decks)
            deck->pause();
    } else if (m_linked && hasFile(deckB)) {
        const qint64 start = heard.hasEnded() ? 0 : heard.position();
        for (DeckPlayback *deck : m_decks)
            moveTo(*deck, start, true);
    } else {
        heard.play();
    }
}

void ComparisonLogic::stop()
{
    for (DeckPlayback *deck : m_decks)
        deck->stop();
}

void ComparisonLogic::seek(int deck, qint64 positionMs)
{
    if (!isDeck(deck))
        return;
    if (!m_linked)
        return deckAt(deck).setPosition(positionMs);
    // A deck that ran out while the other plays on joins it again when both are taken to where it has something to
    // play.
    const bool playing = isAnyPlaying();
    moveTo(deckAt(0), positionMs, playing && deckAt(0).hasEnded());
    if (hasFile(deckB))
        moveTo(deckAt(deckB), positionMs, playing && deckAt(deckB).hasEnded());
}

bool ComparisonLogic::setMonitor(int deck)
{
    if (!isDeck(deck) || deck == m_monitor)
        return false;
    m_monitor = deck;
    applyVolumes();
    return true;
}

void ComparisonLogic::setLinked(bool linked)
{
    m_linked = linked;
    if (m_linked && hasFile(0) && hasFile(deckB))
        deckAt(deckB).setPosition(deckAt(0).position());
}

void ComparisonLogic::syncTick()
{
    if (!m_linked || !hasFile(0) || !hasFile(deckB) || !deckAt(0).isPlaying() || !deckAt(deckB).isPlaying())
        return;
    const qint64 wanted = deckAt(m_monitor).position();
    DeckPlayback &other = deckAt(1 - m_monitor);
    if (std::abs(other.position() - wanted) > maxDriftMs)
        other.setPosition(wanted);
}

void ComparisonLogic::applyVolumes()
{
    for (int deck = 0; deck <= deckB; ++deck)
        deckAt(deck).setVolume(deck == m_monitor ? 1.0F : 0.0F);
}

// Playing a deck that the position is beyond the end of would begin it anew.
void ComparisonLogic::moveTo(DeckPlayback &deck, qint64 positionMs, bool play)
{
    deck.setPosition(positionMs);
    if (play && !deck.hasEnded())
        deck.play();
}

} // namespace epr
