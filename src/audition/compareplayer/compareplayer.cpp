// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareplayer.h"

#include "comparisontext.h"
#include "deckview.h"
#include "differencemonitor.h"
#include "mediadeck.h"
#include "transportview.h"

#include <QFileInfo>
#include <QHBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace epr {

namespace {

constexpr int syncIntervalMs = 1000;

// Playing a deck that the position is beyond the end of would begin it anew.
void moveTo(DeckPlayback &playback, qint64 positionMs, bool play)
{
    playback.setPosition(positionMs);
    if (play && !playback.hasEnded())
        playback.play();
}

} // namespace

ComparePlayer::ComparePlayer(QWidget *parent)
    : ComparePlayer({ std::make_unique<MediaDeck>(), std::make_unique<MediaDeck>() }, parent)
{
}

ComparePlayer::ComparePlayer(Playbacks playbacks, QWidget *parent)
    : QWidget(parent)
    , m_difference(new DifferenceMonitor(this))
{
    createViews();
    connectTransport();
    connectPreviews();
    for (const Deck deck : bothDecks)
        m_sides[deck].playback = std::move(playbacks[deck]);
    for (const Deck deck : bothDecks) {
        connectDeck(deck);
        showTrack(deck);
    }
    showMonitor();
    m_syncTimer.setInterval(syncIntervalMs);
    connect(&m_syncTimer, &QTimer::timeout, this, &ComparePlayer::syncTick);
    m_levelTimer.setInterval(Envelope::bucketMs); // the levels come from the envelope
    connect(&m_levelTimer, &QTimer::timeout, this, &ComparePlayer::levelTick);
}

// The decks fall silent together, and report no more to views that are going too.
ComparePlayer::~ComparePlayer()
{
    for (const Deck deck : bothDecks)
        m_sides[deck].playback->disconnect();
    stop();
}

void ComparePlayer::load(Deck deck, const TrackInfo &track)
{
    if (track.path.isEmpty())
        return clear(deck);
    Side &side = m_sides[deck];
    const bool isSame = side.track.path == track.path;
    const qint64 positionMs = side.playback->position();
    if (!isSame) {
        setOffset({});
        m_difference->forget();
    }
    const bool isToPlay = !side.waits && (side.playback->isPlaying() || (m_linked && isAnyPlaying()));
    side.track = track;
    side.forgetSound();
    side.awaitsPreview = true;
    side.view->setProblem({});
    side.playback->setSource(track.path);
    if (isSame)
        moveTo(*side.playback, positionMs, isToPlay);
    else if (isToPlay)
        side.playback->play();
    showTrack(deck);
    if (side.awaitsPreview)
        m_previews.request(static_cast<int>(deck), track.path);
    else
        side.view->setPreviewUnavailable(); // the deck has given the file up already
}

void ComparePlayer::loadIntoFreeDeck(const TrackInfo &track)
{
    for (const Deck deck : bothDecks) {
        if (!m_sides[deck].hasFile())
            return load(deck, track);
    }
    load(otherDeck(m_monitor), track);
}

void ComparePlayer::clear(Deck deck)
{
    setOffset({});
    m_difference->forget();
    Side &side = m_sides[deck];
    side.playback->stop();
    side.playback->setSource({});
    side.track = {};
    side.forgetSound();
    side.awaitsPreview = false;
    side.view->setProblem({});
    m_previews.cancel(static_cast<int>(deck));
    showTrack(deck);
}

void ComparePlayer::release(const QStringList &paths)
{
    clearWhere([&paths](const QString &path) { return paths.contains(path); });
    m_previews.awaitClosed(paths);
    static_cast<void>(m_difference->awaitClosed());
}

void ComparePlayer::clearVanished()
{
    clearWhere([](const QString &path) { return !QFileInfo::exists(path); });
}

void ComparePlayer::clearWhere(const std::function<bool(const QString &path)> &isUnwanted)
{
    for (const Deck deck : bothDecks) {
        if (m_sides[deck].hasFile() && isUnwanted(m_sides[deck].track.path))
            clear(deck);
    }
}

void ComparePlayer::playPause()
{
    if (isAnyPlaying())
        return pause();
    if (!m_linked || !m_sides.b.hasFile())
        return m_sides[m_monitor].playback->play();
    place(leader(), m_sides[leader()].playback->position(), true);
    follow(true);
    if (isAnyPlaying() || !(m_sides.a.playback->hasEnded() || m_sides.b.playback->hasEnded()))
        return;
    place(m_monitor, 0, true); // nothing is left of either, so both begin anew
    follow(true);
}

