// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "progressestimate.h"
#include "resultsfilter.h"
#include "resultsmodel.h"
#include "searchtext.h"
#include "summarytext.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1 << 20;

struct Lists {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

// Groups from a sketch such as "a* b / c d*": names of tracks, a star at the keeper. The first track has 1 MB, the
// second 2 MB and so on; their artist is "Artist", the title "Title of " and the name.
Lists listsOf(const QString &sketch)
{
    Lists lists;
    for (const QString &names : sketch.split(u" / "_s, Qt::SkipEmptyParts)) {
        MatchGroup group;
        group.id = static_cast<qint32>(lists.groups.size()) + 1;
        for (const QString &starred : names.split(u' ')) {
            const auto index = static_cast<qint32>(lists.tracks.size());
            const QString name = starred.section(u'*', 0, 0);
            TrackInfo track;
            track.fileName = name + u".mp3"_s;
            track.path = u"/music/"_s + track.fileName;
            track.tags.artist = u"Artist"_s;
            track.tags.title = u"Title of "_s + name;
            track.size = mebibyte * (index + 1);
            group.members << index;
            if (starred != name)
                group.keep = index;
            else
                group.reclaimableBytes += track.size;
            lists.tracks << track;
        }
        lists.groups << group;
    }
    return lists;
}

// The rows of a model as such a sketch, with an exclamation mark at every ticked member.
QString sketchOf(const QAbstractItemModel &model)
{
    QStringList groups;
    for (int g = 0; g < model.rowCount(); ++g) {
        const QModelIndex group = model.index(g, 0);
        QStringList members;
        for (int m = 0; m < model.rowCount(group); ++m) {
            const QModelIndex member = model.index(m, 0, group);
            members << member.data().toString().section(u'.', 0, 0)
                    + (member.data(ResultsModel::KeeperRole).toBool() ? u"*"_s : QString())
                    + (member.data(Qt::CheckStateRole).toInt() == Qt::Checked ? u"!"_s : QString());
        }
        groups << members.join(u' ');
    }
    return groups.join(u" / "_s);
}

// What the totals must be, counted the slow way.
ResultsTotals countedTotals(const ResultsModel &model)
{
    ResultsTotals totals;
    totals.files = model.tracks().size();
    totals.groups = model.groups().size();
    for (int g = 0; g < model.groups().size(); ++g) {
        const MatchGroup &group = model.groups().at(g);
        totals.redundantCopies += group.members.size() - 1;
        for (int m = 0; m < group.members.size(); ++m) {
            const qint64 size = model.tracks().at(group.members.at(m)).size;
            totals.redundantBytes += group.members.at(m) != group.keep ? size : 0;
            totals.tickedFiles += model.isTicked(g, m) ? 1 : 0;
            totals.tickedBytes += model.isTicked(g, m) ? size : 0;
        }
    }
    return totals;
}

void fill(ResultsModel &model, const QString &sketch)
{
    const Lists lists = listsOf(sketch);
    model.setResults(lists.tracks, lists.groups);
}

QModelIndex cell(const QAbstractItemModel &model, int group, int member, int column)
{
    return model.index(member, column, model.index(group, 0));
}

} // namespace

