// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsmodel.h"

#include "displaytext.h"
#include "reviewsketch.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

// The rows of the model as a sketch, with an exclamation mark at every ticked member.
QString rowsOf(const ResultsModel &model)
{
    QStringList groups;
    for (int g = 0; g < model.rowCount(); ++g) {
        QStringList members;
        for (int m = 0; m < model.rowCount(model.index(g, 0)); ++m) {
            const QModelIndex member = model.index(m, 0, model.index(g, 0));
            members << member.data().toString().section(u'.', 0, 0)
                    + u"*"_s.left(member.data(ResultsModel::KeeperRole).toBool())
                    + u"!"_s.left(member.data(Qt::CheckStateRole) == Qt::Checked);
        }
        groups << members.join(u' ');
    }
    return groups.join(u" / "_s);
}

QModelIndex cell(const ResultsModel &model, int group, int member, int column)
{
    return model.index(member, column, model.index(group, 0));
}

} // namespace

class TestResults : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
        Review review;
        const ResultsModel model(review);
        review.setResults(lists.tracks, lists.groups);
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

    void rowsFollowTheReviewUnderAFilter()
    {
        Review review;
        ResultsModel model(review);
        const QAbstractItemModelTester tester(&model);
        model.setFilter(u" X "_s);
        fill(review, u"ax* b cx / d* e / f* gx"_s); // a result that arrives under a filter is filtered at once
        QCOMPARE(rowsOf(model), u"ax* cx! / gx!"_s);
        QCOMPARE(model.hiddenTicks(), 2);
        QVERIFY(!model.groupIndex(1).isValid() && !model.memberIndex(0, 1).isValid());
        QCOMPARE(model.memberIndex(2, 1), cell(model, 1, 0, 0));

        QSignalSpy changes(&model, &ResultsModel::dataChanged);
        review.setTicked(0, 1, false); // a hidden member
        review.setKeeper(1, 4); // a hidden group
        QCOMPARE(changes.size(), 0);
        review.setTicked(0, 2, false);
        QCOMPARE(changes.takeFirst().first().toModelIndex(), cell(model, 0, 1, 0));
        review.invertTicks();
        QCOMPARE(changes.size(), 1); // one for each command, however many rows change
        QCOMPARE(changes.takeFirst().at(1).toModelIndex(), model.index(1, 0));
        review.setKeeper(2, 6);
        QCOMPARE(changes.takeLast().at(1).toModelIndex(), cell(model, 1, 0, ResultsModel::ColumnCount - 1));

        review.removeMembers({ 0 });
        QCOMPARE(rowsOf(model), u"cx! / gx*"_s);
        model.setFilter(QString());
        QCOMPARE(rowsOf(model), sketchOf(review));
        review.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void loadedCopiesCarryTheirDecks()
    {
        Review review;
        ResultsModel model(review);
        fill(review, u"a* b / c* d"_s);
        QSignalSpy changes(&model, &ResultsModel::dataChanged);
        const auto marks = [&] {
            QStringList rows;
            for (const int track : { 0, 1, 2, 3 }) {
                const QModelIndex file = cell(model, track / 2, track % 2, ResultsModel::FileColumn);
                rows << file.data(ResultsModel::DecksRole).toString() + file.data(Qt::AccessibleTextRole).toString();
            }
            return rows.join(u'|');
        };
        model.setLoaded({ review.tracks().at(3).path, review.tracks().at(0).path });
        QCOMPARE(changes.size(), 1);
        QCOMPARE(marks(), u"Ba.mp3, in deck B|||Ad.mp3, in deck A"_s);
        model.setLoaded({ review.tracks().at(1).path, review.tracks().at(1).path });
        QCOMPARE(marks(), u"|ABb.mp3, in deck AB||"_s);
        model.setLoaded({});
        QCOMPARE(marks(), u"|||"_s);
    }

    void ticksAreAllThatIsEdited()
    {
        Review review;
        ResultsModel model(review);
        fill(review, u"a* b / cx* d"_s);
        model.setFilter(u"cx"_s);
        QVERIFY(model.setData(cell(model, 0, 0, 0), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(sketchOf(review), u"a* b! / cx*! d!"_s);
        QVERIFY(!model.setData(cell(model, 0, 0, 0), u"x"_s, Qt::EditRole));
        QVERIFY(!model.setData(cell(model, 0, 0, 1), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(!model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    }
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
