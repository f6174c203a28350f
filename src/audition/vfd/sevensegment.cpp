// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sevensegment.h"

#include "accessibility.h"
#include "segmentgeometry.h"
#include "vfdcolours.h"
#include "vfdpaint.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace epr::vfd {

using namespace Qt::StringLiterals;

namespace {

constexpr int margin = 4; // room for the glow

struct Shapes {
    QPainterPath lit;
    QPainterPath unlit;
};

Shapes shapesOf(const QList<DigitCell> &cells)
{
    Shapes shapes;
    for (const DigitCell &cell : cells) {
        const QList<QRectF> dots = dotBoxes(cell.character, cell.box);
        for (const QRectF &dot : dots)
            shapes.lit.addEllipse(dot);
        for (int i = 0; dots.isEmpty() && i < segmentCount; ++i) {
            const auto segment = static_cast<Segment>(i);
            QPainterPath &path = isSegmentLit(cell.character, segment) ? shapes.lit : shapes.unlit;
            path.addPolygon(segmentPolygon(segment, cell.box));
            path.closeSubpath();
        }
    }
    return shapes;
}

} // namespace

SevenSegment::SevenSegment(QWidget *parent)
    : QWidget(parent)
    , m_text(u"0:00:00"_s)
{
    installAccessibility();
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QRectF SevenSegment::digitArea() const
{
    return QRectF(rect()).adjusted(margin, margin, -margin, -margin);
}

QSize SevenSegment::sizeHint() const
{
    return sizeFor(m_digitHeight);
}

QSize SevenSegment::minimumSizeHint() const
{
    return sizeFor(m_digitHeight / 2);
}

void SevenSegment::setText(const QString &text)
{
    if (text == m_text)
        return;
    const bool isAsWide = qFuzzyCompare(1 + relativeWidth(text), 1 + relativeWidth(m_text));
    m_text = text;
    m_picture.invalidate();
    if (!isAsWide)
        updateGeometry();
    update();
}

void SevenSegment::setDim(bool isDim)
{
    if (isDim == m_isDim)
        return;
    m_isDim = isDim;
    m_picture.invalidate();
    update();
}

void SevenSegment::setDigitHeight(int height)
{
    m_digitHeight = qMax(height, 1);
    updateGeometry();
}

void SevenSegment::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture.pictureFor(*this, [this](QPainter &picture) { drawDigits(picture); }));
}

QSize SevenSegment::sizeFor(int digitHeight) const
{
    const int width = static_cast<int>(std::ceil(relativeWidth(m_text) * digitHeight));
    return { width + 2 * margin, digitHeight + 2 * margin };
}

// The glow comes first, so that a dark segment beside a bright one still looks dark.
void SevenSegment::drawDigits(QPainter &painter) const
{
    constexpr int dimAlpha = 120;
    const Shapes shapes = shapesOf(digitCells(m_text, digitArea()));
    const QColor lit = m_isDim ? colour::litSoft : colour::lit;
    if (!m_isDim)
        paintGlow(painter, shapes.lit, lit, margin);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shapes.unlit, m_isDim ? withAlpha(colour::unlit, dimAlpha) : colour::unlit);
    painter.fillPath(shapes.lit, lit);
}

} // namespace epr::vfd
