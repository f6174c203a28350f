// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vfdpaint.h"

#include <QFrame>

namespace epr::vfd {

/// The plate that the widgets of a deck sit on. Dimming darkens the plate, and the widgets on it draw their pictures
/// fainter and their texts in a softer colour that can still be read. A click is one with the left button that no child
/// took.
class Panel : public QFrame {
    Q_OBJECT

public:
    explicit Panel(QWidget *parent = nullptr);

    bool isDimmed() const { return m_isDimmed; }

    void setDimmed(bool isDimmed);

Q_SIGNALS:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void drawPlate(QPainter &painter) const;

    CachedPixmap m_plate;
    bool m_isDimmed = false;
    bool m_isPressed = false;
};

/// Whether the widget is to draw itself for a dimmed panel below it.
bool isDimmed(const QWidget &widget);

/// How strongly a picture on a dimmed panel is drawn: as if the panel's dimming lay over it.
inline constexpr int dimmingAlpha = 150;
inline constexpr qreal dimmedOpacity = (255 - dimmingAlpha) / 255.0;

} // namespace epr::vfd
