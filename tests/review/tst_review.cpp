// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperchoice.h"
#include "keeperpolicy.h"
#include "reviewfilter.h"

#include "reviewsketch.h"
#include "rows.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(Review &)>;

// What the totals must be, counted the slow way.
ReviewTotals countedTotals(const Review &review)
{
    ReviewTotals totals;
    totals.files = review.tracks().size();
    totals.groups = review.groups().size();
    for (int g = 0; g < review.groups().size(); ++g) {
        for (int m = 0; m < review.groups().at(g).members.size(); ++m) {
            const qint64 size = review.track(g, m)->size;
            totals.redundantCopies += m > 0 ? 1 : 0;
            totals.redundantBytes += review.isKeeper(g, m) ? 0 : size;
            totals.tickedFiles += review.isTicked(g, m) ? 1 : 0;
            totals.tickedBytes += review.isTicked(g, m) ? size : 0;
        }
    }
    return totals;
}

// What the filter shows, in the order of its rows.
QString shownBy(const ReviewFilter &filter, const Review &review)
{
    QStringList groups;
    for (int row = 0; row < filter.groupCount(); ++row) {
        QStringList members;
        for (int i = 0; i < filter.memberCount(row); ++i)
            members << sketchOf(review, filter.groupAt(row), filter.memberAt(row, i));
        groups << members.join(u' ');
    }
    return groups.join(u" / "_s);
}

Change keeping(qint32 track)
{
    return [=](Review &review) { review.setKeeper(0, track); };
}

Change removing(const QSet<qint32> &tracks)
{
    return [=](Review &review) { review.removeMembers(tracks); };
}

Change both(const Change &first, const Change &second)
{
    return [=](Review &review) { first(review), second(review); };
}

// With the third copy of the first group unticked before.
Change without(const QSet<qint32> &removed)
{
    return both([](Review &review) { review.setTicked(0, 2, false); }, removing(removed));
}

} // namespace

Q_DECLARE_METATYPE(Change)

