// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "look.h"

#include "outlinestyle.h"
#include "tones.h"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QPalette>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Who chose a high-contrast theme chose every colour of it.
bool isHighContrast()
{
#ifdef Q_OS_WIN
    HIGHCONTRASTW state = {};
    state.cbSize = sizeof state;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) && (state.dwFlags & HCF_HIGHCONTRASTON);
#else
    return false; // no way to know that all desktops share; ours can be read on their grounds as well
#endif
}

class Wardrobe final : public QObject {
public:
    using QObject::QObject;

    void dress()
    {
        m_isDressing = true;
        QApplication::setPalette(QPalette()); // back to the system's
        if (!isHighContrast())
            QApplication::setPalette(dressed(QApplication::palette()));
        m_isDressing = false;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp && !m_isDressing)
            QMetaObject::invokeMethod(this, &Wardrobe::dress, Qt::QueuedConnection); // after those who are being told
        return false;
    }

private:
    bool m_isDressing = false;
};

} // namespace

QPalette dressed(const QPalette &system)
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
        // What some dark desktops derive from their grounds cannot be told from them.
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

void applyLook()
{
    if (QApplication::style()->name() == "fusion"_L1)
        QApplication::setStyle(new OutlineStyle);
    auto *wardrobe = new Wardrobe(qApp);
    wardrobe->dress();
    qApp->installEventFilter(wardrobe);
    QFile sheet(u":/style/app.qss"_s);
    if (sheet.open(QIODevice::ReadOnly | QIODevice::Text))
        qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
}

} // namespace epr