void ComparePlayer::pause()
{
    for (const Deck deck : bothDecks)
        m_sides[deck].playback->pause();
}

void ComparePlayer::stop()
{
    for (const Deck deck : bothDecks) {
        m_sides[deck].waits = false;
        m_sides[deck].playback->stop();
    }
}

// A deck that ran out while the other plays on joins it again when both are taken to where it has something to play.
void ComparePlayer::seek(Deck deck, qint64 positionMs)
{
    if (!m_linked)
        return m_sides[deck].playback->setPosition(positionMs);
    const bool isPlaying = isAnyPlaying();
    const PerDeck<qint64> targets = deck == Deck::A
        ? PerDeck<qint64> { positionMs, positionMs + m_offsetMs.value_or(0) }
        : PerDeck<qint64> { positionMs - m_offsetMs.value_or(0), positionMs };
    for (const Deck each : bothDecks) {
        const bool joins = m_sides[each].waits || m_sides[each].playback->hasEnded();
        if (each == Deck::A || m_sides.b.hasFile())
            place(each, targets[each], isPlaying && joins);
    }
}

void ComparePlayer::setOffset(std::optional<qint64> bLaterMs)
{
    const qint64 before = m_offsetMs.value_or(0);
    m_offsetMs = bLaterMs;
    showDeltas();
    if (m_linked && areBothLoaded() && m_offsetMs.value_or(0) != before)
        follow(isAnyPlaying());
}

void ComparePlayer::setMarks(Deck deck, const QList<std::pair<qint64, qint64>> &spansMs)
{
    m_sides[deck].view->setMarks(spansMs);
}

void ComparePlayer::showMeasures(Deck deck, const SoundMeasures &measures)
{
    m_sides[deck].measures = measures;
    showDeltas();
    turnDown();
}

void ComparePlayer::setKept(Deck deck, bool kept)
{
    m_sides[deck].view->setKept(kept);
}

void ComparePlayer::setLinked(bool linked)
{
    const bool hasChanged = std::exchange(m_linked, linked) != linked;
    if (!linked)
        m_sides.a.waits = m_sides.b.waits = false;
    else if (areBothLoaded() && !m_sides.a.waits)
        place(Deck::B, counterpart(Deck::B), m_sides.b.waits && m_sides.a.playback->isPlaying());
    if (linked)
        m_syncTimer.start();
    else
        m_syncTimer.stop();
    m_transport->setLinked(linked);
    if (hasChanged)
        Q_EMIT linkedChanged(linked);
}

void ComparePlayer::setSameLoudness(bool same)
{
    const bool hasChanged = std::exchange(m_sameLoudness, same) != same;
    m_transport->setSameLoudness(same);
    turnDown();
    if (hasChanged)
        Q_EMIT sameLoudnessChanged(same);
}

// A correction interrupts the deck for as long as its engine takes to seek, so it has to be worth it. The limit is a
// choice, not a measurement: a switch that lands a seventh of a second off still falls on the same note.
void ComparePlayer::syncTick()
{
    joinLeader();
    const DeckPlayback &monitored = *m_sides[m_monitor].playback;
    const Deck other = otherDeck(m_monitor);
    const DeckPlayback &playback = *m_sides[other].playback;
    if (!m_linked || !areBothLoaded() || !monitored.isPlaying() || !playback.isPlaying())
        return;
    if (std::abs(playback.position() - counterpart(other)) > maxDriftMs)
        place(other, counterpart(other), true);
}

// The monitored one, unless that stands where the other has yet to get to.
Deck ComparePlayer::leader() const
{
    return m_sides[m_monitor].waits ? otherDeck(m_monitor) : m_monitor;
}

qint64 ComparePlayer::counterpart(Deck deck) const
{
    const qint64 offsetMs = m_offsetMs.value_or(0);
    return m_sides[otherDeck(deck)].playback->position() + (deck == Deck::B ? offsetMs : -offsetMs);
}

void ComparePlayer::place(Deck deck, qint64 positionMs, bool play)
{
    Side &side = m_sides[deck];
    side.waits = positionMs < 0 && side.hasFile();
    if (side.waits)
        side.playback->pause();
    moveTo(*side.playback, std::max<qint64>(positionMs, 0), play && !side.waits);
}

