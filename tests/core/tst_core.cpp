// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "displaytext.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestCore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void durationIsClockText()
    {
        QCOMPARE(epr::durationText(0), u"-"_s);
        QCOMPARE(epr::durationText(187999), u"3:07"_s);
        QCOMPARE(epr::durationText(3599999), u"59:59"_s);
        QCOMPARE(epr::durationText(90129000), u"25:02:09"_s);
        QCOMPARE(epr::positionText(3599999), u"0:59:59"_s);
        QCOMPARE(epr::positionText(-1), u"0:00:00"_s);
    }

    void qualityShowsWhatIsKnown()
    {
        epr::TrackInfo track;
        QCOMPARE(epr::qualityText(track), QString());
        track.stream.channels = 6;
        track.stream.sampleRate = 11025;
        QCOMPARE(epr::qualityText(track), u"11.025 kHz, 6 ch"_s);
        track.stream.channels = 2;
        track.stream.bitrateKbps = 320;
        QCOMPARE(epr::qualityText(track), u"320 kbps, 11.025 kHz, stereo"_s);
        track.stream.channels = 1;
        track.stream.sampleRate = 0;
        QCOMPARE(epr::qualityText(track), u"320 kbps, mono"_s);
    }
};

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
