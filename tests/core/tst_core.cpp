// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "displaytext.h"
#include "matchtype.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestCore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void durationIsClockText_data()
    {
        QTest::addColumn<qint64>("durationMs");
        QTest::addColumn<QString>("text");
        QTest::newRow("negative is unknown") << qint64 { -1 } << u"-"_s;
        QTest::newRow("zero is unknown") << qint64 { 0 } << u"-"_s;
        QTest::newRow("less than a second is truncated") << qint64 { 999 } << u"0:00"_s;
        QTest::newRow("minutes are not padded") << qint64 { 187999 } << u"3:07"_s;
        QTest::newRow("the last millisecond below one hour") << qint64 { 3599999 } << u"59:59"_s;
        QTest::newRow("hours pad the minutes") << qint64 { 3729000 } << u"1:02:09"_s;
        QTest::newRow("more than a day stays in hours") << qint64 { 90000000 } << u"25:00:00"_s;
    }

    void durationIsClockText()
    {
        QFETCH(qint64, durationMs);
        QTEST(epr::durationText(durationMs), "text");
    }

    void qualityShowsWhatIsKnown_data()
    {
        QTest::addColumn<qint32>("bitrateKbps");
        QTest::addColumn<qint32>("sampleRate");
        QTest::addColumn<qint32>("channels");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing known") << 0 << 0 << 0 << QString();
        QTest::newRow("all known") << 320 << 44100 << 2 << u"320 kbps, 44.1 kHz, stereo"_s;
        QTest::newRow("a gap leaves no separator") << 96 << 0 << 1 << u"96 kbps, mono"_s;
        QTest::newRow("a rate with three decimals") << 0 << 11025 << 0 << u"11.025 kHz"_s;
        QTest::newRow("surround counts channels") << 0 << 48000 << 6 << u"48 kHz, 6 ch"_s;
    }

    void qualityShowsWhatIsKnown()
    {
        QFETCH(qint32, bitrateKbps);
        QFETCH(qint32, sampleRate);
        QFETCH(qint32, channels);
        epr::TrackInfo track;
        track.bitrateKbps = bitrateKbps;
        track.sampleRate = sampleRate;
        track.channels = channels;
        QTEST(epr::qualityText(track), "text");
    }

    void namesFallBack_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("albumArtist");
        QTest::addColumn<QString>("shownTitle");
        QTest::addColumn<QString>("shownArtist");
        QTest::newRow("only the last extension goes")
            << u"a.b.mp3"_s << QString() << QString() << u"a.b"_s << u"(unknown artist)"_s;
        QTest::newRow("the album artist stands in")
            << u"a.mp3"_s << QString() << u"Various"_s << u"a"_s << u"Various"_s;
        QTest::newRow("the artist comes first") << u"a"_s << u"Abba"_s << u"Various"_s << u"a"_s << u"Abba"_s;
    }

    void namesFallBack()
    {
        QFETCH(QString, fileName);
        QFETCH(QString, artist);
        QFETCH(QString, albumArtist);
        epr::TrackInfo track;
        track.fileName = fileName;
        track.artist = artist;
        track.albumArtist = albumArtist;
        QTEST(epr::displayTitle(track), "shownTitle");
        QTEST(epr::displayArtist(track), "shownArtist");
    }

    void strayMatchTypesAreUnmatched()
    {
        for (const int stray : { -1, 4, 7 }) {
            QCOMPARE(epr::matchTypeLabel(epr::MatchType(stray)), u"Unmatched"_s);
            QCOMPARE(epr::matchTypeExplanation(epr::MatchType(stray)), QString());
        }
    }
};

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
