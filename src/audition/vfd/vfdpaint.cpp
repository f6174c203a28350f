// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "vfdpaint.h"

#include "records.h"

#include <QFontDatabase>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace epr::vfd {

namespace {

constexpr qreal cornerRadius = 3;

QSize deviceSizeOf(const QWidget &widget)
{
    const QSizeF size = QSizeF(widget.size()) * widget.devicePixelRatioF();
    return QSize(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
}

// Brightest at the tips: there the shape is read.
QLinearGradient shading(const QColor &colour, int height)
{
    QLinearGradient gradient(0, 0, 0, height);
    const QColor core = withAlpha(colour, colour.alpha() * 55 / 100);
    gradient.setColorAt(0, colour);
    gradient.setColorAt(0.5, core);
    gradient.setColorAt(1, colour);
    return gradient;
}

} // namespace

QFont letteringFont(int pointSize)
{
    constexpr qreal spacingPercent = 112;
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(pointSize);
    font.setWeight(QFont::Bold);
    font.setLetterSpacing(QFont::PercentageSpacing, spacingPercent);
    return font;
}

QColor withAlpha(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

float boundedLevel(float level)
{
    return std::isnan(level) ? 0.0F : std::clamp(level, 0.0F, 1.0F);
}

void paintGlow(QPainter &painter, const QPainterPath &shape, const QColor &colour, qreal radius)
{
    constexpr int rings = 5;
    constexpr int alphaPerRing = 13;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (int ring = 1; ring <= rings; ++ring) {
        const qreal width = 2 * radius * ring / rings;
        painter.setPen(QPen(withAlpha(colour, alphaPerRing), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(shape);
    }
    painter.restore();
}

void paintGlowingText(QPainter &painter, const QRectF &box, Qt::Alignment alignment, const QString &text,
                      const QColor &colour)
{
    constexpr qreal radius = 1.3;
    constexpr qreal diagonal = radius * 0.7;
    constexpr QPointF offsets[] = { { radius, 0 },           { -radius, 0 },          { 0, radius },
                                    { 0, -radius },          { diagonal, diagonal },  { -diagonal, diagonal },
                                    { diagonal, -diagonal }, { -diagonal, -diagonal } };
    const int flags = static_cast<int>(alignment) | Qt::TextSingleLine;
    painter.setPen(withAlpha(colour, colour.alpha() / 10));
    for (const QPointF &offset : offsets)
        painter.drawText(box.translated(offset), flags, text);
    painter.setPen(colour);
    painter.drawText(box, flags, text);
}

void paintGlass(QPainter &painter, const QRectF &box)
{
    QLinearGradient glass(box.topLeft(), box.bottomLeft());
    glass.setColorAt(0, colour::glassTop);
    glass.setColorAt(1, colour::glassBottom);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour::glassEdge, 1));
    painter.setBrush(glass);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

void paintFocusRing(QPainter &painter, const QRectF &box)
{
    constexpr qreal width = 1.5;
    constexpr qreal inset = width / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour::focus, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
}

QList<float> columnPeaks(const QList<float> &buckets, int columns, qsizetype leastBuckets)
{
    QList<float> peaks(std::max(columns, 0), 0.0F);
    const qsizetype all = std::max(buckets.size(), leastBuckets);
    for (qsizetype column = 0; column < peaks.size(); ++column) {
        const qsizetype first = column * all / peaks.size();
        const qsizetype end = std::max(first + 1, (column + 1) * all / peaks.size());
        float highest = 0;
        for (qsizetype i = first; i < std::min(end, buckets.size()); ++i)
            highest = std::max(highest, boundedLevel(buckets.at(i)));
        peaks[column] = highest;
    }
    return peaks;
}

void paintWaveform(QPainter &painter, const Envelope &envelope, qint64 durationMs, const QColor &colour, qreal margin)
{
    const QPaintDevice *device = painter.device();
    const qreal ratio = device->devicePixelRatio();
    const int height = device->height();
    const int middle = height / 2;
    const qreal fullLevel = std::max(middle - margin * ratio, 1.0);
    const qint64 buckets = durationMs / Envelope::bucketMs;
    const QList<float> left = columnPeaks(envelope.left, device->width(), buckets);
    const QList<float> right = columnPeaks(envelope.right, device->width(), buckets);
    const auto tip = [fullLevel](float level) { return static_cast<int>(std::lround(level * fullLevel)); };

    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    for (int x = 0; x < device->width(); ++x) {
        const int up = tip(left[x]);
        painter.fillRect(x, middle - up, 1, up + 1 + tip(right[x]), Qt::black); // silence leaves a line
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn); // one gradient for all columns
    painter.fillRect(0, 0, device->width(), height, shading(colour, height));
    painter.restore();
}

void CachedPixmap::invalidate()
{
    m_pixmap = QPixmap();
}

const QPixmap &CachedPixmap::pictureFor(const QWidget &widget, const Draw &draw)
{
    const QSize size = deviceSizeOf(widget);
    const qreal ratio = widget.devicePixelRatioF();
    if (m_pixmap.size() == size && qFuzzyCompare(m_pixmap.devicePixelRatio(), ratio))
        return m_pixmap;
    m_pixmap = QPixmap(size);
    if (m_pixmap.isNull())
        return m_pixmap;
    m_pixmap.setDevicePixelRatio(ratio);
    m_pixmap.fill(Qt::transparent);
    QPainter painter(&m_pixmap);
    draw(painter);
    return m_pixmap;
}

} // namespace epr::vfd
