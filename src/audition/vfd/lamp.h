// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vfdpaint.h"

#include <QPushButton>

namespace epr::vfd {

/// A button with a lamp in it. A plain one only reports clicks and its owner lights it; a toggling one changes by
/// itself. Lit is the checked state, which assistive technology then reads out; toggled() tells of every change of it.
class Lamp final : public QPushButton {
    Q_OBJECT

public:
    explicit Lamp(const QString &caption, QWidget *parent = nullptr);

    QString caption() const { return text(); }
    bool isLit() const { return isChecked(); }
    bool isToggling() const { return m_isToggling; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void setCaption(const QString &caption);
    void setLit(bool isLit) { setChecked(isLit); }
    void setToggling(bool isToggling) { m_isToggling = isToggling; }
    void setColour(const QColor &colour);

protected:
    void nextCheckState() override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintBody(QPainter &painter) const;
    void paintLight(QPainter &painter) const;
    void paintCaption(QPainter &painter) const;

    QColor m_colour = colour::lit;
    bool m_isToggling = false;
};

} // namespace epr::vfd
