// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deckplayback.h"

#include <QFile>
#include <QMediaDevices>
#include <QMediaPlayer>

#include <memory>

class QAudioOutput;

namespace epr {

/// Plays one file through the toolkit's media player, to the system's default audio output as that comes, goes and
/// changes. Without an output the file can still be loaded and moved in.
class MediaDeck final : public QObject, public DeckPlayback {
    Q_OBJECT

public:
    explicit MediaDeck(QObject *parent = nullptr);
    ~MediaDeck() override;

    /// 0 = unknown.
    [[nodiscard]] qint64 duration() const;
    [[nodiscard]] qint64 position() const override;
    [[nodiscard]] bool isPlaying() const override;
    [[nodiscard]] bool hasEnded() const override { return m_ended; }
    /// The file cannot be played; said once by problem().
    [[nodiscard]] bool hasFailed() const { return m_failed; }

    void setSource(const QString &path) override;
    void play() override;
    void pause() override;
    void stop() override;
    void setPosition(qint64 positionMs) override;
    void setVolume(float volume) override;

Q_SIGNALS:
    void positionChanged(qint64 positionMs);
    void durationChanged(qint64 durationMs);
    void playingChanged();
    /// Why the deck stays silent, for the operator.
    void problem(const QString &message);

private:
    [[nodiscard]] bool isUsable() const;
    void announcePlaying();
    void openSource(const QString &path);
    void moveWhenPossible();
    void onMediaStatus(QMediaPlayer::MediaStatus status);
    void finishLoading();
    void onError(const QString &message);
    void setEnded();
    void followDevices();
    void replaceOutput(std::unique_ptr<QAudioOutput> output);
    void reportNoOutput();

    QMediaDevices m_devices;
    QFile m_file; ///< the source, open only where the player cannot open it itself
    std::unique_ptr<QAudioOutput> m_output; ///< null = the system has none
    QMediaPlayer m_player; // after the file and the output, which it uses
    float m_volume = 1.0F;
    qint64 m_wantedPosition = -1; ///< to move to once the file can be moved in, -1 = none
    bool m_loading = false;
    bool m_wantsPlay = false; ///< to begin once the file is loaded
    bool m_failed = false;
    bool m_ended = false;
    bool m_announcedPlaying = false;
};

} // namespace epr
