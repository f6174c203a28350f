// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sevensegment.h"

#include "accessibility.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace epr::vfd {

using namespace Qt::StringLiterals;

namespace {

// Proportions, as parts of the height of a digit.
constexpr qreal digitWidth = 0.55;
constexpr qreal dotWidth = 0.16;
constexpr qreal spacing = 0.17;
constexpr qreal thickness = 0.125;
constexpr qreal gap = 0.016; ///< between the tips of neighbouring segments
constexpr qreal slant = 0.09;

constexpr quint8 bit(Segment segment)
{
    return static_cast<quint8>(1U << static_cast<unsigned>(segment));
}

constexpr quint8 a = bit(Segment::Top);
constexpr quint8 b = bit(Segment::UpperRight);
constexpr quint8 c = bit(Segment::LowerRight);
constexpr quint8 d = bit(Segment::Bottom);
constexpr quint8 e = bit(Segment::LowerLeft);
constexpr quint8 f = bit(Segment::UpperLeft);
constexpr quint8 g = bit(Segment::Middle);

constexpr quint8 digitSegments[] = { a | b | c | d | e | f, b | c,         a | b | d | e | g,
                                     a | b | c | d | g,     b | c | f | g, a | c | d | f | g,
                                     a | c | d | e | f | g, a | b | c,     a | b | c | d | e | f | g,
                                     a | b | c | d | f | g };

quint8 segmentsOf(QChar character)
{
    if (character >= u'0' && character <= u'9')
        return digitSegments[character.unicode() - u'0'];
    if (character == u'-')
        return g;
    return character == u'_' ? d : quint8 { 0 };
}

bool isDotted(QChar character)
{
    return character == u':' || character == u'.';
}

qreal widthOf(QChar character)
{
    return isDotted(character) ? dotWidth : digitWidth;
}

// Leans to the right by as much as the point lies above the foot of the box.
QPointF leaning(QPointF point, const QRectF &box)
{
    return { point.x() + slant * (box.bottom() - point.y()), point.y() };
}

// A bar with pointed ends from one corner of the skeleton to the next, which lie on one horizontal or vertical.
QPolygonF bar(QPointF from, QPointF to, qreal unit)
{
    const bool isHorizontal = qFuzzyCompare(from.y(), to.y());
    const QPointF along = (isHorizontal ? QPointF(1, 0) : QPointF(0, 1)) * unit;
    const QPointF across = QPointF(along.y(), along.x()) * (thickness / 2);
    const QPointF tip = along * (thickness / 2);
    const QPointF first = from + along * gap;
    const QPointF last = to - along * gap;
    return { { first, first + tip - across, last - tip - across, last, last - tip + across, first + tip + across } };
}

QPolygonF uprightPolygon(Segment segment, const QRectF &box)
{
    const qreal unit = box.height();
    const qreal half = unit * thickness / 2;
    const QRectF skeleton = box.adjusted(half, half, -half, -half);
    const QPointF middleLeft(skeleton.left(), skeleton.center().y());
    const QPointF middleRight(skeleton.right(), skeleton.center().y());
    switch (segment) {
    case Segment::Top:
        return bar(skeleton.topLeft(), skeleton.topRight(), unit);
    case Segment::UpperRight:
        return bar(skeleton.topRight(), middleRight, unit);
    case Segment::LowerRight:
        return bar(middleRight, skeleton.bottomRight(), unit);
    case Segment::Bottom:
        return bar(skeleton.bottomLeft(), skeleton.bottomRight(), unit);
    case Segment::LowerLeft:
        return bar(middleLeft, skeleton.bottomLeft(), unit);
    case Segment::UpperLeft:
        return bar(skeleton.topLeft(), middleLeft, unit);
    case Segment::Middle:
        break;
    }
    return bar(middleLeft, middleRight, unit);
}

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

bool isSegmentLit(QChar character, Segment segment)
{
    return (segmentsOf(character) & bit(segment)) != 0;
}

qreal relativeWidth(const QString &text)
{
    qreal width = slant;
    for (const QChar character : text)
        width += widthOf(character) + spacing;
    return text.isEmpty() ? 0 : width - spacing;
}

QList<DigitCell> digitCells(const QString &text, const QRectF &area)
{
    const qreal width = relativeWidth(text);
    if (width <= 0 || !area.isValid())
        return {};
    const qreal height = std::min(area.height(), area.width() / width);
    const qreal top = area.center().y() - height / 2;
    qreal left = area.left();
    QList<DigitCell> cells;
    for (const QChar character : text) {
        cells.append({ character, QRectF(left, top, widthOf(character) * height, height) });
        left += (widthOf(character) + spacing) * height;
    }
    return cells;
}

QPolygonF segmentPolygon(Segment segment, const QRectF &box)
{
    QPolygonF polygon = uprightPolygon(segment, box);
    for (QPointF &point : polygon)
        point = leaning(point, box);
    return polygon;
}

QList<QRectF> dotBoxes(QChar character, const QRectF &box)
{
    if (!isDotted(character))
        return {};
    const qreal size = dotWidth * box.height();
    const auto dotAt = [&](qreal relativeY) {
        const QPointF centre = leaning({ box.center().x(), box.top() + relativeY * box.height() }, box);
        return QRectF(centre.x() - size / 2, centre.y() - size / 2, size, size);
    };
    if (character == u'.')
        return { dotAt(1 - dotWidth / 2) };
    return { dotAt(0.3), dotAt(0.7) };
}

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
    m_digitHeight = std::max(height, 1);
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
