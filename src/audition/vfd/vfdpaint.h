// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QPixmap>

#include <functional>

class QPainter;
class QPainterPath;
class QRectF;
class QWidget;

namespace epr {
struct Envelope;
}

namespace epr::vfd {

/// Every colour of the front panel: the blue-green of a vacuum-fluorescent tube on smoked glass, with the warm colours
/// kept for what wants attention.
namespace colour {

inline constexpr QColor lit(96, 255, 224);
inline constexpr QColor litSoft(120, 204, 187); ///< captions and texts of second rank; legible on a dimmed deck too
inline constexpr QColor unlit(17, 51, 46);

inline constexpr QColor panelTop(27, 35, 36);
inline constexpr QColor panelBottom(13, 18, 19);
inline constexpr QColor panelEdge(58, 72, 72);
inline constexpr QColor glassTop(3, 9, 9);
inline constexpr QColor glassBottom(6, 17, 16);
inline constexpr QColor glassEdge(30, 46, 45);

inline constexpr QColor buttonTop(42, 51, 52);
inline constexpr QColor buttonBottom(24, 30, 31);

inline constexpr QColor waveUnplayed(42, 122, 108);
inline constexpr QColor mark(255, 190, 110); ///< where two copies differ
inline constexpr QColor cursor(236, 255, 250);
inline constexpr QColor focus(255, 196, 92);

inline constexpr QColor meterLow(72, 240, 160);
inline constexpr QColor meterMiddle(255, 190, 64);
inline constexpr QColor meterHigh(255, 78, 60);

} // namespace colour

/// The lettering of the panel: the system's fixed font, bold, slightly spaced out.
QFont letteringFont(int pointSize);

QColor withAlpha(QColor colour, int alpha);

/// Between 0 and 1 whatever comes in; no number is 0.
float boundedLevel(float level);

/// The halo around something that shines, without the thing itself: it reaches as far as the radius.
void paintGlow(QPainter &painter, const QPainterPath &shape, const QColor &colour, qreal radius);

/// Text with a faint halo, its alignment in screen terms.
void paintGlowingText(QPainter &painter, const QRectF &box, Qt::Alignment alignment, const QString &text,
                      const QColor &colour);

/// A pane of dark glass with a fine edge, as wide as the box.
void paintGlass(QPainter &painter, const QRectF &box);

/// The ring that says where the keyboard is, just inside the box.
void paintFocusRing(QPainter &painter, const QRectF &box);

/// As many values as there are columns: each the highest of the buckets that fall on its column, so that the shortest
/// peak stays visible at any width. Where there are more columns than buckets a bucket takes several. Values are
/// bounded to 0..1. The columns are for this many buckets at the least; what lies beyond the given ones is 0.
QList<float> columnPeaks(const QList<float> &buckets, int columns, qsizetype leastBuckets = 0);

/// Draws the envelope over the whole picture that the painter works on, a column of device pixels at a time: the left
/// channel upwards from the middle, the right one downwards. The picture is as wide as the duration, or as the envelope
/// if that is longer. Full level ends at the margin, in device-independent pixels.
void paintWaveform(QPainter &painter, const Envelope &envelope, qint64 durationMs, const QColor &colour, qreal margin);

/// A picture as large as a widget, in device pixels, kept until the widget's size or device pixel ratio changes or the
/// owner throws it away.
class CachedPixmap final {
public:
    using Draw = std::function<void(QPainter &painter)>;

    void invalidate();

    /// Draws if need be, on a transparent ground and in the widget's coordinates. A widget without area has no picture.
    const QPixmap &pictureFor(const QWidget &widget, const Draw &draw);

private:
    QPixmap m_pixmap;
};

} // namespace epr::vfd
