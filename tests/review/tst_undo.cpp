// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "review.h"

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

// All that is decided, to compare; totals included.
struct Snapshot {
    QList<GroupDecision> decisions;
    ReviewTotals totals;

    explicit Snapshot(const Review &review)
        : totals(review.totals())
    {
        for (int group = 0; group < review.groups().size(); ++group)
            decisions << review.decision(group);
    }
    bool operator==(const Snapshot &) const = default;
};

void decide(Review &review, QRandomGenerator &random)
{
    const int group = random.bounded(static_cast<int>(review.groups().size()));
    const int member = random.bounded(static_cast<int>(review.groups().at(group).members.size()));
    switch (random.bounded(9)) {
    case 0:
        return review.invertTicks();
    case 1:
        return review.clearTicks();
    case 2:
        return review.tickDuplicates();
    case 3:
        return review.setState({ group, 0 }, GroupState(random.bounded(3)));
    case 4:
        return review.keepBetter(group, review.groups().at(group).members.at(member));
    case 5:
    case 6:
        return review.setKeeper(group, review.groups().at(group).members.at(member));
    default:
        return review.setTicked({ { group, member }, { 0, 1 } }, random.bounded(2) == 1);
    }
}

QString manyGroups()
{
    QString sketch;
    for (int group = 0; group < 12; ++group)
        sketch += u"p%1* q%1 r%1 / "_s.arg(group);
    return sketch;
}

GroupCheck checkAgainst(qint32 member)
{
    GroupCheck check;
    check.measures = { { 0, {} }, { 1, {} }, { 2, {} } };
    check.pairs = { { 0, member, true, 0, { SoundDifference { SoundDifference::Kind::OtherEnding } } } };
    return check;
}

} // namespace

Q_DECLARE_METATYPE(Change)

