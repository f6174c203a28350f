// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareplayer.h"
#include "comparisontext.h"
#include "rows.h"

#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

/// Time stands still; what a deck does is what it is told.
struct FakeDeck final : DeckPlayback {
    qint64 position() const override { return at; }
    qint64 duration() const override { return length; }
    bool isPlaying() const override { return playing; }
    bool hasEnded() const override { return at >= length; }
    bool hasFailed() const override { return false; }
    void setSource(const QString &path) override { source = path, at = 0, playing = false; }
    void play() override
    {
        playing = !source.isEmpty(), at = hasEnded() ? 0 : at;
        Q_EMIT playingChanged();
    }
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

/// The file C exists.
TrackInfo trackOf(const QString &name)
{
    TrackInfo track;
    track.path = name == u"C"_s ? QCoreApplication::applicationFilePath() : name;
    return track;
}

struct Story {
    Story()
    {
        auto first = std::make_unique<FakeDeck>();
        auto second = std::make_unique<FakeDeck>();
        decks = { first.get(), second.get() };
        player.emplace(ComparePlayer::Playbacks { std::move(first), std::move(second) });
    }

    /// Commands are for deck A unless they name B, "monitorB" say; "loadC" loads another file.
    void run(const QString &command)
    {
        const Deck deck = command.contains(u'B') ? Deck::B : Deck::A;
        if (command.startsWith(u"play"))
            player->playPause();
        else if (command.startsWith(u"stop"))
            player->stop();
        else if (command.startsWith(u"seek"))
            player->seek(deck, command.mid(5).toInt());
        else if (command.startsWith(u"load"))
            player->load(deck, trackOf(command.mid(4)));
        else if (command.startsWith(u"place"))
            player->loadIntoFreeDeck(trackOf(command.mid(5)));
        else if (command == u"vanish"_s)
            player->clearVanished();
        else if (command.startsWith(u"clear"))
            player->clear(deck);
        else if (command.startsWith(u"link"))
            player->setLinked(true);
        else if (command.startsWith(u"offset"))
            player->setOffset(command.mid(6).toInt());
        else if (command.startsWith(u"pass"))
            decks[deck]->at = command.mid(5).toInt(), player->syncTick();
        else
            deck == Deck::A ? player->monitorDeckA() : player->monitorDeckB();
    }

    PerDeck<FakeDeck *> decks;
    std::optional<ComparePlayer> player;
};

} // namespace

