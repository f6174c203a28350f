// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "carryover.h"
#include "reviewstore.h"

#include "reviewsketch.h"
#include "rows.h"
#include "temporarylibrary.h"

#include <QSqlQuery>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

// From such a sketch as listsOf() has, with marks behind a name: * kept, # kept by hand, ! ticked, + ticked by hand,
// - unticked by hand. A group that begins with "done:" is.
ReviewRecord recordOf(const QString &sketch)
{
    ReviewRecord review;
    QString names = QString(sketch).remove(u"done:"_s);
    for (const QChar mark : u"!+-"_s)
        names.remove(mark);
    const Lists lists = listsOf(names.replace(u'#', u'*'));
    review.tracks = lists.tracks;
    review.groups = lists.groups;
    for (TrackInfo &track : review.tracks)
        track.mtime = QDateTime::fromMSecsSinceEpoch(1000000000123 + track.fileName.at(0).unicode());
    const QStringList groups = sketch.split(u" / "_s);
    for (qsizetype g = 0; g < review.groups.size(); ++g) {
        GroupDecision decision;
        decision.state = groups.at(g).startsWith("done:"_L1) ? GroupState::Done : GroupState::Undecided;
        decision.keep = review.groups.at(g).keep;
        decision.keeperByHand = groups.at(g).contains(u'#');
        for (const QString &name : groups.at(g).split(u' ')) {
            decision.ticked << (name.contains(u'!') || name.contains(u'+'));
            decision.byHand << (name.contains(u'-') || name.contains(u'+'));
        }
        review.decisions << decision;
    }
    review.files = review.tracks.size();
    return review;
}

QString sketchOf(const ReviewRecord &review)
{
    QStringList groups;
    for (qsizetype g = 0; g < review.groups.size(); ++g) {
        const GroupDecision &decision = review.decisions.at(g);
        QStringList names;
        for (qsizetype m = 0; m < review.groups.at(g).members.size(); ++m) {
            const qint32 track = review.groups.at(g).members.at(m);
            QString name = review.tracks.at(track).fileName.section(u'.', 0, 0);
            if (track == decision.keep)
                name += decision.keeperByHand ? u'#' : u'*';
            if (decision.byHand.at(m))
                name += decision.ticked.at(m) ? u'+' : u'-';
            else if (decision.ticked.at(m))
                name += u'!';
            names << name;
        }
        groups << (decision.state == GroupState::Done ? u"done:"_s : QString()) + names.join(u' ');
    }
    return groups.join(u" / "_s);
}

// Something in every member, the ends of their ranges among it.
ReviewRecord fullRecord()
{
    ReviewRecord review = recordOf(u"a# b+ c- / done:d* e! / x y"_s);
    review.groups.removeLast();
    review.decisions.removeLast();
    review.options.roots = { u"/music"_s, u"Z:/Müsik"_s };
    review.options.threshold = 0.123;
    review.options.followSymlinks = true;
    review.options.keeperPolicy = 3;
    review.scanned = QDateTime(QDate(2026, 10, 25), QTime(2, 30, 0, 7), Qt::UTC).toLocalTime();
    review.unreadableFolders = 4;
    TrackInfo &track = review.tracks[1];
    track.flags = TrackKeysFromCache;
    track.path = u"/music/\U0001F3B5\n.mp3"_s;
    track.size = std::numeric_limits<qint64>::max();
    track.tags.comment = QString(70000, u'ü');
    track.stream = { 1000, 128, 44100, 2, true };
    track.fullHash = QString(64, u'f');
    track.keys = { ~quint64 { 0 }, 7 };
    track.error = u"an error"_s;
    track.analysed = true;
    track.fingerprint.words = { 1, 2 };
    MatchGroup &group = review.groups[0];
    group.matchType = MatchType::SameRecording;
    group.confidence = 1.0 / 3;
    group.spans = { { 0, { 1, 2, 3, true, false } }, { 1, { -5, 0, 9, false, true } } };
    group.edits = { { 1, 5 } };
    group.links = { { 0, 1, MatchType::SameAudio, 0.03 } };
    SoundMeasures measures;
    measures.loudness = -23.1;
    measures.error = u"cut"_s;
    group.check.measures = { { 0, {} }, { 1, measures } };
    group.check.pairs = { { 0, 1, true, -7, { { SoundDifference::Kind::Repeats, false, 1, 2, 3, 4 } } } };
    review.currentGroup = 2;
    review.currentTrack = 4;
    return review;
}

void compare(const ReviewRecord &actual, const ReviewRecord &expected)
{
    QCOMPARE(actual.options, expected.options);
    QCOMPARE(actual.scanned, expected.scanned);
    QCOMPARE(std::pair(actual.unreadableFolders, actual.files), std::pair(expected.unreadableFolders, expected.files));
    QList<TrackInfo> stored(expected.tracks.size());
    for (const qint32 index : tracksToStore(stored.size(), expected.groups)) {
        stored[index] = expected.tracks.at(index);
        stored[index].fingerprint = {};
    }
    QCOMPARE(actual.tracks, stored);
    QCOMPARE(actual.groups, expected.groups);
    QCOMPARE(actual.decisions, expected.decisions);
    QCOMPARE(std::pair(actual.currentGroup, actual.currentTrack),
             std::pair(expected.currentGroup, expected.currentTrack));
}

