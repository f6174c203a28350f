// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubber.h"

#include "accessibility.h"
#include "displaytext.h"
#include "scrubberkeys.h"
#include "vfdpaint.h"

#include <QHoverEvent>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace epr::vfd {

Scrubber::Scrubber(QWidget *parent)
    : QWidget(parent)
{
    installAccessibility();
    constexpr int pointSize = 7;
    setFont(letteringFont(pointSize));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setAccessibleName(tr("Position"));
}

qint64 Scrubber::positionAt(qreal x) const
{
    const int lastPixel = width() - 1;
    if (lastPixel <= 0 || !isSeekable())
        return 0;
    if (x >= lastPixel)
        return m_durationMs;
    return std::llround(std::max(x / lastPixel, 0.0) * static_cast<qreal>(m_durationMs));
}

QString Scrubber::valueText() const
{
    if (!isSeekable())
        return caption();
    return tr("%1 of %2").arg(positionText(std::min(m_positionMs, m_durationMs)), positionText(m_durationMs));
}

QSize Scrubber::sizeHint() const
{
    return { 420, 76 };
}

QSize Scrubber::minimumSizeHint() const
{
    return { 120, 44 };
}

void Scrubber::clear()
{
    m_durationMs = 0;
    m_positionMs = 0;
    m_isDragging = false;
    setState(State::NoSignal);
}

void Scrubber::setAnalysing()
{
    setState(State::Analysing);
}

void Scrubber::setEnvelope(const Envelope &envelope)
{
    setState(State::Ready);
    m_envelope = envelope;
}

void Scrubber::setUnavailable()
{
    setState(State::Unavailable);
}

void Scrubber::setDurationMs(qint64 durationMs)
{
    m_durationMs = std::max<qint64>(durationMs, 0);
    m_isDragging = m_isDragging && isSeekable();
    redrawWaves();
}

void Scrubber::setPositionMs(qint64 positionMs)
{
    if (!m_isDragging)
        moveCursor(std::max<qint64>(positionMs, 0));
}

void Scrubber::seek(qint64 positionMs)
{
    if (!isSeekable())
        return;
    moveCursor(std::clamp<qint64>(positionMs, 0, m_durationMs));
    // Only what the user did: a screen reader must not read a playing track's every second.
    announceValue(this, m_positionMs);
    Q_EMIT seekRequested(m_positionMs);
}

bool Scrubber::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        setHoverX(static_cast<QHoverEvent *>(event)->position().x());
        break;
    case QEvent::HoverLeave:
        setHoverX(-1);
        break;
    case QEvent::ToolTip: // the time under the pointer is tip enough; the deck's own would hide it
        if (m_hoverX >= 0)
            return true;
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void Scrubber::keyPressEvent(QKeyEvent *event)
{
    const std::optional<qint64> target = seekTarget(*event, m_positionMs, m_durationMs);
    if (target && isSeekable())
        seek(*target);
    else
        QWidget::keyPressEvent(event);
}

void Scrubber::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !isSeekable()) {
        event->ignore(); // the deck below takes it as a click
        return;
    }
    m_isDragging = true;
    seek(positionAt(event->position().x()));
}

void Scrubber::mouseMoveEvent(QMouseEvent *event)
{
    const qint64 position = positionAt(event->position().x());
    if (m_isDragging && position != m_positionMs)
        seek(position);
}

void Scrubber::mouseReleaseEvent(QMouseEvent *event)
{
    event->setAccepted(m_isDragging);
    if (event->button() == Qt::LeftButton)
        m_isDragging = false;
}

void Scrubber::setState(State state)
{
    m_state = state;
    m_envelope = Envelope();
    redrawWaves();
}

void Scrubber::redrawWaves()
{
    m_played.invalidate();
    m_unplayed.invalidate();
    update();
}

// A player reports its position many times a second: what moves by no pixel is not painted.
void Scrubber::moveCursor(qint64 positionMs)
{
    const qreal before = cursorX();
    m_positionMs = positionMs;
    if (!qFuzzyCompare(1 + before, 1 + cursorX()))
        update();
}

void Scrubber::setHoverX(qreal x)
{
    m_hoverX = x;
    if (isSeekable())
        update();
}

// On a device pixel, so that the border between played and unplayed is sharp.
qreal Scrubber::cursorX() const
{
    if (!isSeekable())
        return 0;
    const qreal ratio = devicePixelRatioF();
    const qreal part = static_cast<qreal>(std::min(m_positionMs, m_durationMs)) / static_cast<qreal>(m_durationMs);
    return std::round(part * std::max(width() - 1, 0) * ratio) / ratio;
}

QString Scrubber::caption() const
{
    switch (m_state) {
    case State::NoSignal:
        return tr("NO SIGNAL");
    case State::Analysing:
        return tr("ANALYSING…");
    case State::Unavailable:
        return tr("NO PREVIEW");
    case State::Ready:
        break;
    }
    return {};
}

} // namespace epr::vfd