void ComparePlayer::follow(bool play)
{
    const Deck follower = otherDeck(leader());
    place(follower, counterpart(follower), play);
}

// Starts what waits when its moment has come. Looked at as often as the levels are, so that it is hardly late.
void ComparePlayer::joinLeader()
{
    for (const Deck deck : bothDecks) {
        if (m_sides[deck].waits && m_sides[otherDeck(deck)].playback->isPlaying() && counterpart(deck) >= 0)
            place(deck, counterpart(deck), true);
    }
}

void ComparePlayer::createViews()
{
    m_transport = new TransportView(this);
    for (const Deck deck : bothDecks)
        m_sides[deck].view = new DeckView(deck, this);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 2, 8, 4);
    layout->setSpacing(4);
    layout->addWidget(m_sides.a.view, 1);
    layout->addWidget(m_transport);
    layout->addWidget(m_sides.b.view, 1);
}

void ComparePlayer::connectTransport()
{
    connect(m_transport, &TransportView::playPauseRequested, this, &ComparePlayer::playPause);
    connect(m_transport, &TransportView::stopRequested, this, &ComparePlayer::stop);
    connect(m_transport, &TransportView::linkRequested, this, &ComparePlayer::setLinked);
    connect(m_transport, &TransportView::sameLoudnessRequested, this, &ComparePlayer::setSameLoudness);
    connect(m_transport, &TransportView::monitorRequested, this, &ComparePlayer::setMonitor);
    connect(m_transport, &TransportView::differenceRequested, this, &ComparePlayer::monitorDifference);
    connect(m_difference, &DifferenceMonitor::changed, this, &ComparePlayer::showDifference);
    connect(m_difference, &DifferenceMonitor::failed, this, [this](const QString &error) {
        m_sides.b.view->setProblem(error);
        Q_EMIT logMessage(comparisontext::differenceProblem(error));
    });
}

void ComparePlayer::connectDeck(Deck deck)
{
    const Side &side = m_sides[deck];
    const DeckPlayback *playback = side.playback.get();
    connect(playback, &DeckPlayback::positionChanged, side.view, &DeckView::setPositionMs);
    connect(playback, &DeckPlayback::durationChanged, side.view, &DeckView::setDurationMs);
    connect(playback, &DeckPlayback::playingChanged, this, [this, deck] { onPlayingChanged(deck); });
    connect(playback, &DeckPlayback::problem, this, [this, deck](const QString &text) { onProblem(deck, text); });
    connect(side.view, &DeckView::seekRequested, this, [this, deck](qint64 ms) { seek(deck, ms); });
    connect(side.view, &DeckView::clicked, this, [this, deck] { setMonitor(deck); });
}

void ComparePlayer::connectPreviews()
{
    connect(&m_previews, &WaveformLoader::loaded, this, [this](int deck, const Envelope &envelope) {
        Side &side = m_sides[static_cast<Deck>(deck)];
        side.awaitsPreview = false;
        side.view->setEnvelope(envelope);
        side.peak = *std::max_element(envelope.peak.begin(), envelope.peak.end()) / envelope.raisedBy;
        side.previewLoudness = envelope.loudness;
        showDeltas();
        turnDown();
    });
    connect(&m_previews, &WaveformLoader::failed, this,
            [this](int deck, const QString &error) { giveUpPreview(static_cast<Deck>(deck), error); });
}

bool ComparePlayer::isAnyPlaying() const
{
    return m_sides.a.playback->isPlaying() || m_sides.b.playback->isPlaying();
}

void ComparePlayer::setMonitor(Deck deck)
{
    m_difference->leave();
    if (std::exchange(m_monitor, deck) != deck)
        showMonitor();
}

void ComparePlayer::monitorDifference()
{
    if (!areBothLoaded())
        return;
    m_difference->listen({ { m_sides.a.track.path, m_sides.b.track.path },
                           { m_sides.a.track.stream.sampleRate, m_sides.b.track.stream.sampleRate },
                           m_offsetMs.value_or(0) });
}

void ComparePlayer::showDifference()
{
    m_transport->setDifference(m_difference->isPreparing(),
                               m_difference->isHeard() ? m_difference->remainderDb() : std::nullopt);
    showMonitor();
    levelTick();
}

