// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareplayer.h"
#include "comparisontext.h"
#include "deckview.h"
#include "labels.h"
#include "lamp.h"
#include "levelmeter.h"
#include "mediabackend.h"
#include "panel.h"
#include "scrubber.h"
#include "sevensegment.h"

#include "temporarylibrary.h"

#include <QAccessible>
#include <QDir>
#include <QTest>

#include <cmath>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

/// The relative luminance of WCAG 2.
double luminance(const QColor &colour)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

} // namespace

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

        m_player->load(Deck::B, trackOf(u"missing.wav"_s));
        QTRY_COMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::Unavailable);
        const QString problem = labelOf(u"B"_s, u"deckFormat"_s);
        QVERIFY2(problem.contains("No such file"_L1), qPrintable(problem));
        m_player->clear(Deck::B);
        QCOMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::NoSignal);
        QCOMPARE(labelOf(u"B"_s, u"deckDuration"_s) + labelOf(u"B"_s, u"deckFormat"_s), u"/ 0:00:00"_s);
    }

    // Both are drawn at full height, and one is 24 dB quieter.
    void metersShowWhatIsHeard()
    {
        const auto litWidth = [](float raisedBy) {
            DeckView deck(Deck::A, nullptr);
            deck.setPalette(QPalette(Qt::black));
            deck.setEnvelope({ { 0.98F }, { 0.98F }, { 0.98F }, 40, raisedBy });
            deck.setDimmed(false);
            deck.showLevelsAt(0);
            auto *meter = deck.findChild<vfd::LevelMeter *>();
            meter->setFixedWidth(1000);
            const QImage image = meter->grab().toImage();
            int lit = 0;
            for (int x = 20; x < image.width(); ++x) // beyond the captions
                lit += image.pixelColor(x, image.height() / 4).lightness() > 100;
            return lit;
        };
        const double ratio = 1.0 * litWidth(16) / litWidth(1);
        QVERIFY2(ratio > 1 / 20.0 && ratio < 1 / 12.0, qPrintable(QString::number(ratio)));
    }

    // 4.5 : 1 is what WCAG asks of text.
    void textsOfADimmedDeckCanBeRead()
    {
        m_player->load(Deck::B, trackOf(u"missing.wav"_s));
        m_player->setKept(Deck::B, true);
        QVERIFY(deck(u"B"_s)->isDimmed());
        m_player->resize(1280, 130);
        const QImage image = m_player->grab().toImage();
        int texts = 0;
        for (const QWidget *text : deck(u"B"_s)->findChildren<QWidget *>()) {
            if (!text->property("text").isValid() && !qobject_cast<const vfd::Scrubber *>(text))
                continue;
            const QRect box(text->mapTo(&*m_player, QPoint()), text->size());
            double darkest = 1;
            double brightest = 0;
            for (int y = box.top(); y <= box.bottom(); ++y) {
                for (int x = box.left(); x <= box.right(); ++x) {
                    darkest = std::min(darkest, luminance(image.pixelColor(x, y)));
                    brightest = std::max(brightest, luminance(image.pixelColor(x, y)));
                }
            }
            const double contrast = (brightest + 0.05) / (darkest + 0.05);
            QVERIFY2(contrast >= 4.5, qPrintable(u"%1: %2"_s.arg(text->objectName()).arg(contrast)));
            ++texts;
        }
        QCOMPARE(texts, 9);
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

    // Some decoders say nothing about such a file until the watchdog bites, after a minute.
    void aFileThatCannotBePlayedHoldsNothingUp()
    {
        writeFile(fileOf(u"cut.m4a"_s), QByteArray("\0\0\0\030ftypM4A \0\0\0\0", 16));
        m_player->load(Deck::A, trackOf(u"cut.m4a"_s));
        m_player->load(Deck::B, trackOf(u"one.wav"_s));
        QTRY_COMPARE(part<vfd::Scrubber>(u"A"_s)->state(), vfd::Scrubber::State::Unavailable);
        QTRY_COMPARE(part<vfd::Scrubber>(u"B"_s)->state(), vfd::Scrubber::State::Ready);
    }

    void aClickChoosesWhatIsHeard()
    {
        QTest::mouseClick(part<vfd::Scrubber>(u"B"_s), Qt::LeftButton); // of no file, which has nowhere to seek
        QVERIFY(m_player->monitor() == Deck::B && lamp(u"monitorLampB"_s)->isLit());
        lamp(u"monitorLampA"_s)->click();
        QVERIFY(m_player->monitor() == Deck::A && !lamp(u"monitorLampB"_s)->isLit());
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
