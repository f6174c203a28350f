// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace epr {

/// What the comparison asks of the engine that plays one deck. Positions and durations are in ms.
class DeckPlayback : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual qint64 position() const = 0;

    /// Of the file as the engine sees it, 0 = unknown.
    virtual qint64 duration() const = 0;

    virtual bool isPlaying() const = 0;

    /// Whether the position is the end of the file, reached by playing or by seeking: there is nothing more to play.
    virtual bool hasEnded() const = 0;

    /// The file cannot be played; said once by problem().
    virtual bool hasFailed() const = 0;

    /// Stops and replaces the file; an empty path takes it away.
    virtual void setSource(const QString &path) = 0;

    /// Begins anew after the end. Without a file nothing happens.
    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void stop() = 0;

    /// May be called at once after setSource(): the position is reached as soon as the file can be moved in.
    virtual void setPosition(qint64 positionMs) = 0;

    /// 0 = silent, 1 = full.
    virtual void setVolume(float volume) = 0;

Q_SIGNALS:
    void positionChanged(qint64 positionMs);
    void durationChanged(qint64 durationMs);
    void playingChanged();

    /// Why the deck stays silent, for the operator.
    void problem(const QString &message);
};

} // namespace epr
