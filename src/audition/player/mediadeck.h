// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deckplayback.h"

#include <QFile>
#include <QMediaDevices>
#include <QMediaPlayer>

#include <memory>
#include <optional>

class QAudioOutput;

namespace epr {

/// Plays one file through Qt's media player, to the system's default audio output as that comes, goes and changes.
/// Without an output the file can still be loaded and moved in.
class MediaDeck final : public DeckPlayback {
    Q_OBJECT

public:
    explicit MediaDeck(QObject *parent = nullptr);
    ~MediaDeck() override;

    qint64 position() const override;
    qint64 duration() const override;
    bool isPlaying() const override;
    bool hasEnded() const override { return m_state.phase == Phase::Ended; }
    bool hasFailed() const override { return m_state.phase == Phase::Failed; }

    void setSource(const QString &path) override;
    void play() override;
    void pause() override;
    void stop() override;
    void setPosition(qint64 positionMs) override;
    void setVolume(float volume) override;

private:
    enum class Phase { Empty, Loading, Loaded, Ended, Failed };

    /// What the deck is in, beyond what the player itself can tell.
    struct State {
        Phase phase = Phase::Empty;
        std::optional<qint64> targetMs {}; ///< to move to once the file can be moved in
        bool isToPlay = false; ///< once the file is loaded
    };

    void enter(const State &state);
    void announcePlaying();
    bool isUsable() const;
    void openSource(const QString &path);
    void moveWhenPossible();
    void onMediaStatus(QMediaPlayer::MediaStatus status);
    void finishLoading();
    void fail(const QString &message);
    void end();
    void followDevices();
    void replaceOutput(std::unique_ptr<QAudioOutput> output);
    void reportNoOutput();

    QMediaDevices m_devices;
    QFile m_file; ///< the source, open only where the player cannot open it itself
    std::unique_ptr<QAudioOutput> m_output; ///< null = the system has none
    QMediaPlayer m_player; // after the file and the output, which it uses
    float m_volume = 1.0F;
    State m_state;
    bool m_announcedPlaying = false;
};

} // namespace epr
