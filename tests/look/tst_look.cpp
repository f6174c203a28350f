// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "look.h"
#include "resultscells.h"

#include <QApplication>
#include <QTest>

#include <cmath>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr double readable = 4.5; // WCAG 2: of text
constexpr double discernible = 2.0; // WCAG leaves open what cannot be used; it should be seen to be there

// The relative luminance of WCAG 2, from 0 for black to 1 for white.
double luminance(const QColor &colour)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({ luminance(one), luminance(other) });
    return (lighter + 0.05) / (darker + 0.05);
}

// A desktop's palette as some make it: nothing but the grounds and the text, the rest derived or left black.
QPalette palette(QRgb window, QRgb base, QRgb text)
{
    QPalette palette(QColor { text }, QColor { window }, Qt::gray, Qt::darkGray, Qt::gray, QColor { text },
                     QColor { base });
    palette.setColor(QPalette::AlternateBase, QColor(window));
    palette.setColor(QPalette::PlaceholderText, Qt::black);
    return palette;
}

const QRgb white = qRgb(255, 255, 255);
const QPalette dark = palette(qRgb(49, 54, 59), qRgb(35, 38, 41), qRgb(239, 240, 241));

} // namespace

class TestLook : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textCanBeRead_data()
    {
        QTest::addColumn<QPalette>("system");
        QTest::newRow("light") << palette(qRgb(239, 239, 239), white, qRgb(0, 0, 0));
        QTest::newRow("dark") << dark;
        QTest::newRow("white on black") << palette(qRgb(0, 0, 0), qRgb(0, 0, 0), white);
    }

    void textCanBeRead()
    {
        QFETCH(const QPalette, system);
        const QPalette ours = programPalette(system);
        const QList<QPair<QColor, QColor>> pairs {
            { ours.color(QPalette::WindowText), ours.color(QPalette::Window) },
            { ours.color(QPalette::Mid), ours.color(QPalette::Window) },
            { ours.color(QPalette::PlaceholderText), ours.color(QPalette::Base) },
            { ours.color(QPalette::Link), ours.color(QPalette::Window) },
            { ours.color(QPalette::HighlightedText), ours.color(QPalette::Highlight) },
            { ours.color(QPalette::HighlightedText), ours.color(QPalette::Inactive, QPalette::Highlight) },
            { keeperColour(ours), ours.color(QPalette::Base) },
            { matchColour(MatchType::SameAudio, ours), ours.color(QPalette::AlternateBase) },
            { matchColour(MatchType::SameRecording, ours), ours.color(QPalette::Base) },
            { matchColour(MatchType::SameSong, ours), ours.color(QPalette::AlternateBase) },
        };
        for (const auto &[text, ground] : pairs)
            QVERIFY2(contrast(text, ground) >= readable,
                     qPrintable(u"%1 on %2: %3"_s.arg(text.name(), ground.name()).arg(contrast(text, ground))));
        const QColor disabled = ours.color(QPalette::Disabled, QPalette::ButtonText);
        QVERIFY(contrast(disabled, ours.color(QPalette::Window)) >= discernible);
    }

    // Qt lays what the application has set over the new palette of the system; a mixture of light and dark would be
    // left.
    void changeOfPaletteIsAppliedAfresh()
    {
        const QPalette system = QApplication::palette();
        applyLook();
        QApplication::setPalette(dark);
        QTRY_COMPARE(QApplication::palette(), programPalette(system));
    }
};

QTEST_MAIN(TestLook)
#include "tst_look.moc"