ReviewRecord afterScan(ReviewRecord found, const CarriedOver &carried)
{
    Review review;
    review.setResults(found.tracks, found.groups);
    review.takeDecisions(carried.decisions);
    for (int g = 0; g < review.groups().size(); ++g)
        found.decisions[g] = review.decision(g);
    return found;
}

using Spoil = std::function<void(const QString &file)>;

Spoil running(const QString &statement)
{
    return [statement](const QString &file) {
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"spoil"_s);
            db.setDatabaseName(file);
            if (!db.open() || !QSqlQuery(db).exec(statement))
                qFatal("Cannot spoil the file");
        }
        QSqlDatabase::removeDatabase(u"spoil"_s);
    };
}

enum class Outcome { Empty, Damaged, LeftAlone };

} // namespace

Q_DECLARE_METATYPE(Spoil)

class TestReviewStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingComesBack()
    {
        const QTemporaryDir dir;
        const QString file = dir.filePath(u"deep/down/review.sqlite"_s);
        ReviewRecord review = fullRecord();
        {
            ReviewStore store(file);
            QVERIFY(store.open());
            QCOMPARE(store.load().value().groups.size(), 0);
            QVERIFY(store.save(recordOf(u"f* g! / h* i"_s)));
            QVERIFY(store.save(review));
            compare(store.load().value(), review);
        }
        review.decisions[1] = recordOf(u"d e#+"_s).decisions.first();
        review.decisions[1].keep = 4;
        review.groups[1].check = review.groups.at(0).check;
        review.currentTrack = -1;
        {
            ReviewStore store(file);
            QVERIFY(store.open());
            QVERIFY(store.update({ { 2, review.decisions.at(1), review.groups.at(1).check }, { 99, {}, {} } },
                                 { review.currentGroup, review.currentTrack }));
        }
        ReviewStore store(file);
        QVERIFY(store.open());
        compare(store.load().value(), review);
    }

    void whatIsNoReviewIsNotShown_data()
    {
        const Rows<Spoil, Outcome> row("spoil", "outcome");
        const auto write = [](const QByteArray &content) {
            return [content](const QString &file) { writeFile(file, content); };
        };
        const auto truncateTo = [](double share) {
            return [share](const QString &file) {
                QFile::resize(file, static_cast<qint64>(static_cast<double>(QFileInfo(file).size()) * share));
            };
        };
        const auto turnOver = [](const QByteArray &text) {
            return [text](const QString &file) {
                QByteArray content = readFile(file);
                content[content.indexOf(text) + text.size() / 2] ^= 1;
                writeFile(file, content);
            };
        };
        row("empty file", write({}), Outcome::Empty);
        row("text", write("[a]\nlist=of settings"), Outcome::Damaged);
        row("first half", truncateTo(0.5), Outcome::Damaged);
        row("most of it", truncateTo(0.9), Outcome::Damaged);
        row("a bit in a path", turnOver(QByteArray("\0/\0m\0u\0s\0i\0c\0/\0b", 16)), Outcome::Damaged);
        row("a decision that is another's",
            running(u"UPDATE review SET content = (SELECT content FROM review WHERE part = 3 AND number = 1) "
                    "WHERE part = 3 AND number = 2"_s),
            Outcome::Damaged);
        row("a row that is cut off",
            running(u"UPDATE review SET content = substr(content, 1, 5) WHERE part = 3 AND number = 1"_s),
            Outcome::Damaged);
        row("tracks that are missing", running(u"DELETE FROM review WHERE part = 1"_s), Outcome::Damaged);
        row("a decision that is missing", running(u"DELETE FROM review WHERE number = 2"_s), Outcome::Damaged);
        row("no head", running(u"DELETE FROM review WHERE part = 0"_s), Outcome::Damaged);
        row("an unknown part", running(u"INSERT INTO review VALUES (9, 0, x'00')"_s), Outcome::Damaged);
        row("no table", running(u"DROP TABLE review"_s), Outcome::Empty);
        row("another program's", running(u"PRAGMA application_id=7"_s), Outcome::Damaged);
        row("nobody's", running(u"PRAGMA application_id=0"_s), Outcome::Damaged);
        row("a newer layout", running(u"PRAGMA user_version=%1"_s.arg(reviewLayout + 1)), Outcome::LeftAlone);
    }

    void whatIsNoReviewIsNotShown()
    {
        QFETCH(const Spoil, spoil);
        QFETCH(const Outcome, outcome);
        const QTemporaryDir dir;
        const QString file = dir.filePath(u"review.sqlite"_s);
        {
            ReviewStore store(file);
            QVERIFY(store.open() && store.save(fullRecord()));
        }
        spoil(file);
        const QByteArray before = readFile(file);
        ReviewStore store(file);
        const Result<> opened = store.open();
        const Result<ReviewRecord> loaded = opened ? store.load() : Result<ReviewRecord>(failure(opened.error()));
        QCOMPARE(loaded.has_value(), outcome == Outcome::Empty);
        QCOMPARE(store.isDamaged(), outcome == Outcome::Damaged);
        if (outcome == Outcome::LeftAlone) {
            QVERIFY(!opened);
            QCOMPARE(readFile(file), before);
        }
        if (outcome != Outcome::Damaged)
            return;
        const Result<QString> aside = store.setAside();
        QVERIFY(aside);
        QCOMPARE(readFile(*aside), before);
        QVERIFY(store.open() && store.save(fullRecord()));
        compare(store.load().value(), fullRecord());
    }

    void oneProgramHasIt()
    {
        const QTemporaryDir dir;
        ReviewStore first(dir.filePath(u"review.sqlite"_s));
        ReviewStore second(dir.filePath(u"review.sqlite"_s));
        QVERIFY(first.open() && first.save(fullRecord()));
        const Result<> opened = second.open();
        QVERIFY(!opened && !second.isDamaged());
        QCOMPARE(opened.error(), u"another window of this program has it open"_s);
        QVERIFY(first.update({}, { 1, 1 }));
        first.close();
        QVERIFY(second.open());
        QCOMPARE(second.load().value().currentTrack, 1);
    }

    void decisionsAreCarriedOver_data()
    {
        const Rows<QString, QString, QString> row("earlier", "found", "decided");
        row("nothing decided", u"a* b! c"_s, u"a* b c"_s, u"a* b! c! 0 0 0"_s);
        row("another copy is kept", u"a! b#"_s, u"a* b"_s, u"a! b# 1 0 0"_s);
        row("a tick taken away", u"a* b- c!"_s, u"a* b c"_s, u"a* b- c! 0 1 0"_s);
        row("a tick stays beside a new copy", u"a* b-"_s, u"n* a b"_s, u"n* a! b- 0 1 0"_s);
        row("what is kept now is not ticked", u"a+ b*"_s, u"a* b"_s, u"a* b! 0 0 0"_s);
        row("never all of a group", u"a+ b+ c*"_s, u"a b"_s, u"a b+ 0 1 0"_s);
        row("two groups became one", u"a# b! / c# d!"_s, u"a* b c d"_s, u"a# b! c- d! 1 1 0"_s);
        row("a group became two", u"a* b c# d-"_s, u"a* b / c* d"_s, u"a* b! / c# d- 1 1 0"_s);
        row("done", u"done:a! b* c"_s, u"a* b c"_s, u"done:a! b* c 0 0 1"_s);
        row("done, one copy went", u"done:a# b c!"_s, u"a* b"_s, u"done:a# b 1 0 1"_s);
        row("done, and one more copy", u"done:a* b"_s, u"a* b n"_s, u"a* b! n! 0 0 0"_s);
        row("done in two groups", u"done:a* b / done:c* d"_s, u"a* b c d"_s, u"a* b! c! d! 0 0 0"_s);
    }

    void decisionsAreCarriedOver()
    {
        QFETCH(const QString, earlier);
        QFETCH(const QString, found);
        ReviewRecord before = recordOf(earlier);
        ReviewRecord after = recordOf(found);
        for (QList<TrackInfo> *tracks : { &before.tracks, &after.tracks }) {
            for (TrackInfo &track : *tracks)
                track.size = 1; // the sketches give sizes by position
        }
        const CarriedOver carried = carryOver(before, after.tracks, after.groups);
        QTEST(sketchOf(afterScan(after, carried))
                  + u" %1 %2 %3"_s.arg(carried.keepers).arg(carried.ticks).arg(carried.doneGroups),
              "decided");
    }

    void changedAndLackingFilesAreDecidedAfresh()
    {
        const ReviewRecord before = recordOf(u"a# b- c+ d+"_s);
        ReviewRecord after = before;
        after.tracks[0].mtime = after.tracks.at(0).mtime.addMSecs(1);
        after.tracks[1].size += 1;
        after.groups[0].keep = 0;
        after.groups[0].spans = { { 0, { 0, 0, 100000, true } }, { 2, { 0, 0, 60000, true } } };
        QCOMPARE(sketchOf(afterScan(after, carryOver(before, after.tracks, after.groups))), u"a* b! c d+"_s);
    }

    void whatAScanDoesNotFindAgainIsCounted()
    {
        ReviewRecord before = recordOf(u"a# b! / done:c* d! / e* f- / g* h! / i* j!"_s);
        before.decisions[4].state = GroupState::NotDuplicates;
        ReviewRecord after = before;
        QCOMPARE(carryOver(before, after.tracks, after.groups).lostGroups, 0);
        QCOMPARE(carryOver(before, after.tracks, after.groups).decisions.value(4).state, GroupState::NotDuplicates);
        after.groups.remove(1, 2);
        QCOMPARE(carryOver(before, after.tracks, after.groups).lostGroups, 2);
        QCOMPARE(carryOver(before, {}, {}).lostGroups, 3);
    }
};

QTEST_GUILESS_MAIN(TestReviewStore)
#include "tst_reviewstore.moc"