void ComparePlayer::showMonitor()
{
    m_transport->setMonitor(m_difference->isHeard() ? std::nullopt : std::optional(m_monitor));
    for (const Deck deck : bothDecks)
        m_sides[deck].view->setMonitored(deck == m_monitor);
    setVolumes();
}

// By half a decibel at a time while something plays, so that what is heard does not jump.
void ComparePlayer::turnDown()
{
    constexpr double stepDb = 0.5;
    for (const Deck deck : bothDecks) {
        Side &side = m_sides[deck];
        const double louderBy = side.loudness() - m_sides[otherDeck(deck)].loudness();
        const double wantedDb = m_sameLoudness && std::isfinite(louderBy) ? std::max(louderBy, 0.0) : 0.0;
        const double nowDb = side.turnedDownBy;
        side.turnedDownBy = isAnyPlaying() ? std::clamp(wantedDb, nowDb - stepDb, nowDb + stepDb) : wantedDb;
        side.view->setTurnedDown(wantedDb);
    }
    setVolumes();
}

void ComparePlayer::setVolumes()
{
    for (const Deck deck : bothDecks) {
        const bool isHeard = deck == m_monitor && !m_difference->isHeard();
        const double gain = std::pow(10, -m_sides[deck].turnedDownBy / 20);
        m_sides[deck].playback->setVolume(isHeard ? static_cast<float>(gain) : 0.0F);
    }
}

// What the playback knows may be known since the file was loaded, and is told only once.
void ComparePlayer::showTrack(Deck deck)
{
    const Side &side = m_sides[deck];
    side.view->setTrack(side.track);
    if (side.playback->duration() > 0)
        side.view->setDurationMs(side.playback->duration());
    side.view->setPositionMs(side.playback->position());
    showDeltas();
    turnDown();
    Q_EMIT tracksChanged();
}

void ComparePlayer::showDeltas()
{
    const auto &[a, b] = m_sides;
    const bool areMeasured = std::isfinite(a.measures.truePeak) && std::isfinite(b.measures.truePeak);
    m_transport->setDeltas({
        .duration = comparisontext::durationDelta(a.track, b.track),
        .bitrate = comparisontext::bitrateDelta(a.track, b.track),
        .level = areMeasured ? comparisontext::decibelDelta(a.measures.truePeak, b.measures.truePeak)
                             : comparisontext::levelDelta(a.peak, b.peak),
        .start = comparisontext::startDelta(m_offsetMs.value_or(0)),
        .loudness = comparisontext::loudnessDelta(a.measures.loudness, b.measures.loudness),
        .bandwidth = comparisontext::bandwidthDelta(a.measures.bandwidthHz, b.measures.bandwidthHz),
    });
}

void ComparePlayer::levelTick()
{
    joinLeader();
    turnDown();
    const Deck guide = leader();
    m_difference->follow(guide == Deck::A ? m_sides.a.playback->position() : counterpart(Deck::A),
                         m_sides[guide].playback->isPlaying());
    for (const Deck deck : bothDecks) {
        if (m_sides[deck].playback->isPlaying())
            m_sides[deck].view->showLevelsAt(m_sides[deck].playback->position());
    }
}

void ComparePlayer::onPlayingChanged(Deck deck)
{
    const Side &side = m_sides[deck];
    if (side.playback->isPlaying())
        side.view->setProblem({}); // what plays has none any more: an output has come, say
    else
        side.view->resetLevels();
    levelTick();
    m_transport->setPlaying(isAnyPlaying());
    if (isAnyPlaying())
        m_levelTimer.start();
    else
        m_levelTimer.stop();
}

// A decoder may stay silent for a minute about a file that the player has already given up, and would hold up the other
// deck's preview for as long.
void ComparePlayer::onProblem(Deck deck, const QString &problem)
{
    m_sides[deck].view->setProblem(problem);
    Q_EMIT logMessage(comparisontext::deckProblem(deck, problem));
    if (m_sides[deck].playback->hasFailed() && m_sides[deck].awaitsPreview)
        giveUpPreview(deck, problem);
}

void ComparePlayer::giveUpPreview(Deck deck, const QString &error)
{
    m_sides[deck].awaitsPreview = false;
    m_previews.cancel(static_cast<int>(deck));
    m_sides[deck].view->setPreviewUnavailable();
    Q_EMIT logMessage(comparisontext::previewProblem(error));
}

} // namespace epr
