// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubber.h"

#include "accessibility.h"
#include "displaytext.h"
#include "panel.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace epr::vfd {

namespace {

constexpr qreal waveMargin = 6;

// The vertical lines of the glass and a base line for the wave to stand on.
void paintGrid(QPainter &painter, const QSizeF &size)
{
    constexpr int parts = 8;
    for (int i = 1; i < parts; ++i)
        painter.fillRect(QRectF(std::round(size.width() * i / parts), 1, 1, size.height() - 2),
                         withAlpha(colour::unlit, 110));
    painter.fillRect(QRectF(1, std::floor(size.height() / 2), size.width() - 2, 1), colour::unlit);
}

// Where a key on the scrubber leads, within the duration: the arrows by 5 s (with Shift 1 s), the page keys by 30 s,
// Home and End to the edges. Nothing for all other keys.
std::optional<qint64> seekTarget(const QKeyEvent &key, qint64 positionMs, qint64 durationMs)
{
    constexpr qint64 fineStepMs = 1'000;
    constexpr qint64 stepMs = 5'000;
    constexpr qint64 pageMs = 30'000;
    const bool isFine = key.modifiers().testFlag(Qt::ShiftModifier);
    const qint64 arrowMs = isFine ? fineStepMs : stepMs;
    const qint64 from = std::clamp<qint64>(positionMs, 0, durationMs);
    const auto moved = [&](qint64 byMs) { return std::clamp<qint64>(from + byMs, 0, durationMs); };
    if (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return std::nullopt; // the shortcuts of the window
    switch (key.key()) {
    case Qt::Key_Left:
        return moved(-arrowMs);
    case Qt::Key_Right:
        return moved(arrowMs);
    case Qt::Key_PageDown:
        return moved(-pageMs);
    case Qt::Key_PageUp:
        return moved(pageMs);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return durationMs;
    default:
        return std::nullopt;
    }
}

} // namespace

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
    const QString place =
        tr("%1 of %2").arg(positionText(std::min(m_positionMs, m_durationMs)), positionText(m_durationMs));
    return m_marks.isEmpty()
        ? place
        : tr("%1, %2").arg(place, tr("%n difference(s)", nullptr, static_cast<int>(m_marks.size())));
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
    m_marks.clear();
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

void Scrubber::setMarks(const QList<std::pair<qint64, qint64>> &spansMs)
{
    m_marks = spansMs;
    update();
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

void Scrubber::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const auto drawGlass = [this](QPainter &picture) {
        paintGlass(picture, rect());
        paintGrid(picture, size());
    };
    painter.setOpacity(isDimmed(*this) ? dimmedOpacity : 1);
    painter.drawPixmap(0, 0, m_glass.pictureFor(*this, drawGlass));
    if (m_state == State::Ready)
        paintWaves(painter);
    if (isSeekable()) {
        paintMarks(painter);
        paintCursor(painter);
    }
    painter.setOpacity(1);
    paintCaption(painter);
    if (isSeekable())
        paintHover(painter);
    if (hasFocus())
        paintFocusRing(painter, rect());
}

void Scrubber::paintWaves(QPainter &painter)
{
    const auto drawn = [this](CachedPixmap &cache, const QColor &colour) {
        return cache.pictureFor(*this,
                                [&](QPainter &p) { paintWaveform(p, m_envelope, m_durationMs, colour, waveMargin); });
    };
    const qreal x = cursorX();
    painter.setClipRect(QRectF(0, 0, x, height()));
    painter.drawPixmap(0, 0, drawn(m_played, colour::lit));
    painter.setClipRect(QRectF(x, 0, width() - x, height()));
    painter.drawPixmap(0, 0, drawn(m_unplayed, colour::waveUnplayed));
    painter.setClipping(false);
}

// A tint over the wave, with bars above and below where no wave gets to: these are seen without colour too, and are
// wide enough where the stretch itself is a pixel.
void Scrubber::paintMarks(QPainter &painter) const
{
    constexpr qreal leastBar = 3;
    constexpr qreal barHeight = 3;
    const auto xOf = [this](qint64 ms) {
        return static_cast<qreal>(std::clamp<qint64>(ms, 0, m_durationMs)) * (width() - 1)
            / static_cast<qreal>(m_durationMs);
    };
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const auto &[startMs, endMs] : m_marks) {
        const qreal left = std::floor(xOf(startMs));
        const qreal spanWidth = std::max(std::ceil(xOf(endMs)) - left, 1.0);
        const qreal barWidth = std::max(spanWidth, leastBar);
        const qreal bar = std::clamp(left - (barWidth - spanWidth) / 2, 0.0, std::max(width() - barWidth, 0.0));
        painter.fillRect(QRectF(left, 1, spanWidth, height() - 2), withAlpha(colour::mark, 70));
        painter.fillRect(QRectF(bar, 1, barWidth, barHeight), colour::mark);
        painter.fillRect(QRectF(bar, height() - 1 - barHeight, barWidth, barHeight), colour::mark);
    }
}

void Scrubber::paintCaption(QPainter &painter) const
{
    if (caption().isEmpty())
        return;
    const bool isBusy = m_state == State::Analysing;
    const QRectF box = QRectF(0, 0, width(), height());
    const QRectF words = painter.boundingRect(box, Qt::AlignCenter, caption()).adjusted(-8, -2, 8, 2);
    painter.fillRect(words, colour::glassBottom); // the base line makes way
    paintGlowingText(painter, box, Qt::AlignCenter, caption(), isBusy ? colour::lit : colour::litSoft);
}

void Scrubber::paintCursor(QPainter &painter) const
{
    constexpr qreal reach = 7;
    const qreal x = cursorX();
    QLinearGradient halo(x - reach, 0, x + reach, 0);
    halo.setColorAt(0, withAlpha(colour::lit, 0));
    halo.setColorAt(0.5, withAlpha(colour::lit, 90));
    halo.setColorAt(1, withAlpha(colour::lit, 0));
    painter.fillRect(QRectF(x - reach, 1, 2 * reach, height() - 2), halo);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRectF(x, 1, 1, height() - 2), colour::cursor);
}

void Scrubber::paintHover(QPainter &painter) const
{
    if (m_hoverX < 0)
        return;
    const QString time = positionText(positionAt(m_hoverX));
    const qreal boxWidth = fontMetrics().horizontalAdvance(time) + 12;
    const qreal boxHeight = fontMetrics().height() + 4;
    constexpr qreal margin = 3;
    const qreal left = std::clamp(m_hoverX - boxWidth / 2, margin, std::max(margin, width() - boxWidth - margin));
    painter.fillRect(QRectF(m_hoverX, 1, 1, height() - 2), withAlpha(colour::focus, 150));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour::focus, 1));
    painter.setBrush(withAlpha(colour::glassTop, 235));
    const QRectF box(left, margin, boxWidth, boxHeight);
    painter.drawRoundedRect(box, margin, margin);
    painter.setPen(colour::focus);
    painter.drawText(box, Qt::AlignCenter, time);
}

} // namespace epr::vfd
