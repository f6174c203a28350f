// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "vfdpaint.h"

#include <QWidget>

#include <utility>

namespace epr::vfd {

/// The waveform of a deck with its play position. A click, a drag or a key asks for a new one; the cursor goes there at
/// once, and the next setPositionMs() puts it right should the player have gone elsewhere. Time runs left to right in
/// every layout direction. Without a duration there is no seeking.
class Scrubber final : public QWidget {
    Q_OBJECT

public:
    enum class State { NoSignal, Analysing, Ready, Unavailable };

    explicit Scrubber(QWidget *parent = nullptr);

    State state() const { return m_state; }
    qint64 durationMs() const { return m_durationMs; }
    qint64 positionMs() const { return m_positionMs; }
    qint64 positionAt(qreal x) const; ///< the left edge is 0, the last pixel the duration
    QString valueText()
        const; ///< "0:01:23 of 0:04:05", with how many differences are marked, or what is shown instead of a waveform
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void clear(); ///< no file: forgets waveform, duration and position
    void setAnalysing();
    void setEnvelope(const Envelope &envelope);
    void setMarks(
        const QList<std::pair<qint64, qint64>> &spansMs); ///< stretches to point out, from and to; clear() forgets them
    void setUnavailable(); ///< there is a file but no waveform of it
    void setDurationMs(qint64 durationMs); ///< 0 = unknown
    void setPositionMs(qint64 positionMs); ///< passed over while the mouse holds the cursor
    void seek(qint64 positionMs); ///< what a click does; the position is brought into the range

Q_SIGNALS:
    void seekRequested(qint64 positionMs);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setState(State state);
    void redrawWaves();
    void moveCursor(qint64 positionMs);
    void setHoverX(qreal x);
    bool isSeekable() const { return m_durationMs > 0; }
    qreal cursorX() const;
    QString caption() const;

    void paintWaves(QPainter &painter);
    void paintMarks(QPainter &painter) const;
    void paintCaption(QPainter &painter) const;
    void paintCursor(QPainter &painter) const;
    void paintHover(QPainter &painter) const;

    State m_state = State::NoSignal;
    Envelope m_envelope;
    QList<std::pair<qint64, qint64>> m_marks;
    qint64 m_durationMs = 0;
    qint64 m_positionMs = 0;
    qreal m_hoverX = -1; ///< below 0 = the pointer is elsewhere
    bool m_isDragging = false;
    CachedPixmap m_glass;
    CachedPixmap m_played;
    CachedPixmap m_unplayed;
};

} // namespace epr::vfd
