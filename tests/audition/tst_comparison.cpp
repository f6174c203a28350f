// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparisonlogic.h"
#include "comparisontext.h"
#include "deckplayback.h"

#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

/// Time stands still; what a deck does is what it is told.
struct FakeDeck final : DeckPlayback {
    qint64 position() const override { return at; }
    bool isPlaying() const override { return playing; }
    bool hasEnded() const override { return at >= length; }
    void setSource(const QString &path) override { source = path, at = 0, playing = false; }
    void play() override { playing = !source.isEmpty(); }
    void pause() override { playing = false; }
    void stop() override { at = 0, playing = false; }
    void setPosition(qint64 ms) override { at = std::min(ms, length), playing = playing && at < length; }
    void setVolume(float to) override { volume = to; }

    QString source;
    qint64 at = 0;
    qint64 length = 60000;
    float volume = -1;
    bool playing = false;
};

TrackInfo trackOf(const QString &path, qint64 durationMs = 0, qint32 bitrateKbps = 0)
{
    TrackInfo track;
    track.path = path;
    track.durationMs = durationMs;
    track.bitrateKbps = bitrateKbps;
    return track;
}

/// Commands are for deck A unless they name B; "loadC" loads another file.
void run(ComparisonLogic &logic, const QString &command)
{
    const int deck = command.contains(u'B') ? 1 : 0;
    if (command.startsWith(u"play"))
        logic.playPause();
    else if (command.startsWith(u"stop"))
        logic.stop();
    else if (command.startsWith(u"seek"))
        logic.seek(deck, command.mid(5).toInt());
    else if (command.startsWith(u"load"))
        logic.load(deck, trackOf(command.mid(4)));
    else if (command.startsWith(u"clear"))
        logic.clear(deck);
    else if (command.startsWith(u"link"))
        logic.setLinked(true);
    else if (command.startsWith(u"hear"))
        logic.setMonitor(deck);
    else
        QFAIL("no such command");
}

} // namespace

