// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "loudness.h"

#include "rows.h"

#include <QTest>

#include <cmath>
#include <numbers>
#include <vector>

using namespace epr;
using namespace epr::test;

class TestLoudness : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The first signals of EBU Tech 3341: a sine of 1 kHz at -23 dBFS in both channels measures -23 LUFS.
    void measuresAsTheStandardSays_data()
    {
        const Rows<int, int, double, double, double> row("channels", "rate", "levelDb", "loudness", "truePeak");
        row("stereo", 2, 48000, -23.0, -23.0, -23.0);
        row("one channel is heard from two loudspeakers", 1, 44100, -23.0, -23.0, -23.0);
        row("softer, low rate", 2, 11025, -33.0, -33.0, -33.0);
        row("silence", 2, 48000, -INFINITY, noLevel, noLevel);
        row("no channel", 0, 48000, -23.0, noLevel, noLevel);
        row("no rate", 2, 0, -23.0, noLevel, noLevel);
    }

    void measuresAsTheStandardSays()
    {
        QFETCH(const int, channels);
        QFETCH(const int, rate);
        QFETCH(const double, levelDb);
        QFETCH(const double, loudness);
        QFETCH(const double, truePeak);
        LoudnessMeter meter(channels, rate);
        std::vector<float> frames;
        for (int i = 0; i < 5 * rate; ++i) {
            const double phase = 2 * std::numbers::pi * 1000 * i / rate;
            frames.insert(frames.end(), static_cast<std::size_t>(channels),
                          static_cast<float>(std::pow(10, levelDb / 20) * std::sin(phase)));
        }
        meter.add(frames);
        const auto isNear = [](double measured, double expected) {
            return measured == expected || std::abs(measured - expected) < 0.15;
        };
        QVERIFY2(isNear(meter.loudness(), loudness), qPrintable(QString::number(meter.loudness())));
        QVERIFY2(isNear(meter.truePeak(), truePeak), qPrintable(QString::number(meter.truePeak())));
    }
};

QTEST_GUILESS_MAIN(TestLoudness)

#include "tst_loudness.moc"
