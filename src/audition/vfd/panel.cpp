// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel.h"

#include <QChildEvent>
#include <QMouseEvent>
#include <QPainter>

namespace epr::vfd {

namespace {

constexpr qreal cornerRadius = 7;

class Shade final : public QWidget {
public:
    explicit Shade(QWidget *parent)
        : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        constexpr int darker = 320;
        constexpr int alpha = 150;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(withAlpha(colour::panelTop.darker(darker), alpha));
        painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    }
};

} // namespace

Panel::Panel(QWidget *parent)
    : QFrame(parent)
{
    m_shade = new Shade(this); // joins as a child before it has an address
}

void Panel::setDimmed(bool isDimmed)
{
    m_isDimmed = isDimmed;
    m_shade->raise();
    m_shade->setVisible(isDimmed);
}

// A widget that joins later would otherwise lie above the shade.
void Panel::childEvent(QChildEvent *event)
{
    QFrame::childEvent(event);
    if (!event->removed() && m_shade && event->child() != m_shade)
        m_shade->raise();
}

void Panel::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    m_shade->setGeometry(rect());
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

} // namespace epr::vfd
