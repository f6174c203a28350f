// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubber.h"

#include "displaytext.h"
#include "vfdcolours.h"
#include "vfdpaint.h"
#include "waveformpaint.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

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

} // namespace

void Scrubber::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const auto drawGlass = [this](QPainter &picture) {
        paintGlass(picture, rect());
        paintGrid(picture, size());
    };
    painter.drawPixmap(0, 0, m_glass.pictureFor(*this, drawGlass));
    if (m_state == State::Ready)
        paintWaves(painter);
    else
        paintCaption(painter);
    if (isSeekable()) {
        paintCursor(painter);
        paintHover(painter);
    }
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

void Scrubber::paintCaption(QPainter &painter) const
{
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