class TestUndo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyStepGoesBackAndForth()
    {
        QRandomGenerator random(20261123);
        for (int course = 0; course < 30; ++course) {
            Review review;
            fill(review, manyGroups());
            QList<Snapshot> snapshots { Snapshot(review) };
            for (int step = 0; step < 60; ++step) {
                decide(review, random);
                if (Snapshot(review) != snapshots.last())
                    snapshots << Snapshot(review);
            }
            for (qsizetype at = snapshots.size() - 1; at > 0; --at) {
                QCOMPARE(Snapshot(review), snapshots.at(at));
                review.undo();
            }
            QVERIFY(!review.canUndo());
            for (const Snapshot &snapshot : std::as_const(snapshots)) {
                QCOMPARE(Snapshot(review), snapshot);
                review.redo();
            }
            QVERIFY(!review.canRedo());
        }
    }

    void aRemovalInBetweenLeavesWhatIsSafe()
    {
        QRandomGenerator random(7);
        for (int course = 0; course < 100; ++course) {
            Review review;
            fill(review, manyGroups());
            for (int step = 0; step < 20; ++step)
                decide(review, random);
            review.removeMembers({ random.bounded(36), random.bounded(36), 0, 1 });
            const QSet<qint32> gone { 5, 8 };
            review.setFileStates({ { 5, FileState::Vanished }, { 8, FileState::Changed } });
            for (int step = 0; step < 40; ++step) {
                random.bounded(3) > 0 ? review.undo() : review.redo();
                for (int group = 0; group < review.groups().size(); ++group) {
                    const GroupDecision decision = review.decision(group);
                    QVERIFY(review.groups().at(group).members.contains(decision.keep));
                    for (qsizetype member = 0; member < decision.ticked.size(); ++member)
                        QVERIFY(!decision.ticked.at(member)
                                || (decision.state != GroupState::NotDuplicates && !gone.contains(decision.keep)
                                    && !gone.contains(review.groups().at(group).members.at(member))));
                }
            }
        }
    }

    void undoTicksOnlyWhatIsSafe_data()
    {
        const Rows<Change, QString> row("meanwhile", "after");
        row(
            "nothing", [](Review &) {}, u"a* b! c! / d! e*"_s);
        row(
            "a check speaks against one", [](Review &review) { review.setCheck(0, checkAgainst(1)); },
            u"a* b c! / d! e*"_s);
        row(
            "one vanished",
            [](Review &review) {
                review.setFileStates({ { 2, FileState::Vanished } });
            },
            u"a* b! c / d! e*"_s);
        row(
            "the kept copy vanished",
            [](Review &review) {
                review.setFileStates({ { 0, FileState::Vanished } });
            },
            u"a* b c / d! e*"_s);
        row(
            "one is no duplicate of the kept copy",
            [](Review &review) {
                review.setApart({ { 0, 1 } });
            },
            u"a* b c! / d! e*"_s);
        row(
            "one changed and came back",
            [](Review &review) {
                review.setFileStates({ { 3, FileState::Changed } });
                review.setFileStates({ { 3, FileState::AsScanned } });
            },
            u"a* b! c! / d! e*"_s);
        row(
            "the kept copy went", [](Review &review) { review.removeMembers({ 0 }); }, u"b* c! / d! e*"_s);
        row(
            "a group went",
            [](Review &review) {
                review.removeMembers({ 0, 1, 2 });
            },
            u"d! e*"_s);
    }

    void undoTicksOnlyWhatIsSafe()
    {
        QFETCH(const Change, meanwhile);
        Review review;
        fill(review, u"a* b c / d e*"_s);
        review.clearTicks();
        meanwhile(review);
        review.undo();
        QTEST(sketchOf(review), "after");
        QVERIFY(!review.canUndo());
    }

    // The summary must say so, and nobody may tick it.
    void whatIsSetAsideDoesNotCount()
    {
        Review review;
        fill(review, u"a* b c / d e*"_s);
        QSignalSpy refused(&review, &Review::tickRefused);
        review.setState({ 0 }, GroupState::NotDuplicates);
        QCOMPARE(sketchOf(review), u"a* b c / d! e*"_s);
        review.setTicked(0, 1, true);
        QCOMPARE(refused.size(), 1);
        review.invertTicks();
        QCOMPARE(sketchOf(review), u"a* b c / d e*!"_s);
        QCOMPARE(review.totals(),
                 (ReviewTotals { .files = 5,
                                 .groups = 1,
                                 .redundantCopies = 1,
                                 .redundantBytes = 4 * mebibyte,
                                 .tickedFiles = 1,
                                 .tickedBytes = 5 * mebibyte,
                                 .setAside = 1 }));
        QCOMPARE(review.groupsOfDuplicates().size(), 1);
        review.setState({ 0 }, GroupState::Undecided);
        QCOMPARE(sketchOf(review), u"a* b c / d e*!"_s);
    }

    void restoringTicksNothingElse_data()
    {
        const Rows<GroupDecision, QString> row("stored", "taken");
        row("all", { GroupState::Done, 1, true, { true, false, true }, { true, false, false } }, u"a! b* c!"_s);
        row("set aside, with ticks", { GroupState::NotDuplicates, 0, false, { 0, 1, 1 }, { 0, 0, 0 } }, u"a* b c"_s);
        row("too few ticks", { GroupState::Done, 0, false, { false, true }, { false, false } }, u"a* b c"_s);
        row("a kept copy of another group", { GroupState::Done, 7, true, { 0, 1, 0 }, { 0, 0, 0 } }, u"a* b! c"_s);
    }

    void restoringTicksNothingElse()
    {
        QFETCH(const GroupDecision, stored);
        const Lists lists = listsOf(u"a* b c / d e*"_s);
        ReviewRecord record { {}, {}, 0, 9, lists.tracks, lists.groups, { stored } };
        Review review;
        review.restore(record);
        QTEST(sketchOf(review).section(u" / "_s, 0, 0), "taken");
        QCOMPARE(sketchOf(review).section(u" / "_s, 1), u"d e*"_s); // nothing is stored of it
        QCOMPARE(review.state(0), stored.state);
        QCOMPARE(review.totals().files, 9);
        record.decisions = { review.decision(0), review.decision(1) };
        Review again;
        again.restore(record);
        QCOMPARE(Snapshot(again), Snapshot(review));
    }
};

QTEST_GUILESS_MAIN(TestUndo)
#include "tst_undo.moc"
