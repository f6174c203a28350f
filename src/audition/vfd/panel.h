// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vfdpaint.h"

#include <QFrame>

namespace epr::vfd {

/// The plate that the widgets of a deck sit on. Dimming darkens the plate and everything on it; what is on it stays
/// usable. A click is one with the left button that no child took.
class Panel : public QFrame {
    Q_OBJECT

public:
    explicit Panel(QWidget *parent = nullptr);

    bool isDimmed() const { return m_isDimmed; }

    void setDimmed(bool isDimmed);

Q_SIGNALS:
    void clicked();

protected:
    void childEvent(QChildEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void drawPlate(QPainter &painter) const;

    QWidget *m_shade = nullptr; ///< above all other children, and blind to the mouse
    CachedPixmap m_plate;
    bool m_isDimmed = false;
    bool m_isPressed = false;
};

} // namespace epr::vfd
