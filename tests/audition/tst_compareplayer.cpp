// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareplayer.h"
#include "comparisontext.h"
#include "labels.h"
#include "lamp.h"
#include "mediabackend.h"
#include "panel.h"
#include "scrubber.h"
#include "sevensegment.h"

#include "temporarylibrary.h"

#include <QAccessible>
#include <QDir>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

/// The face of the player on a machine that may have no sound output: what it shows and which commands it gives.
class TestComparePlayer : public QObject {
    Q_OBJECT

public:
    static void initMain() { preferFfmpegMediaBackend(); }

private Q_SLOTS:
    void init()
    {
        writeFile(fileOf(u"one.wav"_s), waveOf(100));
        writeFile(fileOf(u"two.wav"_s), waveOf(50, 8));
        m_player.emplace();
        m_player->show();
    }

    void cleanup() { m_player.reset(); }

    void facesShowWhatIsLoaded()
    {
        m_player->load(Deck::A, trackOf(u"one.wav"_s, 6000, 64));
        QTRY_COMPARE(part<vfd::Scrubber>(u"A"_s)->state(), vfd::Scrubber::State::Ready);
        m_player->load(Deck::B, trackOf(u"two.wav"_s, 8500, 32));
        QCOMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::Analysing);
        QCOMPARE(labelOf(u"B"_s, u"deckTitle"_s) + labelOf(u"B"_s, u"deckFile"_s), u"TWO.WAVtwo.wav"_s);
        QCOMPARE(labelOf(u"B"_s, u"deckFolder"_s), QDir::toNativeSeparators(m_folder.path()));
        QCOMPARE(delta(u"level"_s), u"\u2014"_s);
        QTRY_COMPARE(delta(u"level"_s), u"+8.9 dB"_s); // samples of 78 and 28
        QCOMPARE(delta(u"duration"_s) + u' ' + delta(u"bitrate"_s), u"+2.50 s \u221232 k"_s);

        m_player->setOffset(-1400);
        m_player->showMeasures(Deck::A, { 0, -14, -1.5, 0, 0, 0, 20000, 20000, 0, {} });
        m_player->showMeasures(Deck::B, { 0, -16.1, -0.5, 0, 0, 0, 11000, 11000, 0, {} });
        QCOMPARE(delta(u"level"_s) + delta(u"start"_s) + delta(u"loudness"_s) + delta(u"bandwidth"_s),
                 u"+1.0 dBstart \u22121.40 s\u22122.1 LU\u22129.0 kHz"_s);
        m_player->setMarks(Deck::B, { { 1000, 2000 }, { 2500, 2500 } });
        const QString value = part<vfd::Scrubber>(u"B"_s)->valueText();
        QVERIFY2(value.startsWith(u"0:00:00 of 0:00:08, 2 difference"), qPrintable(value));

