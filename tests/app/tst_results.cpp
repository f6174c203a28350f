// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matchcolour.h"
#include "resultsfilter.h"
#include "resultsmodel.h"
#include "searchtext.h"
#include "summarytext.h"

#include <QAbstractItemModelTester>
#include <QGuiApplication>
#include <QPalette>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1 << 20;

using TestMode = QAbstractItemModelTester::FailureReportingMode;

struct Lists {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

// Groups from a sketch such as "a* b / c d*": names of tracks, a star at the keeper. The first track has 1 MB, the
// second 2 MB and so on; their artist is "Artist", the title "Title of " and the name.
Lists listsOf(const QString &sketch)
{
    Lists lists;
    const QStringList groups = sketch.split(u" / "_s, Qt::SkipEmptyParts);
    for (const QString &names : groups) {
        MatchGroup group;
        group.id = static_cast<qint32>(lists.groups.size()) + 1;
        const QStringList members = names.split(u' ');
        for (QString name : members) {
            const auto index = static_cast<qint32>(lists.tracks.size());
            if (name.endsWith(u'*')) {
                group.keep = index;
                name.chop(1);
            }
            TrackInfo track;
            track.fileName = name + u".mp3"_s;
            track.path = u"/music/"_s + track.fileName;
            track.artist = u"Artist"_s;
            track.title = u"Title of "_s + name;
            track.size = mebibyte * (index + 1);
            group.members << index;
            if (index != group.keep)
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
        for (int m = 0; m < group.members.size(); ++m) {
            const qint64 size = model.tracks().at(group.members.at(m)).size;
            totals.redundantCopies += m > 0 ? 1 : 0;
            totals.redundantBytes += group.members.at(m) != group.keep ? size : 0;
            if (model.isTicked(g, m)) {
                ++totals.tickedFiles;
                totals.tickedBytes += size;
            }
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
        const QAbstractItemModelTester tester(&model, TestMode::QtTest);
        fill(model, u"a* b c / d e*"_s);
        QCOMPARE(sketchOf(model), u"a* b! c! / d! e*"_s);

        const QSignalSpy changes(&model, &ResultsModel::dataChanged);
        model.invertTicks();
        QCOMPARE(sketchOf(model), u"a*! b c / d e*!"_s);
        QCOMPARE(model.totals(), countedTotals(model));
        model.tickDuplicates();
        QCOMPARE(sketchOf(model), u"a* b! c! / d! e*"_s);
        model.clearTicks();
        QCOMPARE(sketchOf(model), u"a* b c / d e*"_s);
        QCOMPARE(model.totals(), countedTotals(model));
        QCOMPARE(changes.size(), 3); // one for each command, however many rows change

        QVERIFY(model.setData(cell(model, 0, 0, 0), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(model.setData(cell(model, 0, 0, 0), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(model.totals().tickedBytes, mebibyte);
        QVERIFY(!model.setData(cell(model, 0, 0, 0), u"x"_s, Qt::EditRole));
        QVERIFY(!model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    }

    void aGroupWithoutItsKeeperHasOnlyDuplicates()
    {
        Lists lists = listsOf(u"a* b"_s);
        lists.groups[0].keep = 7;
        ResultsModel model;
        model.setResults(lists.tracks, lists.groups);
        QCOMPARE(sketchOf(model), u"a! b!"_s);
        model.setKeeper(0, 1);
        QCOMPARE(sketchOf(model), u"a! b*"_s);
    }

    void aMemberWithoutItsTrackDoesNoHarm()
    {
        Lists lists = listsOf(u"a* b"_s);
        lists.groups[0].members << 99 << -1;
        ResultsModel model;
        const QAbstractItemModelTester tester(&model, TestMode::QtTest);
        model.setResults(lists.tracks, lists.groups);
        QCOMPARE(model.totals().tickedBytes, 2 * mebibyte);
        QCOMPARE(model.trackAt(cell(model, 0, 2, 0)), nullptr);
        QVERIFY(!cell(model, 0, 3, ResultsModel::TitleColumn).data().isValid());
        ResultsFilter filter(&model);
        filter.setText(u"title of a"_s);
        QCOMPARE(filter.rowCount(filter.index(0, 0)), 3);
    }

    void anotherKeeperTakesOver_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<bool>("tickDuplicates");
        QTest::addColumn<qint32>("keep");
        QTest::addColumn<QString>("after");
        QTest::addColumn<qint64>("reclaimable");
        QTest::newRow("the tick goes over to the former keeper")
            << u"a* b c"_s << true << 1 << u"a! b* c!"_s << 4 * mebibyte;
        QTest::newRow("without a tick nothing gets one") << u"a* b c"_s << false << 2 << u"a b c*"_s << 3 * mebibyte;
        QTest::newRow("the keeper it already was") << u"a* b"_s << true << 0 << u"a* b!"_s << 2 * mebibyte;
        QTest::newRow("a track of no member") << u"a* b"_s << true << 9 << u"a* b!"_s << 2 * mebibyte;
    }

    void anotherKeeperTakesOver()
    {
        QFETCH(const QString, before);
        QFETCH(const bool, tickDuplicates);
        QFETCH(const qint32, keep);
        ResultsModel model;
        fill(model, before);
        if (!tickDuplicates)
            model.clearTicks();
        model.setKeeper(0, keep);
        QTEST(sketchOf(model), "after");
        QTEST(model.groups().at(0).reclaimableBytes, "reclaimable");
        QCOMPARE(model.totals(), countedTotals(model));
    }

    void removedMembersLeave_data()
    {
        QTest::addColumn<QList<qint32>>("removed");
        QTest::addColumn<QString>("after");
        QTest::newRow("nothing") << QList<qint32> {} << u"a* b! c / d! e*"_s;
        QTest::newRow("a group of two goes with its duplicate") << QList<qint32> { 3 } << u"a* b! c"_s;
        QTest::newRow("a group of three loses one, ticks stay") << QList<qint32> { 1 } << u"a* c / d! e*"_s;
        QTest::newRow("everything") << QList<qint32> { 0, 1, 2, 3, 4 } << QString();
    }

    void removedMembersLeave()
    {
        QFETCH(const QList<qint32>, removed);
        ResultsModel model;
        const QAbstractItemModelTester tester(&model, TestMode::QtTest);
        fill(model, u"a* b c / d e*"_s);
        model.setData(cell(model, 0, 2, 0), Qt::Unchecked, Qt::CheckStateRole);
        model.removeMembers(QSet<qint32>(removed.cbegin(), removed.cend()));
        QTEST(sketchOf(model), "after");
        QCOMPARE(model.totals(), countedTotals(model));
    }

    void groupRowsNameTheirDuplicates()
    {
        Lists lists = listsOf(u"a* b / c* d / e* f / g* h / i* j"_s);
        for (int g = 0; g < lists.groups.size(); ++g)
            lists.groups[g].matchType = static_cast<MatchType>(g);
        lists.groups[1].id = 17;
        lists.groups[1].reclaimableBytes = 1536 * 1024;
        ResultsModel model;
        model.setResults(lists.tracks, lists.groups);
        QCOMPARE(model.index(1, 0).data(), u"Group 17 - 2 copies - 1.50 MB reclaimable"_s);
        QCOMPARE(model.index(1, 0).data(ResultsModel::GroupRole), 1);
        QVERIFY(model.index(1, 0).data(Qt::FontRole).value<QFont>().bold());
        QVERIFY(!model.flags(model.index(1, 0)).testAnyFlags(Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
        const QList<QColor> colours {
            { 20, 108, 46 }, { 28, 90, 138 }, { 179, 90, 15 }, { 161, 26, 26 }, { 161, 26, 26 }
        };
        for (int g = 0; g < colours.size(); ++g) {
            const QModelIndex label = model.index(g, ResultsModel::MatchColumn);
            QCOMPARE(label.data(), matchTypeLabel(static_cast<MatchType>(g)));
            QCOMPARE(label.data(Qt::ForegroundRole).value<QColor>(), colours.at(g));
        }
    }

    void memberRowsShowTheirTrack()
    {
        Lists lists = listsOf(u"a* b"_s);
        TrackInfo &track = lists.tracks[1];
        track.path = u"/music/new/b.mp3"_s;
        track.artist.clear();
        track.title.clear();
        track.durationMs = 3723000;
        track.bitrateKbps = 320;
        track.channels = 2;
        track.size = 5 * 1024 * 1024;
        track.mtime = QDateTime(QDate(2026, 3, 7), QTime(15, 4));
        track.error = u"cut short"_s;
        ResultsModel model;
        model.setResults(lists.tracks, lists.groups);

        const QStringList expected {
            u"b.mp3"_s,   u"duplicate"_s,          u"(unknown artist)"_s, u"b"_s, u"1:02:03"_s, u"320 kbps, stereo"_s,
            u"5.00 MB"_s, u"7 Mar 2026 3:04 pm"_s, u"/music/new"_s
        };
        QCOMPARE(model.columnCount(), expected.size());
        for (int column = 0; column < expected.size(); ++column)
            QCOMPARE(cell(model, 0, 1, column).data().toString(), expected.at(column));

        const QModelIndex file = cell(model, 0, 1, ResultsModel::FileColumn);
        QCOMPARE(file.data(Qt::ToolTipRole), u"/music/new/b.mp3\n\nNote: cut short"_s);
        QCOMPARE(file.data(ResultsModel::TrackRole), 1);
        QCOMPARE(file.data(ResultsModel::GroupRole), 0);
        QCOMPARE(file.data(ResultsModel::KeeperRole), false);
        QCOMPARE(cell(model, 0, 0, ResultsModel::FileColumn).data(Qt::ToolTipRole), u"/music/a.mp3"_s);

        const QModelIndex keeper = cell(model, 0, 0, ResultsModel::MatchColumn);
        QCOMPARE(keeper.data(), u"KEEP"_s);
        QVERIFY(keeper.data(Qt::FontRole).value<QFont>().bold());
        QCOMPARE(keeper.data(Qt::ForegroundRole).value<QColor>(), QColor(20, 108, 46));
    }

    // Relative luminance and contrast as WCAG 2 defines them; 4.5 is its limit for body text.
    void matchColoursStayReadableOnADarkPalette()
    {
        const auto luminance = [](const QColor &colour) {
            const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
            return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
        };
        QPalette dark;
        dark.setColor(QPalette::Base, QColor(45, 45, 45));
        dark.setColor(QPalette::Text, Qt::white);
        for (int type = 0; type <= 4; ++type) {
            const QColor colour = matchColour(static_cast<MatchType>(type), dark);
            const double contrast = (luminance(colour) + 0.05) / (luminance(QColor(45, 45, 45)) + 0.05);
            QVERIFY2(contrast >= 4.5, qPrintable(colour.name()));
        }
    }

    void filterFinds_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        const QString all = u"a* b! / c! d* / e* f!"_s;
        QTest::newRow("nothing typed shows all") << QString() << all;
        QTest::newRow("blanks are nothing") << u"  \t"_s << all;
        QTest::newRow("a title in other letter case") << u"TITLE OF B"_s << u"b!"_s;
        QTest::newRow("blanks around the text do not count") << u"  Title of b "_s << u"b!"_s;
        QTest::newRow("a file name") << u"d.mp3"_s << u"d*"_s;
        QTest::newRow("an artist beyond ASCII") << u"bJÖRK"_s << u"c!"_s;
        QTest::newRow("a folder") << u"/archive/1998"_s << u"f!"_s;
        QTest::newRow("a folder as Windows writes it") << u"Archive\\1998"_s << u"f!"_s;
        QTest::newRow("a backslash in a title") << u"left\\right"_s << u"a*"_s;
        QTest::newRow("members of several groups") << u"artist"_s << u"a* b! / d* / e* f!"_s;
        QTest::newRow("no expression, just text") << u"t.tle"_s << QString();
        QTest::newRow("not from one text into the next") << u"artist title"_s << QString();
        QTest::newRow("not from the file name into the folder") << u"b.mp3/music"_s << QString();
    }

    void filterFinds()
    {
        QFETCH(const QString, typed);
        Lists lists = listsOf(u"a* b / c d* / e* f"_s);
        lists.tracks[0].title = u"Left\\Right"_s;
        lists.tracks[2].artist = u"Björk"_s;
        lists.tracks[5].path = u"/Archive/1998/f.mp3"_s;
        ResultsModel model;
        ResultsFilter filter(&model);
        const QAbstractItemModelTester tester(&filter, TestMode::QtTest);
        filter.setText(typed);
        model.setResults(lists.tracks, lists.groups); // a result that arrives under a filter is filtered at once
        QTEST(sketchOf(filter), "shown");
        filter.setText({});
        filter.setText(typed);
        QTEST(sketchOf(filter), "shown");
    }

    void filterMapsBothWays()
    {
        ResultsModel model;
        ResultsFilter filter(&model);
        fill(model, u"ax* b cx / d* e / fx* gx"_s);
        filter.setText(u"x"_s);
        QCOMPARE(sketchOf(filter), u"ax* cx! / fx* gx!"_s);
        int mapped = 0;
        for (int g = 0; g < model.rowCount(); ++g) {
            for (int m = -1; m < model.rowCount(model.index(g, 0)); ++m) {
                const QModelIndex source = m < 0 ? model.index(g, 3) : cell(model, g, m, 3);
                const QModelIndex shown = filter.mapFromSource(source);
                mapped += shown.isValid() ? 1 : 0;
                if (shown.isValid())
                    QCOMPARE(filter.mapToSource(shown), source);
            }
        }
        QCOMPARE(mapped, 6); // two groups and four members
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
        filter.setText(u" X "_s); // the same filter
        QSignalSpy resets(&filter, &ResultsFilter::modelReset);
        filter.setText(u"x"_s);
        QCOMPARE(resets.size(), 0);
    }

    void totalsHoldThroughAnyCourse()
    {
        QRandomGenerator random(20261121);
        QString sketch;
        for (int g = 0; g < 40; ++g)
            sketch += u"p%1* q%1 r%1"_s.arg(g) + (g < 39 ? u" / "_s : QString());
        ResultsModel model;
        ResultsFilter filter(&model);
        const QAbstractItemModelTester modelTester(&model, TestMode::QtTest);
        const QAbstractItemModelTester filterTester(&filter, TestMode::QtTest);
        fill(model, sketch);
        for (int step = 0; step < 300 && model.rowCount() > 0; ++step) {
            const int group = random.bounded(model.rowCount());
            const int member = random.bounded(model.rowCount(model.index(group, 0)));
            const qint32 track = model.groups().at(group).members.at(member);
            switch (random.bounded(6)) {
            case 0:
                model.invertTicks();
                break;
            case 1:
                model.setKeeper(group, track);
                break;
            case 2:
                if (step % 5 == 0)
                    model.removeMembers({ track, track + 1 });
                break;
            case 3:
                filter.setText(QString::number(random.bounded(40)));
                break;
            default:
                model.setData(cell(model, group, member, 0), random.bounded(2) ? Qt::Checked : Qt::Unchecked,
                              Qt::CheckStateRole);
            }
            QCOMPARE(model.totals(), countedTotals(model));
        }
    }

    void summarySaysWhatWasFound_data()
    {
        QTest::addColumn<QString>("sketch");
        QTest::addColumn<QString>("summary");
        QTest::newRow("duplicates")
            << u"a* b / c d* e"_s
            << u"5 files scanned - 2 duplicate groups - 3 redundant copies (10.00 MB). Currently "
               "selected for removal: 3 file(s), 10.00 MB."_s;
        QTest::newRow("none") << QString() << u"Scanned 0 files - no duplicates found."_s;
    }

    void summarySaysWhatWasFound()
    {
        QFETCH(const QString, sketch);
        ResultsModel model;
        fill(model, sketch);
        QTEST(summaryText(model.totals()), "summary");
    }

    void elapsedTimesRead_data()
    {
        QTest::addColumn<qint64>("elapsedMs");
        QTest::addColumn<QString>("text");
        QTest::newRow("an instant") << 0LL << u"0.0 s"_s;
        QTest::newRow("seconds") << 4249LL << u"4.2 s"_s;
        QTest::newRow("a minute") << 60000LL << u"1:00"_s;
        QTest::newRow("hours") << 7384000LL << u"2:03:04"_s;
    }

    void elapsedTimesRead()
    {
        QFETCH(const qint64, elapsedMs);
        QTEST(elapsedText(elapsedMs), "text");
    }
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
