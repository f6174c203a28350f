// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultsmodel.h"

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
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
