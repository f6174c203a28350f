// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "look.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>
#include <QProxyStyle>
#include <QStyleOption>
#include <QWidget>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Whoever chose a high-contrast theme chose every colour of it.
bool isHighContrast()
{
#ifdef Q_OS_WIN
    HIGHCONTRASTW state = {};
    state.cbSize = sizeof state;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) && (state.dwFlags & HCF_HIGHCONTRASTON);
#else
    return false; // no way to know that all desktops share; our colours can be read on their grounds as well
#endif
}

// One colour laid over another with an opacity from 0 to 1.
QColor mixed(const QColor &over, const QColor &under, float opacity)
{
    const auto channel = [opacity](float above, float below) { return opacity * above + (1 - opacity) * below; };
    return QColor::fromRgbF(channel(over.redF(), under.redF()), channel(over.greenF(), under.greenF()),
                            channel(over.blueF(), under.blueF()));
}

class OutlineStyle final : public QProxyStyle {
public:
    OutlineStyle()
        : QProxyStyle(u"fusion"_s)
    {
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        painter->save();
        if (element == PE_IndicatorCheckBox) {
            setPen(painter, *option, boxOpacity);
            painter->drawRect(outline(*option));
        } else if (element == PE_IndicatorRadioButton) {
            setPen(painter, *option, boxOpacity);
            painter->drawEllipse(outline(*option).adjusted(1, 1, -1, -1));
        } else if ((element == PE_FrameLineEdit || element == PE_Frame) && isDarkPalette(option->palette)
                   && !option->state.testFlag(State_HasFocus)) {
            setPen(painter, *option, frameOpacity);
            painter->drawRoundedRect(outline(*option), 2, 2);
        }
        painter->restore();
    }

private:
    static constexpr float boxOpacity = 0.55F; // 3:1 against the ground, which WCAG 2 asks of what one has to find
    static constexpr float frameOpacity = 0.25F;

    static void setPen(QPainter *painter, const QStyleOption &option, float opacity)
    {
        const QPalette &palette = option.palette;
        const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
        painter->setPen(
            mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), isEnabled ? opacity : opacity / 2));
        painter->setBrush(Qt::NoBrush);
        painter->setRenderHint(QPainter::Antialiasing);
    }

    // The middles of the outermost pixels, where a line of one pixel is sharp.
    static QRectF outline(const QStyleOption &option) { return QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5); }
};

class PaletteFollower final : public QObject {
public:
    using QObject::QObject;

    void apply()
    {
        m_isApplying = true;
        QApplication::setPalette(QPalette()); // back to the system's
        if (!isHighContrast())
            QApplication::setPalette(programPalette(QApplication::palette()));
        m_isApplying = false;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // Queued, so that the palette changes again only when everybody has been told of this change.
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp && !m_isApplying)
            QMetaObject::invokeMethod(this, &PaletteFollower::apply, Qt::QueuedConnection);
        return false;
    }

private:
    bool m_isApplying = false;
};

} // namespace

void applyLook()
{
    if (QApplication::style()->name() == "fusion"_L1)
        QApplication::setStyle(createOutlineStyle());
    auto *follower = new PaletteFollower(qApp);
    follower->apply();
    qApp->installEventFilter(follower);
    QFile sheet(u":/style/app.qss"_s);
    if (sheet.open(QIODevice::ReadOnly | QIODevice::Text))
        qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
}

QPalette programPalette(const QPalette &system)
{
    QPalette palette = system;
    const bool isDark = isDarkPalette(system);
    const QColor selection = isDark ? QColor(52, 96, 150) : QColor(13, 36, 64);
    palette.setColor(QPalette::Active, QPalette::Highlight, selection);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, isDark ? QColor(72, 84, 100) : QColor(91, 107, 128));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, isDark ? QColor(132, 180, 240) : QColor(28, 90, 138));
    if (!isDark) {
        palette.setColor(QPalette::Window, QColor(247, 249, 252));
        palette.setColor(QPalette::AlternateBase, QColor(232, 238, 246));
    } else {
        // Some dark desktops derive colours for disabled texts that cannot be told from the ground.
        constexpr float disabled = 0.5F;
        for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
            palette.setColor(QPalette::Disabled, role,
                             mixed(palette.color(QPalette::Active, role), palette.color(QPalette::Window), disabled));
    }
    // Some desktops leave the placeholder black on black, and their middle tone is made for frames, not for small
    // print.
    constexpr float muted = 0.6F;
    palette.setColor(QPalette::PlaceholderText,
                     mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), muted));
    palette.setColor(QPalette::Mid, mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), muted));
    return palette;
}

QStyle *createOutlineStyle()
{
    return new OutlineStyle;
}

bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

QColor readableTone(QRgb dark, const QPalette &palette)
{
    const QColor colour(dark);
    if (!isDarkPalette(palette))
        return colour;
    constexpr float lightness = 0.72F; // with which even blue and red read well on black
    return QColor::fromHslF(colour.hslHueF(), colour.hslSaturationF(), lightness);
}

void paintLock(QPainter &painter, const QRectF &square, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width(), square.height());
    painter.setPen(QPen(colour, 0.12));
    painter.drawArc(QRectF(0.28, 0.08, 0.44, 0.7), 0, 180 * 16);
    painter.fillRect(QRectF(0.15, 0.44, 0.7, 0.5), colour);
    painter.restore();
}

void paintWarning(QPainter &painter, const QRectF &square, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width(), square.height());
    painter.setPen(QPen(colour, 0.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolygon(QPolygonF { { 0.5, 0.1 }, { 0.95, 0.9 }, { 0.05, 0.9 } });
    painter.drawLine(QPointF(0.5, 0.4), QPointF(0.5, 0.6));
    painter.drawPoint(QPointF(0.5, 0.76));
    painter.restore();
}

QIcon signIcon(void (*paint)(QPainter &painter, const QRectF &square, const QColor &colour), const QWidget &widget,
               const QColor &colour)
{
    const int height = widget.fontMetrics().ascent();
    QPixmap pixmap(QSize(height, height) * widget.devicePixelRatio());
    pixmap.setDevicePixelRatio(widget.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(painter, QRectF(0, 0, height, height), colour);
    return pixmap;
}

QColor warningColour(const QPalette &palette)
{
    return readableTone(qRgb(161, 26, 26), palette);
}

} // namespace epr
