// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lamp.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace epr::vfd {

namespace {

constexpr int lightHeight = 4;
constexpr int lightTop = 6;
constexpr int lightInset = 10;

} // namespace

Lamp::Lamp(const QString &caption, QWidget *parent)
    : QPushButton(caption, parent)
{
    constexpr int pointSize = 8;
    setFont(letteringFont(pointSize));
    setCheckable(true);
    setAutoDefault(false);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

QSize Lamp::sizeHint() const
{
    constexpr int leastWidth = 58;
    constexpr int marginX = 12;
    constexpr int marginY = 4;
    const int width = fontMetrics().horizontalAdvance(caption()) + 2 * marginX;
    return { std::max(width, leastWidth), lightTop + lightHeight + fontMetrics().height() + 2 * marginY };
}

QSize Lamp::minimumSizeHint() const
{
    return sizeHint();
}

void Lamp::setCaption(const QString &caption)
{
    setText(caption);
}

void Lamp::setColour(const QColor &colour)
{
    m_colour = colour;
    update();
}

void Lamp::nextCheckState()
{
    if (m_isToggling)
        QPushButton::nextCheckState();
}

void Lamp::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isEnter)
        QPushButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

void Lamp::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBody(painter);
    paintLight(painter);
    paintCaption(painter);
    if (hasFocus())
        paintFocusRing(painter, rect());
}

void Lamp::paintBody(QPainter &painter) const
{
    constexpr qreal radius = 4;
    QLinearGradient body(0, 0, 0, height());
    body.setColorAt(0, isDown() ? colour::buttonBottom : colour::buttonTop);
    body.setColorAt(1, isDown() ? colour::panelBottom : colour::buttonBottom);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(underMouse() && isEnabled() ? colour::litSoft : colour::glassTop, 1));
    painter.setBrush(body);
    painter.drawRoundedRect(box, radius, radius);
    painter.setPen(QPen(withAlpha(Qt::white, isDown() ? 8 : 32), 1)); // light from above
    painter.drawLine(box.topLeft() + QPointF(radius, 1), box.topRight() + QPointF(-radius, 1));
}

void Lamp::paintLight(QPainter &painter) const
{
    constexpr int lighter = 130;
    constexpr int darker = 260;
    const QRectF box(lightInset, lightTop, std::max(width() - 2 * lightInset, 1), lightHeight);
    const bool isOn = isLit() && isEnabled();
    QLinearGradient light(box.topLeft(), box.bottomLeft());
    light.setColorAt(0, isOn ? m_colour.lighter(lighter) : m_colour.darker(darker).darker(darker));
    light.setColorAt(1, isOn ? m_colour : m_colour.darker(darker));
    QPainterPath shape;
    shape.addRoundedRect(box, 2, 2);
    if (isOn)
        paintGlow(painter, shape, m_colour, lightTop);
    painter.fillPath(shape, light);
}

void Lamp::paintCaption(QPainter &painter) const
{
    const QRectF box = QRectF(rect()).adjusted(0, lightTop + lightHeight + (isDown() ? 1 : 0), 0, 0);
    if (isLit() && isEnabled()) {
        paintGlowingText(painter, box, Qt::AlignCenter, caption(), m_colour);
        return;
    }
    painter.setPen(isEnabled() ? colour::litSoft : withAlpha(colour::litSoft, 90));
    painter.drawText(box, Qt::AlignCenter | Qt::TextSingleLine, caption());
}

} // namespace epr::vfd
