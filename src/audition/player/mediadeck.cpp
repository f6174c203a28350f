// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediadeck.h"

#include "mediabackend.h"
#include "textfile.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QUrl>

#include <algorithm>

namespace epr {

MediaDeck::MediaDeck(QObject *parent)
    : DeckPlayback(parent)
{
    quietMediaBackend();
    connect(&m_devices, &QMediaDevices::audioOutputsChanged, this, &MediaDeck::followDevices);
    connect(&m_player, &QMediaPlayer::positionChanged, this, [this] { Q_EMIT positionChanged(position()); });
    connect(&m_player, &QMediaPlayer::durationChanged, this, [this] { Q_EMIT durationChanged(duration()); });
    connect(&m_player, &QMediaPlayer::playbackStateChanged, this, &MediaDeck::announcePlaying);
    connect(&m_player, &QMediaPlayer::mediaStatusChanged, this, &MediaDeck::onMediaStatus);
    connect(&m_player, &QMediaPlayer::seekableChanged, this, &MediaDeck::moveWhenPossible);
    connect(&m_player, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString &message) { fail(message); });
    followDevices();
}

// A player that is taken down still reports, to a deck that is half gone.
MediaDeck::~MediaDeck()
{
    m_player.disconnect(this);
    m_player.stop();
}

qint64 MediaDeck::duration() const
{
    return std::max<qint64>(m_player.duration(), 0);
}

qint64 MediaDeck::position() const
{
    if (hasEnded())
        return duration();
    return m_player.playbackState() == QMediaPlayer::PlayingState ? m_player.position()
                                                                  : m_state.targetMs.value_or(m_player.position());
}

bool MediaDeck::isPlaying() const
{
    return m_state.isToPlay
        || (m_state.phase == Phase::Loaded && m_player.playbackState() == QMediaPlayer::PlayingState);
}

bool MediaDeck::isUsable() const
{
    return m_state.phase != Phase::Empty && m_state.phase != Phase::Failed;
}

// The one place where the phase changes: what the new state does not say of the one before is over.
void MediaDeck::enter(const State &state)
{
    m_state = state;
    announcePlaying();
}

// Some back-ends say the same several times over, the end of a file above all.
void MediaDeck::announcePlaying()
{
    if (std::exchange(m_announcedPlaying, isPlaying()) != isPlaying())
        Q_EMIT playingChanged();
}

// The player would take the same file again for no change, also when the file has become another one meanwhile.
void MediaDeck::setSource(const QString &path)
{
    enter({ Phase::Empty });
    m_player.stop();
    m_player.setSource({});
    m_file.close();
    if (!path.isEmpty())
        openSource(path);
    Q_EMIT positionChanged(position());
}

void MediaDeck::openSource(const QString &path)
{
    enter({ Phase::Loading });
    m_file.setFileName(path);
    if (!m_player.isAvailable())
        return fail(tr("No media player is available."));
    // Not every back-end reports a file that is not there.
    if (!m_file.open(QIODevice::ReadOnly))
        return fail(m_file.errorString());
    // The player would play what the text names, over the network too.
    if (looksLikeText(path))
        return fail(tr("This file is a text, not audio."));
    if (mediaBackendGarbles(path))
        return fail(tr("MPEG layer II cannot be played here."));
    // The name is a hint for back-ends that go by the suffix; what the deck plays is the file that it has opened.
    m_player.setSourceDevice(&m_file, QUrl::fromLocalFile(path));
}

void MediaDeck::play()
{
    if (!isUsable())
        return;
    followDevices();
    if (!m_output)
        return reportNoOutput();
    if (hasEnded())
        setPosition(0);
    if (m_state.phase == Phase::Loading)
        enter({ Phase::Loading, m_state.targetMs, true });
    else
        m_player.play();
}

void MediaDeck::pause()
{
    if (m_state.phase == Phase::Loading)
        enter({ Phase::Loading, m_state.targetMs });
    // A player that has not begun would begin to pause.
    if (m_player.playbackState() == QMediaPlayer::PlayingState)
        m_player.pause();
}

