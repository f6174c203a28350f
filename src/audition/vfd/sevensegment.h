// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vfdpaint.h"

#include <QPolygonF>
#include <QRectF>
#include <QWidget>

namespace epr::vfd {

/// In the order of the usual letters, a to g.
enum class Segment { Top, UpperRight, LowerRight, Bottom, LowerLeft, UpperLeft, Middle };

inline constexpr int segmentCount = 7;

/// One character and the box that it is drawn in. Digits lean to the right and may stick out of their box by a little.
struct DigitCell {
    QChar character;
    QRectF box;
};

bool isSegmentLit(QChar character, Segment segment);

/// The boxes of a text, as large as the area allows: from its left edge on, half-way up.
QList<DigitCell> digitCells(const QString &text, const QRectF &area);

/// Width of a text whose digits are one unit high.
qreal relativeWidth(const QString &text);

QPolygonF segmentPolygon(Segment segment, const QRectF &box);

/// The squares around the dots of a colon or full stop, from the top; empty for what is made of segments.
QList<QRectF> dotBoxes(QChar character, const QRectF &box);

/// A time or number in seven-segment digits, as large as the widget allows. The segments that are off stay faintly
/// visible. Digits run left to right in every layout direction.
class SevenSegment final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit SevenSegment(QWidget *parent = nullptr);

    QString text() const { return m_text; }
    bool isDim() const { return m_isDim; }
    QRectF digitArea() const; ///< what the digits are fitted into
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void setText(const QString &text);
    void setDim(bool isDim); ///< digits of second rank: softer, and the dark segments fainter
    void setDigitHeight(int height); ///< the preferred one, in device-independent pixels

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QSize sizeFor(int digitHeight) const;
    void drawDigits(QPainter &painter) const;

    QString m_text;
    int m_digitHeight = 30;
    bool m_isDim = false;
    CachedPixmap m_picture;
};

} // namespace epr::vfd
