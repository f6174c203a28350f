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
    track.stream.durationMs = durationMs;
    track.stream.bitrateKbps = bitrateKbps;
    return track;
}

/// Commands are for deck A unless they name B, "hearB" say; "loadC" loads another file.
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
    else
        logic.setMonitor(deck);
}

} // namespace

class TestComparison : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // In the situation, A and B are decks with files, standing at 1000 and 5000, L is linked, s a B of 8000 ms. Then
    // come the commands and where A and B stand after them, with "+" if they play.
    void commands()
    {
        const QString stories[] = {
            // Playing starts the deck that is heard, and a linked one from the same place if it has one there.
            u"AB|play|1000+|5000"_s, u"AB|hearB play|1000|5000+"_s, u"ABL|play|1000+|1000+"_s,
            u"ABL|hearB play|5000+|5000+"_s, u"AL|play|1000+|0"_s, u"BL|play|0|0+"_s, u"ABL|seekA60000 play|0+|0+"_s,
            u"ABLs|seekA9000 play|9000+|8000"_s,
            // One that plays is enough to pause, and to switch moves nothing.
            u"AB|play hearB play|1000|5000"_s, u"ABL|play stop|0|0"_s, u"AB|play hearB|1000+|5000"_s,
            // A deck that ran out joins again, unless both did.
            u"AB|seekB7|1000|7"_s, u"ABL|play seekB7|7+|7+"_s, u"AL|seekA7|7|0"_s, u"BL|seekB7|7|7"_s,
            u"ABLs|play seekA9000 seekA2000|2000+|2000+"_s, u"ABL|play seekA60000 seekA2000|2000|2000"_s,
            // Linking moves B, even if it is heard.
            u"AB|hearB link|1000|1000"_s, u"B|link|0|5000"_s,
            // The same file goes on, but not after its deck was cleared.
            u"ABL|play loadA|1000+|1000+"_s, u"AB|hearB loadB|1000|5000"_s, u"AB|play loadC|0|5000"_s,
            u"ABL|play clearA|0|1000+"_s, u"AB|play clearA loadA|0|5000"_s
        };
        for (const QString &story : stories) {
            const QString situation = story.section(u'|', 0, 0);
            const QString orders = story.section(u'|', 1, 1);
            FakeDeck decks[2];
            ComparisonLogic logic(decks[0], decks[1]);
            logic.setLinked(situation.contains(u'L'));
            for (const int deck : { 0, 1 }) {
                const QString name = deck == 0 ? u"A"_s : u"B"_s;
                if (situation.contains(name)) {
                    logic.load(deck, trackOf(name));
                    decks[deck].at = deck == 0 ? 1000 : 5000;
                }
            }
            if (situation.contains(u's'))
                decks[1].length = 8000;
            QString told = situation + u'|' + orders;
            for (const QString &command : orders.split(u' '))
                run(logic, command);
            for (const int deck : { 0, 1 }) {
                told += u"|%1"_s.arg(decks[deck].at) + (decks[deck].playing ? u"+"_s : QString());
                QCOMPARE(decks[deck].volume, deck == logic.monitor() ? 1.0F : 0.0F);
                QCOMPARE(decks[deck].source, logic.track(deck).path);
            }
            QCOMPARE(told, story);
            QCOMPARE(logic.monitor(), orders.contains(u"hearB") ? 1 : 0);
        }
    }

    // Whichever deck is heard stays where it is.
    void drift()
    {
        const std::tuple<qint64, bool, bool, bool, bool> cases[] = {
            { 139, true, true, true, false },   { 140, true, true, true, false },   { -140, true, true, true, false },
            { 141, true, true, true, true },    { -141, true, true, true, true },   { 5000, false, true, true, false },
            { 5000, true, true, false, false }, { 5000, true, false, true, false },
        };
        for (const auto &[drift, linked, heardPlays, otherPlays, corrected] : cases) {
            for (const int heard : { 0, 1 }) {
                FakeDeck decks[2];
                ComparisonLogic logic(decks[0], decks[1]);
                for (const char *command : { "loadA", "loadB", linked ? "link" : "stop", heard ? "hearB" : "hearA" })
                    run(logic, QString::fromLatin1(command));
                decks[heard].at = 10000;
                decks[heard].playing = heardPlays;
                decks[1 - heard].at = 10000 + drift;
                decks[1 - heard].playing = otherPlays;
                logic.syncTick();
                QCOMPARE(decks[heard].at, 10000);
                QCOMPARE(decks[1 - heard].at, corrected ? 10000 : 10000 + drift);
            }
        }
    }

    void deltas()
    {
        QLocale::setDefault(QLocale::German);
        const TrackInfo a = trackOf(u"A"_s, 180000, 192);
        const std::tuple<TrackInfo, TrackInfo, QString, QString> cases[] = {
            { a, a, u"+0.00 s"_s, u"+0 k"_s },
            { a, trackOf(u"B"_s, 3781260, 320), u"+3601.26 s"_s, u"+128 k"_s },
            { a, trackOf(u"B"_s, 178500, 64), u"\u22121.50 s"_s, u"\u2212128 k"_s },
            { {}, a, u"\u2014"_s, u"\u2014"_s },
            { a, {}, u"\u2014"_s, u"\u2014"_s },
        };
        for (const auto &[first, second, duration, bitrate] : cases) {
            QCOMPARE(comparisontext::durationDelta(first, second), duration);
            QCOMPARE(comparisontext::bitrateDelta(first, second), bitrate);
        }
        QLocale::setDefault(QLocale::c());
    }

    void labels()
    {
        TrackInfo track = trackOf(u"/music/Caf\u00e9 del Mar.mp3"_s, 0, 320);
        track.size = 1572864;
        QCOMPARE(comparisontext::title(track), u"CAF\u00c9 DEL MAR.MP3"_s);
        QCOMPARE(comparisontext::format(track), u"1.50 MB, 320 kbps"_s);
        track.tags.title = u"Stra\u00dfe"_s;
        track.stream.bitrateKbps = 0;
        QCOMPARE(comparisontext::title(track), u"STRASSE"_s);
        QCOMPARE(comparisontext::format(track), u"1.50 MB"_s);
        QCOMPARE(comparisontext::title({}), u"\u2014 no file loaded \u2014"_s);
        QCOMPARE(comparisontext::duration(100 * 3600000 + 61000), u"/ 100:01:01"_s);
    }
};

QTEST_APPLESS_MAIN(TestComparison)
#include "tst_comparison.moc"
