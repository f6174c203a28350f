// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "outlinestyle.h"

#include "tones.h"

#include <QPainter>
#include <QStyleOption>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr float boxOpacity = 0.55F; // 3:1 against the ground, which WCAG 2 asks of what one must find to use
constexpr float frameOpacity = 0.25F;

void stroke(QPainter *painter, const QStyleOption &option, float opacity)
{
    const QPalette &palette = option.palette;
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    painter->setPen(
        mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), isEnabled ? opacity : opacity / 2));
    painter->setBrush(Qt::NoBrush);
    painter->setRenderHint(QPainter::Antialiasing);
}

// The middles of the outermost pixels, where a line of one pixel is sharp.
QRectF outline(const QStyleOption &option)
{
    return QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

} // namespace

OutlineStyle::OutlineStyle()
    : QProxyStyle(u"fusion"_s)
{
}

void OutlineStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    painter->save();
    if (element == PE_IndicatorCheckBox) {
        stroke(painter, *option, boxOpacity);
        painter->drawRect(outline(*option));
    } else if (element == PE_IndicatorRadioButton) {
        stroke(painter, *option, boxOpacity);
        painter->drawEllipse(outline(*option).adjusted(1, 1, -1, -1));
    } else if ((element == PE_FrameLineEdit || element == PE_Frame) && isDarkPalette(option->palette)
               && !option->state.testFlag(State_HasFocus)) {
        stroke(painter, *option, frameOpacity);
        painter->drawRoundedRect(outline(*option), 2, 2);
    }
    painter->restore();
}

} // namespace epr