class TestResults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ticksFollowTheCommands()
    {
        ResultsModel model;
        const QAbstractItemModelTester tester(&model);
        fill(model, u"a* b c / d e*"_s);
        const QSignalSpy changes(&model, &ResultsModel::dataChanged);
        model.invertTicks();
        QCOMPARE(sketchOf(model), u"a*! b c / d e*!"_s);
        model.tickDuplicates();
        QCOMPARE(sketchOf(model), u"a* b! c! / d! e*"_s);
        model.clearTicks();
        QCOMPARE(sketchOf(model), u"a* b c / d e*"_s);
        QCOMPARE(changes.size(), 3); // one for each command, however many rows change
        model.setKeeper(1, 3);
        QCOMPARE(sketchOf(model), u"a* b c / d* e"_s); // there was no tick to go over

        for (int time = 0; time < 2; ++time)
            QVERIFY(model.setData(cell(model, 0, 0, 0), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(model.totals().tickedBytes, mebibyte);
        QVERIFY(!model.setData(cell(model, 0, 0, 0), u"x"_s, Qt::EditRole));
        QVERIFY(!model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    }

    void keepersAndMembersChange()
    {
        const auto after = [](const QString &sketch, const std::function<void(ResultsModel &)> &change) {
            ResultsModel model;
            const QAbstractItemModelTester tester(&model);
            fill(model, sketch);
            change(model);
            const qint64 reclaimable = model.groups().isEmpty() ? 0 : model.groups().at(0).reclaimableBytes;
            return sketchOf(model) + u" %1 MB"_s.arg(reclaimable / mebibyte);
        };
        const auto keeping = [](qint32 keep) { return [=](ResultsModel &model) { model.setKeeper(0, keep); }; };
        QCOMPARE(after(u"a* b c"_s, keeping(1)), u"a! b* c! 4 MB"_s);
        QCOMPARE(after(u"a* b"_s, keeping(9)), u"a* b! 2 MB"_s);
        QCOMPARE(after(u"a b"_s, keeping(1)), u"a! b* 1 MB"_s);
        const auto without = [](const QSet<qint32> &removed) {
            return [=](ResultsModel &model) {
                model.setData(cell(model, 0, 2, 0), Qt::Unchecked, Qt::CheckStateRole);
                model.removeMembers(removed);
            };
        };
        QCOMPARE(after(u"a* b c / d e*"_s, without({ 3 })), u"a* b! c 5 MB"_s);
        QCOMPARE(after(u"a* b c / d e*"_s, without({ 1 })), u"a* c / d! e* 3 MB"_s);
        // The unticked copy is kept from now on.
        QCOMPARE(after(u"a* b c / d e*"_s, without({ 0 })), u"b! c* / d! e* 2 MB"_s);
        // Where there is none, one is unticked: it would be removed next time.
        QCOMPARE(after(u"a* b c"_s, [](ResultsModel &model) { model.removeMembers({ 0 }); }), u"b* c! 3 MB"_s);
        QCOMPARE(after(u"a* b c / d e*"_s, without({ 0, 1, 2, 3, 4 })), u" 0 MB"_s);
    }

    void rowsShowGroupsAndTracks()
    {
        Lists lists = listsOf(u"a* b"_s);
        lists.groups[0].id = 17;
        lists.groups[0].matchType = MatchType::SameAudio;
        TrackInfo &track = lists.tracks[1];
        track.path = u"/music/new/b.mp3"_s;
        track.tags.artist.clear();
        track.tags.title.clear();
        track.stream.durationMs = 3723000;
        track.stream.bitrateKbps = 320;
        track.stream.channels = 2;
        track.mtime = QDateTime(QDate(2026, 3, 7), QTime(15, 4));
        track.error = u"cut short"_s;
        ResultsModel model;
        model.setResults(lists.tracks, lists.groups);
        QStringList row;
        for (int column = 0; column < model.columnCount(); ++column)
            row << cell(model, 0, 1, column).data().toString();
        QCOMPARE(row.join(u'|'),
                 u"b.mp3|duplicate|(unknown artist)|b|1:02:03|320 kbps, stereo|2.00 MB|7 Mar 2026 3:04 pm|"_s
                     + QDir::toNativeSeparators(QFileInfo(track.path).absolutePath())); // with a drive on Windows

        QCOMPARE(cell(model, 0, 1, 0).data(Qt::ToolTipRole), u"/music/new/b.mp3\n\nNote: cut short"_s);
        QCOMPARE(cell(model, 0, 1, 0).data(ResultsModel::TrackRole), 1);
        QCOMPARE(cell(model, 0, 0, ResultsModel::MatchColumn).data(), u"KEEP"_s);

        const QModelIndex group = model.index(0, 0);
        QCOMPARE(group.data(), u"Group 17 - 2 copies - 2.00 MB reclaimable"_s);
        QVERIFY(!group.flags().testAnyFlags(Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
        QCOMPARE(group.siblingAtColumn(ResultsModel::MatchColumn).data(), matchTypeLabel(MatchType::SameAudio));
    }

    void filterFinds_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("blanks are nothing") << u"  \t"_s << u"a* b! / c! d* / e* f!"_s;
        QTest::newRow("a title in other letter case") << u"  TITLE OF B "_s << u"b!"_s;
        QTest::newRow("an artist beyond ASCII") << u"bJÖRK"_s << u"c!"_s;
        QTest::newRow("a folder as Windows writes it") << u"Archive\\1998"_s << u"f!"_s;
        QTest::newRow("a backslash in a title") << u"left\\right"_s << u"a*"_s;
        QTest::newRow("members of several groups") << u"artist"_s << u"a* b! / d* / e* f!"_s;
        QTest::newRow("no expression, just text") << u"t.tle"_s << QString();
        QTest::newRow("not from one text into the next") << u"artist title"_s << QString();
    }

    void filterFinds()
    {
        QFETCH(const QString, typed);
        Lists lists = listsOf(u"a* b / c d* / e* f"_s);
        lists.tracks[0].tags.title = u"Left\\Right"_s;
        lists.tracks[2].tags.artist = u"Björk"_s;
        lists.tracks[5].path = u"/Archive/1998/f.mp3"_s;
        ResultsModel model;
        ResultsFilter filter(&model);
        const QAbstractItemModelTester tester(&filter);
        filter.setText(typed);
        model.setResults(lists.tracks, lists.groups); // a result that arrives under a filter is filtered at once
        QTEST(sketchOf(filter), "shown");
    }

    void filterPassesChangesOn()
    {
        ResultsModel model;
        ResultsFilter filter(&model);
        fill(model, u"ax* b cx / d* e"_s);
        filter.setText(u"x"_s);
        QSignalSpy changes(&filter, &ResultsFilter::dataChanged);
        model.setData(cell(model, 0, 1, 0), Qt::Unchecked, Qt::CheckStateRole); // a hidden member
        QCOMPARE(changes.size(), 0);
        model.setData(cell(model, 0, 2, 0), Qt::Unchecked, Qt::CheckStateRole);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.takeFirst().first().toModelIndex(), cell(filter, 0, 1, 0));
        model.invertTicks(); // the last group is hidden
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(1).toModelIndex(), filter.index(0, 0));
        QVERIFY(filter.setData(cell(filter, 0, 0, 0), Qt::Unchecked, Qt::CheckStateRole));
        QCOMPARE(sketchOf(model), u"ax* b! cx! / d*! e"_s);
    }

    void totalsHoldThroughAnyCourse()
    {
        QRandomGenerator random(20261121);
        QString sketch;
        for (int g = 0; g < 40; ++g)
            sketch += u"p%1* q%1 r%1 / "_s.arg(g);
        ResultsModel model;
        ResultsFilter filter(&model);
        const QAbstractItemModelTester modelTester(&model);
        const QAbstractItemModelTester filterTester(&filter);
        fill(model, sketch);
        for (int step = 0; step < 300 && model.rowCount() > 0; ++step) {
            const int group = random.bounded(model.rowCount());
            const int member = random.bounded(model.rowCount(model.index(group, 0)));
            const qint32 track = model.groups().at(group).members.at(member);
            const int choice = random.bounded(24);
            if (choice < 3)
                choice == 0 ? model.invertTicks() : choice == 1 ? model.tickDuplicates() : model.clearTicks();
            else if (choice < 7)
                model.setKeeper(group, track);
            else if (choice < 10)
                model.removeMembers({ track, track + 1 });
            else if (choice < 14)
                filter.setText(QString::number(random.bounded(40)));
            else
                model.setData(cell(model, group, member, 0), random.bounded(2) * 2, Qt::CheckStateRole);
            QCOMPARE(model.totals(), countedTotals(model));
            QCOMPARE(filter.hiddenTicks(), model.totals().tickedFiles - sketchOf(filter).count(u'!'));
        }
    }

    void remainingTimeFollowsTheLastHalfMinute()
    {
        ProgressEstimate estimate;
        estimate.add(0, 1000, 5000);
        estimate.add(100, 1000, 6999);
        QVERIFY(estimate.text().isEmpty());
        estimate.add(200, 1000, 7000);
        QCOMPARE(estimate.text(), u"100 per second, less than a minute left"_s);
        for (int second = 1; second <= 40; ++second)
            estimate.add(200 + second, 1000, 7000 + second * 1000);
        QCOMPARE(estimate.text(), u"1.0 per second, about 13 minute(s) left"_s); // what was fast before has passed

        estimate.add(0, 100000, 50000); // other work, which at first does not advance
        estimate.add(0, 100000, 60000);
        QVERIFY(estimate.text().isEmpty());
        estimate.add(10, 100000, 70000);
        QCOMPARE(estimate.text(), u"0.5 per second, about 55 h 33 min left"_s);
        estimate.add(1, 19, 80000);
        estimate.add(2, 19, 90000);
        QVERIFY2(estimate.text().isEmpty(), "too few steps to tell");
    }
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