class TestComparison : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // In the situation, A and B are decks with files, standing at 1000 and 5000, L is linked, s a B of 8000 ms, l one
    // of 90 s. Then come the commands and where A and B stand after them, with "+" if they play.
    void commands_data()
    {
        const test::Rows<QString> row("story");
        row("playing starts the monitored deck", u"AB|play|1000+|5000"_s);
        row("linked decks start where A is", u"ABL|play|1000+|1000+"_s);
        row("or where the monitored B is", u"ABL|monitorB play|5000+|5000+"_s);
        row("after the end from the beginning", u"ABL|seekA60000 play|0+|0+"_s);
        row("a longer B goes on where A ended", u"ABLl|seekA60000 play|60000|60000+"_s);
        row("a shorter B stays at its end", u"ABLs|seekA9000 play|9000+|8000"_s);
        row("one that plays is enough to pause", u"AB|play monitorB play|1000|5000"_s);
        row("stopping goes to the beginning", u"ABL|play stop|0|0"_s);
        row("to switch moves nothing", u"AB|play monitorB|1000+|5000"_s);
        row("and linked ones both", u"ABL|play seekB7|7+|7+"_s);
        row("a deck that ran out joins again", u"ABLs|play seekA9000 seekA2000|2000+|2000+"_s);
        row("unless both did", u"ABL|play seekA60000 seekA2000|2000|2000"_s);
        row("linking moves B even if monitored", u"AB|monitorB link|1000|1000"_s);
        row("the same file plays on", u"ABL|play loadA|1000+|1000+"_s);
        row("a playing deck plays what it is given", u"AB|play loadC|0+|5000"_s);
        row("the next group plays on", u"ABL|play loadC loadB2|0+|0+"_s);
        row("a linked deck joins the other", u"AL|play loadB|1000+|0+"_s);
        row("clearing one leaves the other", u"ABL|play clearA|0|1000+"_s);
        row("linked decks hold their offset", u"ABL|offset2000 play|1000+|3000+"_s);
        row("whichever of them moves", u"ABL|offset2000 play seekB9000|7000+|9000+"_s);
        row("what the file begins after waits at its start", u"ABL|offset-2000 play|1000+|0"_s);
        row("until the other gets there", u"ABL|offset-2000 play passA2500|2500+|500+"_s);
        row("though it be the one that is heard", u"ABL|monitorB offset2000 seekB500 play passB2500|500+|2500+"_s);
        row("and the other's place counts after a pause",
            u"ABL|offset-2000 monitorB seekA100 play passA1500 play play|1500+|0"_s);
        row("it waits no more after a stop", u"ABL|offset-2000 play stop monitorB play|2000+|0+"_s);
        row("nor once it is taken to where it has something to play", u"ABL|offset-2000 play seekB7|2007+|7+"_s);
        row("nor when another file is loaded", u"ABL|offset-2000 play loadC|0+|1000+"_s);
        row("what ends earlier stays at its end", u"ABLs|offset2000 play seekA7000|7000+|8000"_s);
        row("what is left of one of them plays on", u"ABL|offset-2000 seekB58000 play|60000|58000+"_s);
        row("after the end of both they begin anew, at one moment", u"ABLs|offset-2000 seekA60000 play|0+|0"_s);
        row("an offset that is found while they play", u"ABL|play offset-500|1000+|500+"_s);
        row("a file goes to the empty deck", u"B|monitorB placeC seekA7|7|5000"_s);
        row("or to the one that is not heard", u"AB|monitorB placeC|0|5000"_s);
        row("decks whose file is gone are cleared, and heard still", u"AB|loadC seekA7 monitorB vanish|7|0"_s);
    }

    void commands()
    {
        QFETCH(const QString, story);
        const QString situation = story.section(u'|', 0, 0);
        const QString orders = story.section(u'|', 1, 1);
        Story seen;
        seen.player->setLinked(situation.contains(u'L'));
        for (const Deck deck : bothDecks) {
            const QString name = comparisontext::deckName(deck);
            if (situation.contains(name)) {
                seen.player->load(deck, trackOf(name));
                seen.decks[deck]->at = deck == Deck::A ? 1000 : 5000;
            }
        }
        if (situation.contains(u's'))
            seen.decks.b->length = 8000;
        else if (situation.contains(u'l'))
            seen.decks.b->length = 90000;
        for (const QString &command : orders.split(u' '))
            seen.run(command);
        const Deck monitor = orders.contains(u"monitorB") ? Deck::B : Deck::A;
        QString told = situation + u'|' + orders;
        for (const Deck deck : bothDecks) {
            const FakeDeck &fake = *seen.decks[deck];
            told += u"|%1"_s.arg(fake.at) + (fake.playing ? u"+"_s : QString());
            QCOMPARE(fake.volume, deck == monitor ? 1.0F : 0.0F);
            QCOMPARE(fake.source, seen.player->track(deck).path);
        }
        QCOMPARE(told, story);
    }

    // Steps of half a decibel while it plays.
    void theLouderCopyIsTurnedDown()
    {
        Story seen;
        for (const QString &command : { u"loadA"_s, u"loadB"_s, u"play"_s })
            seen.run(command);
        SoundMeasures loud;
        loud.loudness = -8;
        SoundMeasures soft;
        soft.loudness = -14;
        seen.player->setSameLoudness(true);
        seen.player->showMeasures(Deck::A, loud);
        QCOMPARE(seen.decks.a->volume, 1.0F); // the other's is not known
        seen.player->showMeasures(Deck::B, soft);
        QVERIFY(seen.decks.a->volume > 0.9F && seen.decks.a->volume < 0.95F);
        QTRY_COMPARE(std::lround(1000 * seen.decks.a->volume), 501);
        seen.run(u"monitorB"_s);
        QVERIFY(seen.decks.a->volume == 0.0F && seen.decks.b->volume == 1.0F); // never louder than the file
        seen.player->pause();
        seen.player->setSameLoudness(false);
        seen.run(u"monitorA"_s);
        QCOMPARE(seen.decks.a->volume, 1.0F);
    }

    void drift_data()
    {
        const test::Rows<qint64, QString, bool> row("drift", "playing", "corrected");
        row("at the limit", 140, u"linked monitored other"_s, false);
        row("beyond the limit", 141, u"linked monitored other"_s, true);
        row("behind, beyond the limit", -141, u"linked monitored other"_s, true);
        row("not linked", 5000, u"monitored other"_s, false);
        row("the monitored one stands", 5000, u"linked other"_s, false);
    }

    // Whichever deck is monitored stays where it is, and the other belongs half a second later or earlier.
    void drift()
    {
        QFETCH(const qint64, drift);
        QFETCH(const QString, playing);
        QFETCH(const bool, corrected);
        for (const Deck monitor : bothDecks) {
            Story seen;
            for (const QString &command : { u"loadA"_s, u"loadB"_s, u"monitor"_s + comparisontext::deckName(monitor) })
                seen.run(command);
            seen.player->setOffset(500);
            seen.player->setLinked(playing.contains(u"linked"));
            const qint64 wanted = monitor == Deck::A ? 10500 : 9500;
            FakeDeck &monitored = *seen.decks[monitor];
            FakeDeck &other = *seen.decks[otherDeck(monitor)];
            monitored.at = 10000;
            monitored.playing = playing.contains(u"monitored");
            other.at = wanted + drift;
            other.playing = playing.contains(u"other");
            seen.player->syncTick();
            QCOMPARE(monitored.at, 10000);
            QCOMPARE(other.at, corrected ? wanted : wanted + drift);
        }
    }
};

QTEST_MAIN(TestComparison)
#include "tst_comparison.moc"