class TestComparison : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // In the situation, A and B are decks with files, standing at 1000 and 5000, L is linked, s a B of 8000 ms. What
    // the decks do after the commands is told as "position" or "position playing".
    void commands_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<QString>("commands");
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        const auto row = [](const char *name, const char *situation, const char *commands, const char *a,
                            const char *b) {
            QTest::newRow(name) << QString::fromLatin1(situation) << QString::fromLatin1(commands)
                                << QString::fromLatin1(a) << QString::fromLatin1(b);
        };
        row("play unlinked starts the heard deck", "AB", "play", "1000 playing", "5000");
        row("play unlinked with B heard", "AB", "hearB play", "1000", "5000 playing");
        row("play linked starts both from A", "ABL", "play", "1000 playing", "1000 playing");
        row("play linked starts both from B", "ABL", "hearB play", "5000 playing", "5000 playing");
        row("play linked without B", "AL", "play", "1000 playing", "0");
        row("play linked without A", "BL", "play", "0", "0 playing");
        row("play linked after the end starts over", "ABL", "seekA60000 play", "0 playing", "0 playing");
        row("play linked leaves a shorter deck at its end", "ABLs", "seekA9000 play", "9000 playing", "8000");
        row("one deck that plays is enough to pause", "AB", "play hearB play", "1000", "5000");
        row("stop", "ABL", "play stop", "0", "0");
        row("a switch moves nothing", "AB", "play hearB", "1000 playing", "5000");
        row("seek unlinked", "AB", "seekB7", "1000", "7");
        row("seek linked", "ABL", "play seekB7", "7 playing", "7 playing");
        row("seek linked without B", "AL", "seekA7", "7", "0");
        row("seek linked without A", "BL", "seekB7", "7", "7");
        row("a deck that ran out joins again", "ABLs", "play seekA9000 seekA2000", "2000 playing", "2000 playing");
        row("when both ran out none begins by itself", "ABL", "play seekA60000 seekA2000", "2000", "2000");
        row("linking moves B", "AB", "link", "1000", "1000");
        row("linking moves B also when it is heard", "AB", "hearB link", "1000", "1000");
        row("linking without A moves nothing", "B", "link", "0", "5000");
        row("the same file plays on", "ABL", "play loadA", "1000 playing", "1000 playing");
        row("the same file stays where it was", "AB", "hearB loadB", "1000", "5000");
        row("another file begins at its start", "AB", "play loadC", "0", "5000");
        row("a cleared deck does not know its file again", "AB", "play clearA loadA", "0", "5000");
        row("clear", "ABL", "play clearA", "0", "1000 playing");
    }
    void commands()
    {
        QFETCH(const QString, situation);
        QFETCH(const QString, commands);
        FakeDeck decks[2];
        ComparisonLogic logic(decks[0], decks[1]);
        logic.setLinked(situation.contains(u'L'));
        for (const int deck : { 0, 1 }) {
            const QString name = deck == 0 ? u"A"_s : u"B"_s;
            if (!situation.contains(name))
                continue;
            logic.load(deck, trackOf(name));
            decks[deck].at = deck == 0 ? 1000 : 5000;
        }
        if (situation.contains(u's'))
            decks[1].length = 8000;
        for (const QString &command : commands.split(u' '))
            run(logic, command);
        for (const int deck : { 0, 1 }) {
            const QString state = QString::number(decks[deck].at) + (decks[deck].playing ? u" playing"_s : QString());
            QTEST(state, deck == 0 ? "a" : "b");
            QCOMPARE(decks[deck].volume, deck == logic.monitor() ? 1.0F : 0.0F);
            QCOMPARE(decks[deck].source, logic.track(deck).path);
        }
        QCOMPARE(logic.monitor(), commands.contains(u"hearB") ? 1 : 0);
    }

    // Whichever deck is heard stays where it is.
    void drift_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<qint64>("drift");
        QTest::addColumn<bool>("corrected");
        const auto row = [](const char *situation, qint64 drift, bool corrected) {
            QTest::addRow("%s, %lld ms", situation, static_cast<long long>(drift))
                << QString::fromLatin1(situation) << drift << corrected;
        };
        for (const qint64 sign : { 1, -1 }) {
            row("linked", 139 * sign, false);
            row("linked", 140 * sign, false);
            row("linked", 141 * sign, true);
            row("unlinked", 5000 * sign, false);
            row("linked, the other paused", 5000 * sign, false);
            row("linked, the heard one paused", 5000 * sign, false);
        }
    }
    void drift()
    {
        QFETCH(const QString, situation);
        QFETCH(const qint64, drift);
        QFETCH(const bool, corrected);
        for (const int heard : { 0, 1 }) {
            FakeDeck decks[2];
            ComparisonLogic logic(decks[0], decks[1]);
            logic.load(0, trackOf(u"A"_s));
            logic.load(1, trackOf(u"B"_s));
            logic.setLinked(situation.startsWith(u"linked"));
            logic.setMonitor(heard);
            FakeDeck &other = decks[1 - heard];
            decks[heard].at = 10000;
            other.at = 10000 + drift;
            decks[heard].playing = !situation.contains(u"heard");
            other.playing = !situation.contains(u"other");
            logic.syncTick();
            QCOMPARE(decks[heard].at, 10000);
            QCOMPARE(other.at, corrected ? 10000 : 10000 + drift);
        }
    }

    void deltas_data()
    {
        QTest::addColumn<TrackInfo>("a");
        QTest::addColumn<TrackInfo>("b");
        QTest::addColumn<QString>("duration");
        QTest::addColumn<QString>("bitrate");
        const TrackInfo track = trackOf(u"A"_s, 180000, 192);
        QTest::newRow("equal") << track << track << u"+0.00 s"_s << u"+0 k"_s;
        QTest::newRow("more") << track << trackOf(u"B"_s, 3781260, 320) << u"+3601.26 s"_s << u"+128 k"_s;
        QTest::newRow("less") << track << trackOf(u"B"_s, 178500, 64) << u"\u22121.50 s"_s << u"\u2212128 k"_s;
        QTest::newRow("no A") << TrackInfo() << track << u"\u2014"_s << u"\u2014"_s;
        QTest::newRow("no B") << track << TrackInfo() << u"\u2014"_s << u"\u2014"_s;
    }
    void deltas()
    {
        QFETCH(const TrackInfo, a);
        QFETCH(const TrackInfo, b);
        QLocale::setDefault(QLocale::German);
        QTEST(comparisontext::durationDelta(a, b), "duration");
        QTEST(comparisontext::bitrateDelta(a, b), "bitrate");
        QLocale::setDefault(QLocale::c());
    }

    void labels()
    {
        TrackInfo track = trackOf(u"/music/Caf\u00e9 del Mar.mp3"_s, 0, 320);
        track.size = 1572864;
        QCOMPARE(comparisontext::title(track), u"CAF\u00c9 DEL MAR.MP3"_s);
        QCOMPARE(comparisontext::format(track), u"1.50 MB, 320 kbps"_s);
        track.title = u"Stra\u00dfe"_s;
        track.bitrateKbps = 0;
        QCOMPARE(comparisontext::title(track), u"STRASSE"_s);
        QCOMPARE(comparisontext::format(track), u"1.50 MB"_s);
        QCOMPARE(comparisontext::title({}), u"\u2014 no file loaded \u2014"_s);
        QCOMPARE(comparisontext::position(3599999), u"0:59:59"_s);
        QCOMPARE(comparisontext::duration(100 * 3600000 + 61000), u"/ 100:01:01"_s);
        QCOMPARE(comparisontext::position(-1), u"0:00:00"_s);
    }
};

QTEST_APPLESS_MAIN(TestComparison)
#include "tst_comparison.moc"