void MediaDeck::stop()
{
    enter({ hasEnded() ? Phase::Loaded : m_state.phase });
    m_player.stop();
    if (m_player.isSeekable())
        m_player.setPosition(0); // also when it stood still elsewhere
    Q_EMIT positionChanged(position());
}

void MediaDeck::setPosition(qint64 positionMs)
{
    if (!isUsable())
        return;
    enter({ hasEnded() ? Phase::Loaded : m_state.phase, std::max<qint64>(positionMs, 0), m_state.isToPlay });
    moveWhenPossible();
    Q_EMIT positionChanged(position());
}

// A move before the file is loaded is lost on back-ends that load in the background.
void MediaDeck::moveWhenPossible()
{
    if (!m_state.targetMs || m_state.phase == Phase::Loading || !m_player.isSeekable())
        return;
    const qint64 targetMs = *std::exchange(m_state.targetMs, std::nullopt);
    if (duration() > 0 && targetMs >= duration())
        end();
    else
        m_player.setPosition(targetMs);
}

// Some back-ends say that a file is loaded before they have finished taking it, so the deck goes on a little later.
void MediaDeck::onMediaStatus(QMediaPlayer::MediaStatus status)
{
    if (status == QMediaPlayer::EndOfMedia)
        end();
    else if (m_state.phase == Phase::Loading && status == QMediaPlayer::LoadedMedia)
        QMetaObject::invokeMethod(this, &MediaDeck::finishLoading, Qt::QueuedConnection);
}

// A paused player has its first sound decoded, so that two decks begin together.
void MediaDeck::finishLoading()
{
    if (m_state.phase != Phase::Loading || m_player.mediaStatus() != QMediaPlayer::LoadedMedia)
        return;
    enter({ Phase::Loaded, m_state.targetMs, m_state.isToPlay });
    moveWhenPossible();
    if (m_state.phase == Phase::Loaded && m_output)
        m_state.isToPlay ? m_player.play() : m_player.pause();
    if (m_state.phase == Phase::Loaded) // from here on the player tells whether it plays
        enter({ Phase::Loaded, m_state.targetMs });
}

// The player may report an error and then play the file, in silence.
void MediaDeck::fail(const QString &message)
{
    enter({ Phase::Failed, m_state.targetMs });
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (hasFailed())
                m_player.stop();
        },
        Qt::QueuedConnection);
    Q_EMIT problem(message);
}

void MediaDeck::end()
{
    if (!isUsable() || hasEnded())
        return;
    // Some back-ends load a file in which nothing can be decoded, and reach its end at once.
    if (duration() == 0)
        return fail(tr("This file has no audio that can be played."));
    enter({ Phase::Ended });
    if (m_player.playbackState() != QMediaPlayer::StoppedState)
        m_player.stop();
    Q_EMIT positionChanged(position());
}

void MediaDeck::setVolume(float volume)
{
    m_volume = volume;
    if (m_output)
        m_output->setVolume(volume);
}

// Also asked for before playing, because some back-ends do not announce that devices came or went.
void MediaDeck::followDevices()
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull() && m_output) {
        const bool wasPlaying = isPlaying();
        replaceOutput(nullptr);
        if (wasPlaying)
            reportNoOutput();
    } else if (!device.isNull() && !m_output) {
        replaceOutput(std::make_unique<QAudioOutput>(device));
        m_output->setVolume(m_volume);
    } else if (m_output && m_output->device() != device) {
        m_output->setDevice(device);
    }
}

// A player with an output but no device brings the program down on some back-ends, and one without an output would go
// on at a speed of its own. One that gets an output with its file already open may take it for ended.
void MediaDeck::replaceOutput(std::unique_ptr<QAudioOutput> output)
{
    const QString path = isUsable() ? m_file.fileName() : QString();
    const qint64 at = position();
    m_player.setAudioOutput(nullptr); // first, because unloading may open the device once more
    setSource({});
    m_player.setAudioOutput(output.get());
    m_output = std::move(output);
    if (path.isEmpty())
        return;
    setSource(path);
    setPosition(at);
}

void MediaDeck::reportNoOutput()
{
    Q_EMIT problem(tr("No audio output device was found."));
}

} // namespace epr
