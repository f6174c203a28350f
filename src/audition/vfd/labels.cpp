// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "labels.h"

#include "accessibility.h"
#include "panel.h"
#include "vfdpaint.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <QtMath>

#include <algorithm>

namespace epr::vfd {

using namespace Qt::StringLiterals;

namespace {

constexpr int margin = 2; // room for the glow

} // namespace

ElidingLabel::ElidingLabel(QWidget *parent)
    : QWidget(parent)
{
    installAccessibility();
    constexpr int pointSize = 10;
    setFont(letteringFont(pointSize));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

bool ElidingLabel::isShortened() const
{
    return shownText() != m_text;
}

QSize ElidingLabel::sizeHint() const
{
    // Rounded up: where a font has fractions, the whole part alone would shorten the text.
    const int width = qCeil(QFontMetricsF(font()).horizontalAdvance(m_text));
    return { width + 2 * margin, fontMetrics().height() + 2 * margin };
}

QSize ElidingLabel::minimumSizeHint() const
{
    return { std::min(sizeHint().width(), 4 * fontMetrics().averageCharWidth()), sizeHint().height() };
}

void ElidingLabel::setText(const QString &text)
{
    QString line = text;
    line.replace(u"\r\n"_s, u" "_s).replace(u'\n', u' ').replace(u'\r', u' ').replace(QChar::LineSeparator, u' ');
    if (line == m_text)
        return;
    m_text = line;
    announceText(this);
    updateGeometry();
    update();
}

void ElidingLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

void ElidingLabel::setTone(Tone tone)
{
    m_tone = tone;
    update();
}

void ElidingLabel::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    update();
}

bool ElidingLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || !isShortened())
        return QWidget::event(event);
    // Escaped: a title that looks like markup is still a title.
    const QString tip = u"<p style='white-space:pre-wrap'>%1</p>"_s.arg(m_text.toHtmlEscaped());
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), tip, this, rect());
    return true;
}

void ElidingLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF box = QRectF(rect()).adjusted(margin, 0, -margin, 0);
    const Qt::Alignment alignment = QStyle::visualAlignment(layoutDirection(), m_alignment);
    if (m_tone == Tone::Bright && !isDimmed(*this)) {
        paintGlowingText(painter, box, alignment, shownText(), colour::lit);
        return;
    }
    painter.setPen(m_tone == Tone::Warning ? colour::meterMiddle : colour::litSoft);
    painter.drawText(box, static_cast<int>(alignment) | Qt::TextSingleLine, shownText());
}

QString ElidingLabel::shownText() const
{
    return fontMetrics().elidedText(m_text, m_elideMode, std::max(width() - 2 * margin, 0));
}

Badge::Badge(QWidget *parent)
    : QWidget(parent)
{
    installAccessibility();
    constexpr int pointSize = 7;
    setFont(letteringFont(pointSize));
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

QSize Badge::sizeHint() const
{
    constexpr int marginX = 6;
    constexpr int marginY = 3;
    const QFontMetrics metrics = fontMetrics();
    return { metrics.horizontalAdvance(m_text) + 2 * marginX, metrics.height() + 2 * marginY };
}

QSize Badge::minimumSizeHint() const
{
    return sizeHint();
}

void Badge::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    announceText(this);
    updateGeometry();
    update();
}

void Badge::paintEvent(QPaintEvent *)
{
    if (m_text.isEmpty())
        return;
    constexpr qreal radius = 3;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(withAlpha(colour::litSoft, 150), 1));
    painter.setBrush(withAlpha(colour::unlit, 110));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    paintGlowingText(painter, rect(), Qt::AlignCenter, m_text, isDimmed(*this) ? colour::litSoft : colour::lit);
}

} // namespace epr::vfd
