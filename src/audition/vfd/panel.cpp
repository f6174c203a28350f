// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel.h"

#include <QMouseEvent>
#include <QPainter>

namespace epr::vfd {

namespace {

constexpr qreal cornerRadius = 7;

} // namespace

Panel::Panel(QWidget *parent)
    : QFrame(parent)
{
}

void Panel::setDimmed(bool isDimmed)
{
    m_isDimmed = isDimmed;
    update(); // and with it the widgets on the panel
}

void Panel::mousePressEvent(QMouseEvent *event)
{
    m_isPressed = event->button() == Qt::LeftButton;
    event->setAccepted(m_isPressed);
}

void Panel::mouseReleaseEvent(QMouseEvent *event)
{
    const bool isClick =
        m_isPressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_isPressed = false;
    if (isClick)
        Q_EMIT clicked();
}

void Panel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_plate.pictureFor(*this, [this](QPainter &picture) { drawPlate(picture); }));
    if (!m_isDimmed)
        return;
    constexpr int darker = 320;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(colour::panelTop.darker(darker), dimmingAlpha));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}

void Panel::drawPlate(QPainter &painter) const
{
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QLinearGradient plate(box.topLeft(), box.bottomLeft());
    plate.setColorAt(0, colour::panelTop);
    plate.setColorAt(1, colour::panelBottom);
    QLinearGradient edge(box.topLeft(), box.bottomLeft()); // light from above
    edge.setColorAt(0, colour::panelEdge);
    edge.setColorAt(1, colour::panelBottom.darker());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(plate);
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
}

bool isDimmed(const QWidget &widget)
{
    const auto *panel = qobject_cast<const Panel *>(widget.parentWidget());
    return panel && panel->isDimmed();
}

} // namespace epr::vfd