class TestReview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decisionsChangeTicksAndKeepers_data()
    {
        const Rows<QString, Change, QString> row("before", "change", "after");
        row(
            "a scan's results", u"a* b c / d e*"_s, [](Review &) {}, u"a* b! c! / d! e* 5 MB"_s);
        row("invert", u"a* b / d e*"_s, &Review::invertTicks, u"a*! b / d e*! 2 MB"_s);
        row("clear", u"a* b / d e*"_s, &Review::clearTicks, u"a* b / d e* 2 MB"_s);
        row("tick duplicates", u"a* b"_s, both(&Review::invertTicks, &Review::tickDuplicates), u"a* b! 2 MB"_s);
        row("keep a ticked copy", u"a* b c"_s, keeping(1), u"a! b* c! 4 MB"_s);
        row("keep an unticked copy", u"a* b"_s, both(&Review::clearTicks, keeping(1)), u"a b* 1 MB"_s);
        row("keep a copy of another group", u"a* b"_s, keeping(9), u"a* b! 2 MB"_s);
        row(
            "keep copies of several groups", u"a* b c / d e*"_s,
            [](Review &review) {
                review.setKeepers({ { 0, 2 }, { 1, 0 }, { 0, 2 } });
            },
            u"a! b! c* / d* e! 3 MB"_s);
        row("nothing was kept", u"a b"_s, keeping(1), u"a! b* 1 MB"_s);
        row("a group of one goes", u"a* b c / d e*"_s, without({ 3 }), u"a* b! c 5 MB"_s);
        row("a group of two stays", u"a* b c / d e*"_s, without({ 1 }), u"a* c / d! e* 3 MB"_s);
        row("the kept copy goes", u"a* b c / d e*"_s, without({ 0 }), u"b! c* / d! e* 2 MB"_s);
        row("the last unticked copy goes", u"a* b c"_s, removing({ 0 }), u"b* c! 3 MB"_s);
        row("all go", u"a* b c / d e*"_s, without({ 0, 1, 2, 3, 4 }), u" 0 MB"_s);
    }

    void decisionsChangeTicksAndKeepers()
    {
        QFETCH(const QString, before);
        QFETCH(const Change, change);
        Review review;
        fill(review, before);
        change(review);
        const qint64 reclaimable = review.groups().isEmpty() ? 0 : review.groups().at(0).reclaimableBytes;
        QTEST(sketchOf(review) + u" %1 MB"_s.arg(reclaimable / mebibyte), "after");
    }

    void copiesThatLackAPartAreNotTicked()
    {
        Lists lists = listsOf(u"a* b c"_s);
        lists.groups[0].spans = { { 0, { 0, 0, 100000, true } },
                                  { 1, { 0, 0, 90000, true } },
                                  { 2, { 900, 900, 96000, true } } };
        Review review;
        review.setResults(lists.tracks, lists.groups);
        QCOMPARE(sketchOf(review), u"a* b c!"_s);
        QCOMPARE(review.offsetBetween(u"/music/a.mp3"_s, u"/music/c.mp3"_s), std::optional<qint64>(-900));
        Review other;
        other.setResults(lists.tracks, lists.groups);
        other.removeMembers({ 0 });
        QCOMPARE(sketchOf(other), u"b c*"_s);
        review.setKeeper(0, 1);
        review.tickDuplicates();
        QCOMPARE(sketchOf(review), u"a! b* c!"_s);
    }

    void copiesThatACheckSpeaksAgainstAreUnticked()
    {
        Review review;
        fill(review, u"a* b c / d e*"_s);
        GroupCheck check;
        check.measures = { { 0, {} }, { 1, {} }, { 2, {} } };
        const SoundDifference other { SoundDifference::Kind::OtherEnding };
        check.pairs = { { 0, 1, true, 0, { other } }, { 0, 2, true, 0, {} }, { 1, 2, true, 0, { other } } };
        QCOMPARE(review.setCheck(0, check), 1);
        QCOMPARE(sketchOf(review), u"a* b c! / d! e*"_s);
        review.tickDuplicates();
        QCOMPARE(sketchOf(review), u"a* b c! / d! e*"_s);
        review.setTicked(0, 1, true); // on purpose
        review.setKeeper(0, 1);
        QCOMPARE(sketchOf(review), u"a b* c / d! e*"_s); // now the others differ
        review.setKeeper(0, 2);
        review.tickDuplicates();
        QCOMPARE(sketchOf(review), u"a! b c* / d! e*"_s);
        review.removeMembers({ 2 });
        QCOMPARE(sketchOf(review), u"a b* / d! e*"_s);
        QCOMPARE(review.totals(), countedTotals(review));
    }

    void keptCopyIsComparedWithTheBestOther()
    {
        Lists lists = listsOf(u"a* b c d"_s);
        lists.tracks[2].stream.bitrateKbps = 320;
        Review review;
        review.setResults(lists.tracks, lists.groups);
        QCOMPARE(review.counterpart(0, 1), 1); // the one that was chosen
        QCOMPARE(review.counterpart(0, 0), 2);
        review.removeMembers({ 2 });
        QCOMPARE(review.counterpart(0, 0), 3); // the larger one
    }

    void filterFinds_data()
    {
        const Rows<QString, QString> row("typed", "shown");
        row("blanks are nothing", u"  \t"_s, u"a* b! / c! d* / e* f!"_s);
        row("a title in other letter case", u"  TITLE OF B "_s, u"b!"_s);
        row("an artist beyond ASCII", u"bJÖRK"_s, u"c!"_s);
        row("a folder as Windows writes it", u"Archive\\1998"_s, u"f!"_s);
        row("a backslash in a title", u"left\\right"_s, u"a*"_s);
        row("members of several groups", u"artist"_s, u"a* b! / d* / e* f!"_s);
        row("no expression, just text", u"t.tle"_s, QString());
        row("not from one text into the next", u"artist title"_s, QString());
    }

    void filterFinds()
    {
        QFETCH(const QString, typed);
        Lists lists = listsOf(u"a* b / c d* / e* f"_s);
        lists.tracks[0].tags.title = u"Left\\Right"_s;
        lists.tracks[2].tags.artist = u"Björk"_s;
        lists.tracks[5].path = u"/Archive/1998/f.mp3"_s;
        Review review;
        review.setResults(lists.tracks, lists.groups);
        ReviewFilter filter(review);
        for (qsizetype length = 1; length <= typed.size(); ++length) { // as it is typed
            filter.setText(typed.first(length));
            filter.layOutRows();
        }
        QTEST(shownBy(filter, review), "shown");
    }

    void criteriaLeaveGroupsOrCopies_data()
    {
        using enum FilterTerm::Kind;
        const auto problem = [](FilterTerm::Problem what) { return FilterTerm { Problem, static_cast<qint64>(what) }; };
        const Rows<FilterCriteria, QString, QString> row("criteria", "text", "shown");
        const FilterTerm flac { Format, 0, u"flac"_s };
        const FilterTerm archive { Folder, 0, u"/archive"_s };
        row("one copy has it, its whole group shows", { { flac } }, {}, u"a* b c! / f* g!"_s);
        row("the kept one stays beside the matching", { { flac }, true }, {}, u"a* b / f* g!"_s);
        row("a text hides copies all the same", { { flac }, true }, u"of b"_s, u"b"_s);
        row("another copy has the text", { { flac } }, u"of c"_s, {});
        row("one copy must meet every kind", { { archive, flac } }, {}, u"f* g!"_s);
        row("kinds side by side or not", { { flac, archive, { Format, 0, u"mp3"_s } } }, {}, u"d e*! / f* g!"_s);
        row("no folder of a name that begins so", { { { Folder, 0, u"/arch"_s } } }, {}, {});
        row("match type", { { { Match, 3 }, { Match, 2 } } }, {}, u"f* g!"_s);
        row("states", { { { State, 1 } } }, {}, u"d e*!"_s);
        row("ticked copies", { { { Ticks, 1 } }, true }, {}, u"a* c! / e*! / f* g!"_s);
        row("without a tick", { { { Ticks, 0 } } }, {}, u"h* i"_s);
        row("size", { { { AtLeast, 8 * mebibyte } } }, {}, u"h* i"_s);
        row("identical", { { { Identical } }, true }, {}, u"a* c!"_s);
        row("wholly ticked", { { problem(FilterTerm::Problem::WhollyTicked) } }, {}, {});
        row("vanished", { { problem(FilterTerm::Problem::NotAsScanned) } }, {}, u"h* i"_s);
        row("protected", { { problem(FilterTerm::Problem::Protected) }, true }, {}, u"d e*!"_s);
        row("unreadable or protected",
            { { problem(FilterTerm::Problem::Unreadable), problem(FilterTerm::Problem::Protected) } }, {},
            u"d e*! / f* g!"_s);
    }

    void criteriaLeaveGroupsOrCopies()
    {
        QFETCH(const FilterCriteria, criteria);
        QFETCH(const QString, text);
        Lists lists = listsOf(u"a* b c / d e* / f* g / h* i"_s);
        for (TrackInfo &track : lists.tracks)
            track.suffix = u"mp3"_s;
        lists.tracks[1].suffix = lists.tracks[6].suffix = u"flac"_s;
        lists.tracks[3].path = u"/archive/1/d.mp3"_s;
        lists.tracks[6].path = u"/archive/g.flac"_s;
        lists.tracks[6].error = u"damaged"_s;
        lists.tracks[0].fullHash = lists.tracks[2].fullHash = u"1"_s;
        lists.groups[2].matchType = MatchType::SameSong;
        for (const int other : { 0, 1, 3 })
            lists.groups[other].matchType = MatchType::SameAudio;
        Review review;
        review.setResults(lists.tracks, lists.groups);
        review.setProtected({ 3 });
        review.setTicked(0, 1, false);
        review.setTicked(1, 1, true);
        review.setState({ 1 }, GroupState::Done);
        review.setFileStates({ { 8, FileState::Vanished } });
        ReviewFilter filter(review);
        filter.setCriteria(criteria);
        filter.setText(text);
        filter.layOutRows();
        QTEST(shownBy(filter, review), "shown");
        QCOMPARE(filter.shownPlaces().size(), shownBy(filter, review).count(QRegularExpression(u"\\w"_s)));
    }

    void groupsAreSorted_data()
    {
        const Rows<GroupKey, bool, QString> row("key", "descending", "order");
        row("names with numbers by their value", GroupKey::File, false, u"a2 / a10 / B1"_s);
        row("the other way round", GroupKey::File, true, u"B1 / a10 / a2"_s);
        row("what can be reclaimed", GroupKey::Reclaimable, true, u"a2 / B1 / a10"_s);
        row("equal ones as they were", GroupKey::Copies, true, u"B1 / a10 / a2"_s);
        row("artist of the kept copy", GroupKey::Artist, false, u"B1 / a2 / a10"_s);
        row("match", GroupKey::Match, true, u"a10 / B1 / a2"_s);
        row("bit rate before sample rate", GroupKey::Quality, true, u"a10 / B1 / a2"_s);
        row("date", GroupKey::Modified, false, u"a2 / B1 / a10"_s);
        row("folder", GroupKey::Folder, true, u"a2 / B1 / a10"_s);
    }

    void groupsAreSorted()
    {
        QFETCH(const GroupKey, key);
        QFETCH(const bool, descending);
        Lists lists = listsOf(u"B1* x / a10* y / a2* z"_s);
        lists.groups[1].reclaimableBytes = 1;
        lists.groups[1].matchType = MatchType::SameSong;
        lists.groups[0].matchType = lists.groups[2].matchType = MatchType::SameAudio;
        lists.tracks[2].tags.artist = u"Éa"_s;
        lists.tracks[4].tags.artist = u"e"_s;
        lists.tracks[5].tags.artist = u"A"_s; // of no account: it is not kept
        lists.tracks[0].stream = { .bitrateKbps = 128, .sampleRate = 48000 };
        lists.tracks[2].stream = { .bitrateKbps = 320, .sampleRate = 44100 };
        lists.tracks[4].stream = { .bitrateKbps = 128, .sampleRate = 44100 };
        lists.tracks[4].path = u"/other/a2.mp3"_s;
        for (const int kept : { 4, 0, 2 })
            lists.tracks[kept].mtime = QDateTime::fromSecsSinceEpoch(kept == 4 ? 0 : kept + 1);
        Review review;
        review.setResults(lists.tracks, lists.groups);
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::English)); // no order of characters as in "C"
        QStringList names;
        for (const int group : sortedGroups(review, { key, descending }))
            names << review.track(group, 0)->fileName.section(u'.', 0, 0);
        QLocale::setDefault(before);
        QTEST(names.join(u" / "_s), "order");
    }

    void protectedCopiesAreNeverTicked()
    {
        Review review;
        fill(review, u"a* b c / d e*"_s);
        QSignalSpy refused(&review, &Review::tickRefused);
        review.clearTicks();
        review.setProtected({ 0, 1, 3 });
        review.undo();
        QCOMPARE(sketchOf(review), u"a* b c! / d e*"_s);
        review.setTicked(0, 1, true);
        QCOMPARE(refused.size(), 1);
        review.setKeeper(0, 2); // passes its tick on
        QCOMPARE(sketchOf(review), u"a b c* / d e*"_s);
        review.invertTicks();
        review.setTicked({ { 0, 0 }, { 0, 2 }, { 1, 1 } }, true);
        QCOMPARE(sketchOf(review), u"a b c*! / d e*!"_s);
        QCOMPARE(review.totals().tickedFiles, 2);
        review.setTicked({ { 0, 2 }, { 1, 1 } }, false);
        review.removeMembers({ 4 });
        review.setProtected({ 1 });
        review.tickDuplicates();
        QCOMPARE(sketchOf(review), u"a! b c*"_s);
        review.setProtected({ 0 });
        QCOMPARE(sketchOf(review), u"a b c*"_s);
    }

    void whatIsNoDuplicateOfTheKeptCopyIsTickedByHandOnly()
    {
        Review review;
        fill(review, u"a* b c / d e*"_s);
        review.setApart({ { 0, 1 } });
        QCOMPARE(sketchOf(review), u"a* b c! / d! e*"_s);
        review.clearTicks();
        review.tickDuplicates();
        QCOMPARE(sketchOf(review), u"a* b c! / d! e*"_s);
        review.invertTicks();
        QCOMPARE(sketchOf(review), u"a*! b c / d e*!"_s);
        review.tickDuplicates();
        review.setKeeper(0, 2);
        QCOMPARE(sketchOf(review), u"a! b c* / d! e*"_s);
        review.setTicked(0, 1, true);
        review.setKeeper(0, 0);
        QCOMPARE(sketchOf(review), u"a* b! c! / d! e*"_s);
    }

    // Removal would refuse each of them; until then the totals must not promise what cannot be done.
    void nothingIsTickedBesideAKeptCopyThatWent()
    {
        Review review;
        fill(review, u"a* b c / d e*"_s);
        QSignalSpy refused(&review, &Review::tickRefused);
        review.setTicked(0, 2, true);
        review.setFileStates({ { 0, FileState::Changed } });
        review.tickDuplicates();
        review.setTicked(0, 1, true);
        QCOMPARE(sketchOf(review), u"a* b c / d! e*"_s);
        QCOMPARE(refused.size(), 1);
        review.setKeeper(0, 2);
        review.setTicked(0, 1, true);
        QCOMPARE(sketchOf(review), u"a b! c* / d! e*"_s);
        review.setKeeper(0, 0);
        QCOMPARE(sketchOf(review), u"a* b c / d! e*"_s);
    }

    void keepersAreChosenAgainInOneStep()
    {
        Review review;
        fill(review, u"a* b c / d* e / f* g / h i* / j* k"_s); // the last one of each is the largest
        review.setKeeper(1, 4);
        review.setKeeper(1, 3); // by hand
        review.setTicked(0, 1, true);
        review.undo(); // not by hand any more
        review.setState({ 2 }, GroupState::Done);
        review.setTicked(4, 1, false);
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(KeeperPolicy::OldestFile);
        review.setKeeperOptions(options);
        options.keeperPolicy = static_cast<qint32>(KeeperPolicy::LargestFile);
        const QString before = sketchOf(review);
        const KeeperChoice choice = chooseKeepersAgain(review, options);
        QCOMPARE(choice.changes, (QList<std::pair<int, qint32>> { { 0, 2 } }));
        QCOMPARE(choice.decided, 3);
        review.chooseKeepers(choice);
        QCOMPARE(sketchOf(review), u"a! b! c* / d* e! / f* g! / h! i* / j* k"_s);
        QCOMPARE(review.keepText(0), u"kept: largest file"_s);
        QCOMPARE(review.keepText(1), u"kept by hand"_s);
        review.undo();
        QCOMPARE(sketchOf(review), before);
        QCOMPARE(review.keepText(0), u"kept: first of equal copies"_s);
    }

    void totalsHoldThroughAnyCourse()
    {
        QRandomGenerator random(20261121);
        QString sketch;
        for (int g = 0; g < 40; ++g)
            sketch += u"p%1* q%1 r%1 / "_s.arg(g);
        Review review;
        fill(review, sketch);
        ReviewFilter filter(review);
        QString text;
        for (int step = 0; step < 300 && !review.groups().isEmpty(); ++step) {
            const int group = random.bounded(static_cast<int>(review.groups().size()));
            const int member = random.bounded(static_cast<int>(review.groups().at(group).members.size()));
            const qint32 track = review.groups().at(group).members.at(member);
            const int choice = random.bounded(24);
            if (choice < 3)
                choice == 0 ? review.invertTicks() : choice == 1 ? review.tickDuplicates() : review.clearTicks();
            else if (choice < 7)
                review.setKeeper(group, track);
            else if (choice < 10)
                review.removeMembers({ track, track + 1 });
            else if (choice < 14)
                filter.setText(text = (choice < 12 ? text : QString()) + QString::number(random.bounded(40)));
            else
                review.setTicked(group, member, random.bounded(2) == 1);
            filter.layOutRows();
            ReviewFilter fresh(review);
            fresh.setText(text);
            fresh.layOutRows();
            QCOMPARE(shownBy(filter, review), shownBy(fresh, review));
            QCOMPARE(review.totals(), countedTotals(review));
            QCOMPARE(filter.hiddenTicks(), review.totals().tickedFiles - shownBy(filter, review).count(u'!'));
        }
    }
};

QTEST_GUILESS_MAIN(TestReview)
#include "tst_review.moc"
