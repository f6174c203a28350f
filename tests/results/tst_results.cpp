// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "problemsmodel.h"
#include "resultsheader.h"
#include "resultsmodel.h"
#include "resultsview.h"

#include "reviewsketch.h"

#include <QAbstractItemModelTester>
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
    void rowsFollowTheReviewUnderAFilter()
    {
        Review review;
        ResultsModel model(review);
        const QAbstractItemModelTester tester(&model);
        model.setFilter(u" X "_s);
        fill(review, u"ax* b cx / d* e / f* gx"_s); // a result that arrives under a filter is filtered at once
        QCOMPARE(rowsOf(model), u"ax* cx! / gx!"_s);
        QCOMPARE(model.rows().hiddenTicks(), 2);
        QVERIFY(!model.groupIndex(1).isValid() && !model.memberIndex(0, 1).isValid());
        QCOMPARE(model.memberIndex(2, 1), cell(model, 1, 0, 0));

        QSignalSpy changes(&model, &ResultsModel::dataChanged);
        review.setTicked(0, 1, false); // a hidden member, which may have been the last of its group to tick
        review.setKeeper(1, 4); // a hidden group
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.takeFirst().first().toModelIndex(), model.index(0, 0));
        review.setTicked(0, 2, false);
        QCOMPARE(changes.takeFirst().first().toModelIndex(), cell(model, 0, 1, 0));
        changes.clear();
        review.invertTicks();
        QCOMPARE(changes.size(), 1); // one for each command, however many rows change
        QCOMPARE(changes.takeFirst().at(1).toModelIndex(), model.index(1, 0));
        review.setKeeper(2, 6);
        QCOMPARE(changes.takeLast().at(1).toModelIndex(), cell(model, 1, 0, ResultsModel::ColumnCount - 1));

        review.setState({ 2 }, GroupState::NotDuplicates);
        QCOMPARE(rowsOf(model), u"ax*! cx!"_s);
        review.undo();
        QCOMPARE(rowsOf(model), u"ax*! cx! / gx*"_s);
        review.setState({ 2 }, GroupState::Done);
        QVERIFY(model.index(1, 0).data().toString().endsWith(u"- done"_s));

        review.removeMembers({ 0 });
        QCOMPARE(rowsOf(model), u"cx! / gx*"_s);
        model.setFilter(QString());
        QCOMPARE(rowsOf(model), sketchOf(review));
        review.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void rowsMoveAndGoWithoutAReset()
    {
        Review review;
        fill(review, u"b* x / d* y z / a* w / c* v"_s);
        ResultsModel model(review);
        const QAbstractItemModelTester tester(&model);
        const QSignalSpy resets(&model, &ResultsModel::modelReset);
        const QPersistentModelIndex group = model.groupIndex(3);
        const QPersistentModelIndex copy = model.memberIndex(3, 1);
        model.sort(ResultsModel::FileColumn, Qt::AscendingOrder);
        QCOMPARE(rowsOf(model), u"a* w! / b* x! / c* v! / d* y! z!"_s);
        QVERIFY(group.row() == 2 && copy == model.memberIndex(3, 1) && copy.parent() == group);
        review.setState({ 0, 1 }, GroupState::NotDuplicates);
        QCOMPARE(rowsOf(model), u"a* w! / c* v!"_s);
        QVERIFY(group.row() == 1 && copy.data() == u"v.mp3"_s);
        model.setFilter(u"title of"_s);
        model.sort(ResultsModel::SizeColumn, Qt::DescendingOrder);
        review.undo();
        QCOMPARE(rowsOf(model), u"d* y! z! / c* v! / a* w! / b* x!"_s);
        model.setOrder({ GroupKey::Copies, true });
        review.removeMembers({ 4 });
        QCOMPARE(rowsOf(model), u"b* x! / d* y! / a* w! / c* v!"_s); // equal ones as the scan has them
        review.setState({ 1 }, GroupState::NotDuplicates);
        model.sort(-1, Qt::AscendingOrder);
        QCOMPARE(rowsOf(model), u"b* x! / a* w! / c* v!"_s);
        QCOMPARE(resets.size(), 2); // the filter and the removal
    }

    void columnsAreAsTheyWereLeft()
    {
        Review review;
        ResultsModel model(review);
        const auto arranged = [&model](const QStringList &columns) {
            ResultsView view;
            view.setModel(&model);
            view.headings()->arrange(columns);
            return view.headings()->arrangement().join(u' ');
        };
        const QString usual = u"file:0 match:0 artist:0 title:0 duration:0 quality:0 size:0 modified:0 -format:0 "
                              "-loudness:0 -truePeak:0 -bandwidth:0 -check:0 -relation:0 folder:0"_s;
        QCOMPARE(arranged({}), usual);
        QCOMPARE(arranged({ u"check"_s }), QString(usual).replace(u"-check"_s, u"check"_s)); // of an earlier version
        QCOMPARE(arranged({ u"-file:0"_s, u"strange:5"_s, u":"_s, u"-"_s }), usual);
        const QString own = arranged({ u"folder:300"_s, u"-title:0"_s, u"format:70"_s });
        QVERIFY2(own.contains(u" folder:300 -title:0 format:70 match:"_s), qPrintable(own));
        QCOMPARE(arranged(own.split(u' ')), own);
        ResultsView view;
        view.setModel(&model);
        view.headings()->arrange(own.split(u' '));
        view.headings()->arrangeAsBefore();
        QCOMPARE(view.headings()->arrangement().join(u' '), usual);
    }

    void keysTickWhatIsSelected()
    {
        Review review;
        fill(review, u"a* b / c* d e / f* g"_s);
        ResultsModel model(review);
        ResultsView view;
        view.setModel(&model);
        const auto press = [&](const QList<QModelIndex> &selected, const QModelIndex &current) {
            view.setCurrentIndex(current); // selects it alone, whatever was selected
            for (const QModelIndex &row : selected)
                view.selectionModel()->select(row, QItemSelectionModel::Select | QItemSelectionModel::Rows);
            QTest::keyClick(&view, Qt::Key_Space);
            return sketchOf(review);
        };
        const QModelIndex group = model.groupIndex(0);
        QCOMPARE(press({}, group), u"a* b! / c* d! e! / f* g!"_s);
        QCOMPARE(press({}, model.memberIndex(0, 1)), u"a* b / c* d! e! / f* g!"_s);
        // All become what the current one does.
        QCOMPARE(press({ model.memberIndex(2, 1), group }, model.memberIndex(1, 2)), u"a* b / c* d! e / f* g"_s);
        QCOMPARE(press({ model.memberIndex(0, 1), model.memberIndex(1, 1) }, group), u"a* b! / c* d! e / f* g"_s);
        review.undo();
        QCOMPARE(sketchOf(review), u"a* b / c* d! e / f* g"_s);
        view.selectAll();
        QCOMPARE(view.rowsAtHand().size(), 10);
        view.setCurrentIndex(model.memberIndex(1, 1));
        view.selectionModel()->clearSelection();
        QCOMPARE(view.rowsAtHand(), QModelIndexList { model.memberIndex(1, 1) });
        QCOMPARE(model.memberIndex(1, 1).data(Qt::AccessibleTextRole).toString(),
                 u"d.mp3, ticked, %1"_s.arg(QDir::toNativeSeparators(u"/music"_s)));
    }

    void whatWouldTakeMinutesIsNotSelected()
    {
        Review review;
        QString sketch;
        for (int group = 0; group < 3000; ++group)
            sketch += u"a* b / "_s;
        fill(review, sketch);
        ResultsModel model(review);
        ResultsView view;
        view.setModel(&model);
        view.resize(800, 600);
        const QSignalSpy refused(&view, &ResultsView::selectionRefused);
        view.setCurrentIndex(model.memberIndex(0, 0));
        view.selectAll();
        QTest::keyClick(&view, Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(refused.size(), 2);
        QVERIFY(view.selectionModel()->selection().size() <= 1);
    }

    void relationsFollowTheKeptCopy()
    {
        Lists lists = listsOf(u"a* b c"_s);
        lists.tracks[0].fullHash = lists.tracks[1].fullHash = u"1"_s;
        Review review;
        ResultsModel model(review);
        review.setResults(lists.tracks, lists.groups);
        const auto relation = [&](int member) { return cell(model, 0, member, ResultsModel::RelationColumn).data(); };
        QCOMPARE(relation(1), u"identical to the kept copy"_s);
        review.setKeeper(0, 2);
        QCOMPARE(relation(1), QString());
        review.undo();
        QCOMPARE(relation(1), u"identical to the kept copy"_s);
    }

    void brokenCopiesAreMarked()
    {
        Lists lists = listsOf(u"a* b c"_s);
        lists.tracks[1].error = u"cut off"_s;
        lists.groups[0].check.measures[2].decodingErrors = 2;
        Review review;
        ResultsModel model(review);
        review.setResults(lists.tracks, lists.groups);
        for (const auto &[member, words] : { std::pair(0, u"a.mp3, kept"_s),
                                             { 1, u"b.mp3, problem: cut off"_s },
                                             { 2, u"c.mp3, problem: 2 decoding error(s)"_s } }) {
            QCOMPARE(cell(model, 0, member, 0).data(ResultsModel::DamageRole).toBool(), member > 0);
            const QString text = cell(model, 0, member, 0).data(Qt::AccessibleTextRole).toString();
            QVERIFY2(text.startsWith(words), qPrintable(text));
        }
        QVERIFY(cell(model, 0, 2, 0).data(Qt::ToolTipRole).toString().contains(u"2 decoding error(s)"_s));
    }

    void problemsComeOnceForEachAttempt()
    {
        ProblemsModel model;
        const QAbstractItemModelTester tester(&model);
        QSignalSpy resets(&model, &ProblemsModel::modelReset);
        const auto none = [](const FileProblem &) { return false; };
        const auto rows = [&model] {
            QStringList texts;
            for (int row = 0; row < model.rowCount(); ++row)
                texts << model.index(row, 0).data().toString()
                        + model.index(row, ProblemsModel::ReasonColumn).data().toString();
            return texts.join(u' ');
        };
        model.renew(none, { { u"/m/a"_s, Attempt::Scan, u"1"_s }, { u"/m/a"_s, Attempt::Remove, u"2"_s } });
        model.renew(none, { { u"/m/b"_s, Attempt::Scan, u"3"_s } });
        QCOMPARE(rows(), u"a1 a2 b3"_s);
        QVERIFY(resets.isEmpty()); // nobody who is in the list loses their place
        model.renew(none, { { u"/m/a"_s, Attempt::Scan, u"4"_s }, { u"/m/a"_s, Attempt::Scan, u"5"_s } });
        QCOMPARE(rows(), u"a2 b3 a5"_s);
        model.renew([](const FileProblem &each) { return each.attempt == Attempt::Scan; }, {});
        QCOMPARE(rows(), u"a2"_s);
    }
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
