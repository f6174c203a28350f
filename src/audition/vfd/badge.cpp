// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "badge.h"

#include "accessibility.h"
#include "vfdcolours.h"
#include "vfdpaint.h"

#include <QPainter>

namespace epr::vfd {

Badge::Badge(QWidget *parent)
    : QWidget(parent)
{
    installAccessibility();
    constexpr int pointSize = 7;
    setFont(letteringFont(pointSize));
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

QSize Badge::sizeHint() const
{
    constexpr int marginX = 6;
    constexpr int marginY = 3;
    const QFontMetrics metrics = fontMetrics();
    return { metrics.horizontalAdvance(m_text) + 2 * marginX, metrics.height() + 2 * marginY };
}

QSize Badge::minimumSizeHint() const
{
    return sizeHint();
}

void Badge::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    announceText(this);
    updateGeometry();
    update();
}

void Badge::paintEvent(QPaintEvent *)
{
    if (m_text.isEmpty())
        return;
    constexpr qreal radius = 3;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(withAlpha(colour::litSoft, 150), 1));
    painter.setBrush(withAlpha(colour::unlit, 110));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    paintGlowingText(painter, rect(), Qt::AlignCenter, m_text, colour::lit);
}

} // namespace epr::vfd