        m_player->load(Deck::B, trackOf(u"missing.wav"_s));
        QVERIFY(delta(u"start"_s).isEmpty() && delta(u"loudness"_s).isEmpty());
        QTRY_COMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::Unavailable);
        const QString problem = labelOf(u"B"_s, u"deckFormat"_s);
        QVERIFY2(problem.contains("No such file"_L1), qPrintable(problem));
        m_player->clear(Deck::B);
        QCOMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::NoSignal);
        QCOMPARE(labelOf(u"B"_s, u"deckDuration"_s) + labelOf(u"B"_s, u"deckFormat"_s), u"/ 0:00:00"_s);
    }

    void assistiveTechnologyHearsWhatIsWhat()
    {
        const auto role = [](QWidget *widget) { return QAccessible::queryAccessibleInterface(widget)->role(); };
        QCOMPARE(role(lamp(u"stopLamp"_s)), QAccessible::Button);
        for (const QString &deck : { u"A"_s, u"B"_s }) {
            QCOMPARE(role(lamp(u"monitorLamp"_s + deck)), QAccessible::RadioButton);
            auto *panel = m_player->findChild<vfd::Panel *>(u"deck"_s + deck);
            QCOMPARE(role(panel), QAccessible::Grouping);
            QCOMPARE(panel->accessibleName(), u"Deck "_s + deck);
        }
        QVERIFY(QTest::qWaitForWindowActive(&*m_player));
        lamp(u"monitorLampA"_s)->setFocus();
        QTest::keyClick(lamp(u"monitorLampA"_s), Qt::Key_Right);
        QVERIFY(m_player->monitor() == Deck::B && !lamp(u"monitorLampA"_s)->isLit()
                && lamp(u"monitorLampB"_s)->isLit());
    }

    void releasedFilesAreClosed()
    {
        const QString path = fileOf(u"hour.wav"_s); // its previews take longer than the rest of the test
        writeFile(path, waveOf(100, 3600));
        for (const Deck deck : bothDecks)
            m_player->load(deck, trackOf(u"hour.wav"_s));
        QTRY_VERIFY(isOpen(path));
        m_player->release({ path });
        QVERIFY(!isOpen(path) && m_player->track(Deck::B).path.isEmpty());
    }

    // Some decoders say nothing about such a file until the watchdog bites, after a minute.
    void aFileThatCannotBePlayedHoldsNothingUp()
    {
        writeFile(fileOf(u"cut.m4a"_s), QByteArray("\0\0\0\030ftypM4A \0\0\0\0", 16));
        m_player->load(Deck::A, trackOf(u"cut.m4a"_s));
        m_player->load(Deck::B, trackOf(u"one.wav"_s));
        QTRY_COMPARE(part<vfd::Scrubber>(u"A"_s)->state(), vfd::Scrubber::State::Unavailable);
        QTRY_COMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::Ready);
    }

    // The player knows some files' duration better, and knows it before the deck shows the file. The same file again
    // keeps its place on the face too.
    void scrubberMovesItsDeckAndALinkedOne()
    {
        m_player->load(Deck::A, trackOf(u"one.wav"_s));
        m_player->load(Deck::B, trackOf(u"two.wav"_s, 8000));
        QTRY_COMPARE(part<vfd::Scrubber>(u"A"_s)->durationMs(), 6000);
        part<vfd::Scrubber>(u"A"_s)->seek(3000);
        QTRY_COMPARE(part<vfd::SevenSegment>(u"A"_s)->text(), u"0:00:03"_s);
        m_player->load(Deck::A, trackOf(u"one.wav"_s));
        QCOMPARE(part<vfd::SevenSegment>(u"A"_s)->text(), u"0:00:03"_s);
        QCOMPARE(part<vfd::SevenSegment>(u"B"_s)->text(), u"0:00:00"_s);
        lamp(u"linkLamp"_s)->click();
        part<vfd::Scrubber>(u"A"_s)->seek(5000);
        QTRY_COMPARE(part<vfd::SevenSegment>(u"B"_s)->text(), u"0:00:05"_s);
    }

private:
    QString fileOf(const QString &name) const { return m_folder.filePath(name); }

    TrackInfo trackOf(const QString &name, qint64 durationMs = 0, qint32 bitrateKbps = 0) const
    {
        TrackInfo track;
        track.path = fileOf(name);
        track.fileName = name;
        track.stream.durationMs = durationMs;
        track.stream.bitrateKbps = bitrateKbps;
        return track;
    }

    vfd::Panel *deck(const QString &name) { return m_player->findChild<vfd::Panel *>(u"deck"_s + name); }
    vfd::Lamp *lamp(const QString &name) { return m_player->findChild<vfd::Lamp *>(name); }
    QString labelOf(const QString &name, const QString &label)
    {
        return deck(name)->findChild<vfd::ElidingLabel *>(label)->text();
    }
    QString delta(const QString &what) { return m_player->findChild<vfd::Badge *>(what + u"Delta"_s)->text(); }
    template <typename Part> Part *part(const QString &name) { return deck(name)->findChild<Part *>(); }

    QTemporaryDir m_folder;
    std::optional<ComparePlayer> m_player;
};

QTEST_MAIN(TestComparePlayer)

#include "tst_compareplayer.moc"
