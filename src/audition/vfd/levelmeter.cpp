// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "levelmeter.h"

#include "panel.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace epr::vfd {

namespace {

constexpr int segments = 32;
constexpr int barHeight = 7;
constexpr int barGap = 3;

QColor segmentColour(int segment)
{
    constexpr int firstMiddle = 22;
    constexpr int firstHigh = 28;
    if (segment < firstMiddle)
        return colour::meterLow;
    return segment < firstHigh ? colour::meterMiddle : colour::meterHigh;
}

int segmentsFor(float level)
{
    return static_cast<int>(std::lround(level * segments));
}

} // namespace

void LevelMeter::Bar::follow(float newLevel)
{
    constexpr float fallPerCall = 0.06F;
    constexpr float peakFallPerCall = 0.02F;
    constexpr int heldCalls = 15;
    level = std::max({ boundedLevel(newLevel), level - fallPerCall, 0.0F });
    if (level >= peak) {
        peak = level;
        callsToHold = heldCalls;
    } else if (callsToHold > 0) {
        --callsToHold;
    } else {
        peak = std::max(level, peak - peakFallPerCall);
    }
}

LevelMeter::LevelMeter(QWidget *parent)
    : QWidget(parent)
{
    constexpr int pointSize = 6;
    setFont(letteringFont(pointSize));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize LevelMeter::sizeHint() const
{
    constexpr int segmentWidth = 6;
    return { segments * segmentWidth, minimumSizeHint().height() };
}

QSize LevelMeter::minimumSizeHint() const
{
    constexpr int leastSegmentWidth = 3;
    return { segments * leastSegmentWidth, 2 * std::max(barHeight, fontMetrics().ascent()) + 3 * barGap };
}

void LevelMeter::setLevels(float left, float right)
{
    const std::array<Bar, 2> before = m_bars;
    m_bars[0].follow(left);
    m_bars[1].follow(right);
    if (m_bars != before)
        update();
}

void LevelMeter::reset()
{
    m_bars = {};
    update();
}

void LevelMeter::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_dark.invalidate();
        m_lit.invalidate();
    }
}

void LevelMeter::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawLabels(painter);
    painter.setOpacity(isDimmed(*this) ? dimmedOpacity : 1);
    painter.drawPixmap(0, 0, m_dark.pictureFor(*this, [this](QPainter &picture) { drawSegments(picture, false); }));
    const QPixmap &lit = m_lit.pictureFor(*this, [this](QPainter &picture) { drawSegments(picture, true); });
    paintBar(painter, 0, lit);
    paintBar(painter, 1, lit);
}

// Edges on device pixels keep the segments equally crisp at every ratio.
QRectF LevelMeter::segmentBox(int bar, int segment) const
{
    const qreal ratio = devicePixelRatioF();
    const auto snapped = [ratio](qreal value) { return std::round(value * ratio) / ratio; };
    const qreal start = 2.0 * fontMetrics().horizontalAdvance(u'L');
    const qreal pitch = std::max<qreal>(width() - start - barGap, 0) / segments;
    const qreal left = snapped(start + segment * pitch);
    const qreal right = snapped(start + (segment + 1) * pitch - std::min<qreal>(1.5, pitch / 3));
    const qreal laneHeight = height() / 2.0;
    const qreal top = snapped(bar * laneHeight + (laneHeight - barHeight) / 2);
    return { left, top, right - left, snapped(barHeight) };
}

void LevelMeter::drawLabels(QPainter &painter) const
{
    const QString labels[] = { tr("L"), tr("R") };
    painter.setPen(colour::litSoft);
    for (int bar = 0; bar < 2; ++bar) {
        const QRectF lane(0, bar * height() / 2.0, segmentBox(bar, 0).left(), height() / 2.0);
        painter.drawText(lane, Qt::AlignCenter, labels[bar]);
    }
}

void LevelMeter::drawSegments(QPainter &painter, bool isLit) const
{
    for (int bar = 0; bar < 2; ++bar) {
        for (int segment = 0; segment < segments; ++segment) {
            const QColor bright = segmentColour(segment);
            painter.fillRect(segmentBox(bar, segment), isLit ? bright : withAlpha(bright, 34));
        }
    }
}

void LevelMeter::paintBar(QPainter &painter, int bar, const QPixmap &lit) const
{
    const int lastLit = segmentsFor(m_bars[bar].level) - 1;
    const int peak = segmentsFor(m_bars[bar].peak) - 1;
    if (lastLit >= 0) {
        painter.setClipRect(segmentBox(bar, 0).united(segmentBox(bar, lastLit)));
        painter.drawPixmap(0, 0, lit);
    }
    if (peak > lastLit) {
        painter.setClipRect(segmentBox(bar, peak));
        painter.drawPixmap(0, 0, lit);
    }
    painter.setClipping(false);
}

} // namespace epr::vfd
