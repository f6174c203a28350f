// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filelook.h"
#include "reviewkeeper.h"
#include "reviewstore.h"
#include "storeworker.h"

#include "reviewscript.h"
#include "rows.h"
#include "sandbox.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

using Act = std::function<void(Sandbox &, const QString &)>;

ReviewRecord stored(const QString &file)
{
    ReviewStore store(file);
    return store.open() ? store.load().value_or(ReviewRecord()) : ReviewRecord();
}

bool isSame(const Review &review, const ReviewRecord &record)
{
    if (review.groups().size() != record.groups.size())
        return false;
    for (int group = 0; group < review.groups().size(); ++group) {
        if (review.groups().at(group).members != record.groups.at(group).members
            || review.decision(group) != record.decisions.at(group))
            return false;
    }
    return true;
}

// The last step after which the review was as it is stored, counted from 0 for none; -1 if it never was.
int stepThatIsStored(quint32 seed, qsizetype steps, const ReviewRecord &record)
{
    Review review;
    ReviewScript script(seed);
    ReviewScript::begin(review);
    int found = isSame(review, record) ? 0 : -1;
    for (int step = 1; step <= steps; ++step) {
        script.step(review);
        if (isSame(review, record))
            found = step;
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(Act)

class TestReviewKeeper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aKillLosesTheLastSecondAtMost()
    {
        const int kills = qEnvironmentVariable("EPR_REVIEW_KILLS", u"12"_s).toInt();
        const quint32 firstSeed = 20261123;
        qint64 worst = 0;
        qsizetype allSteps = 0;
        for (quint32 seed = firstSeed; seed < firstSeed + static_cast<quint32>(kills); ++seed) {
            const QTemporaryDir dir;
            QProcess child;
            child.start(QCoreApplication::applicationDirPath() + u"/epr_review_driver"_s,
                        { dir.filePath(u"r.sqlite"_s), QString::number(seed) });
            QVERIFY(child.waitForReadyRead(30000));
            QTest::qSleep(QRandomGenerator(seed).bounded(1800));
            child.kill();
            const qint64 end = QDateTime::currentMSecsSinceEpoch();
            QVERIFY(child.waitForFinished());
            const QByteArrayList times = child.readAllStandardOutput().trimmed().split('\n');
            // A step that was done need not have been told.
            const int last = stepThatIsStored(seed, times.size() + 1, stored(dir.filePath(u"r.sqlite"_s)));
            QVERIFY2(last >= 0, qPrintable(u"seed %1"_s.arg(seed)));
            const qint64 lost = last < times.size() ? end - times.at(last).toLongLong() : 0;
            QVERIFY2(lost < 5000 && (last > 0 || lost < 1700), qPrintable(u"seed %1: %2 ms"_s.arg(seed).arg(lost)));
            worst = std::max(worst, lost);
            allSteps += times.size();
        }
        qInfo("%d kills, %lld steps, at most %lld ms lost", kills, static_cast<long long>(allSteps),
              static_cast<long long>(worst));
    }

    void whatCannotBeWrittenIsTriedAgain()
    {
        const QTemporaryDir dir;
        const QString file = dir.filePath(u"r.sqlite"_s);
        Review review;
        ReviewScript::begin(review);
        {
            ReviewKeeper keeper(review, file);
            QSignalSpy opened(&keeper, &ReviewKeeper::opened);
            QSignalSpy failed(&keeper, &ReviewKeeper::failed);
            keeper.open();
            QVERIFY(opened.wait());
            keeper.keep({});
            QTRY_VERIFY(QFileInfo(file + u"-wal"_s).size() > 10000);
            if (isUnix) {
                limitFileSize(QFileInfo(file + u"-wal"_s).size());
                review.setTicked(0, 1, false);
                QVERIFY(failed.wait());
                review.clearTicks();
                keeper.flush();
                QTest::qWait(300);
                QCOMPARE(failed.count(), 1);
                QVERIFY(!keeper.isKeeping());
                limitFileSize(-1);
            }
            review.setTicked(1, 2, true);
            QTRY_VERIFY(keeper.isKeeping());
            keeper.hold();
            review.invertTicks(); // is not for the file
            review.undo();
            keeper.keep({});
            review.setState({ 2 }, GroupState::Done);
            keeper.setPlace({ 3, 7 });
            keeper.close();
        }
        const ReviewRecord record = stored(file);
        QVERIFY(isSame(review, record));
        QCOMPARE(std::pair(record.currentGroup, record.currentTrack), std::pair(3, 7));
    }

    void decisionsOfAReviewThatIsNotInTheFileStayOutOfIt()
    {
        if (!isUnix)
            QSKIP("no limit for the size of files");
        const QTemporaryDir dir;
        const QString file = dir.filePath(u"r.sqlite"_s);
        Review review;
        ReviewScript::begin(review);
        const ReviewRecord record = ReviewKeeper(review, dir.filePath(u"other.sqlite"_s)).record();
        StoredDecision other { record.groups.first().id, record.decisions.first(), {} };
        other.decision.state = GroupState::Done;
        {
            StoreWorker worker(file);
            QSignalSpy written(&worker, &StoreWorker::written);
            worker.open();
            worker.save(record);
            limitFileSize(QFileInfo(file + u"-wal"_s).size());
            worker.save(record); // of another scan
            limitFileSize(-1);
            worker.update({ other }, {});
            QCOMPARE(written.size(), 2);
            QVERIFY(written.first().first().toString().isEmpty() && !written.last().first().toString().isEmpty());
        }
        QVERIFY(isSame(review, stored(file)));
    }

    void aFileThatCannotBeUsedIsSaid()
    {
        const QTemporaryDir dir;
        const QString file = dir.filePath(u"r.sqlite"_s);
        writeFile(file, "not a database");
        const Review review;
        ReviewKeeper keeper(review, file);
        QSignalSpy opened(&keeper, &ReviewKeeper::opened);
        keeper.open();
        QVERIFY(opened.wait() && keeper.isKeeping());
        QVERIFY(opened.first().at(1).toString().startsWith("The stored review cannot be used ("_L1));
        ReviewKeeper second(review, file);
        QSignalSpy refused(&second, &ReviewKeeper::opened);
        second.open();
        QVERIFY(refused.wait() && !second.isKeeping());
        QVERIFY(refused.first().at(1).toString().contains("another window of this program has it open"_L1));
    }

    void filesAreLookedAtAgain_data()
    {
        const Rows<Act, bool, FileState> row("act", "followLinks", "state");
        row(
            "as it was", [](Sandbox &, const QString &) {}, false, FileState::AsScanned);
        row(
            "gone", [](Sandbox &, const QString &path) { QFile::remove(path); }, false, FileState::Vanished);
        row(
            "longer", [](Sandbox &box, const QString &path) { box.write(path, QByteArray(200, 'x')); }, false,
            FileState::Changed);
        row(
            "written a moment later",
            [](Sandbox &, const QString &path) {
                QFile file(path);
                const QDateTime time = QFileInfo(path).lastModified().addMSecs(20);
                QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFile::FileModificationTime));
            },
            false, FileState::Changed);
        row(
            "a folder", [](Sandbox &, const QString &path) { QVERIFY(QFile::remove(path) && QDir().mkpath(path)); },
            false, FileState::Changed);
        if (!isUnix)
            return;
        const Act link = [](Sandbox &box, const QString &path) {
            QVERIFY(QFile::rename(path, path + u".real"_s));
            box.addLink(path + u".real"_s, QFileInfo(path).fileName());
        };
        row("a link", link, false, FileState::Changed);
        row("a link, and links are followed", link, true, FileState::AsScanned);
        row(
            "the drive is away", [](Sandbox &box, const QString &) { QDir(box.library()).removeRecursively(); }, false,
            FileState::AsScanned);
    }

    void filesAreLookedAtAgain()
    {
        QFETCH(const Act, act);
        QFETCH(const bool, followLinks);
        QFETCH(const FileState, state);
        Sandbox box;
        ReviewRecord review;
        review.options.roots = { box.library() };
        review.options.followSymlinks = followLinks;
        for (const QString &path : box.addMany(3, u"%1.mp3"_s)) {
            const QFileInfo info(path);
            review.tracks.emplaceBack().path = path;
            review.tracks.last().size = info.size();
            review.tracks.last().mtime = info.lastModified();
        }
        review.groups.emplaceBack().members = { 0, 1, 2 };
        act(box, review.tracks.at(1).path);
        FileLook look;
        QSignalSpy found(&look, &FileLook::found);
        QSignalSpy finished(&look, &FileLook::finished);
        look.look({});
        look.look(review); // and the other is given up
        QVERIFY(finished.wait());
        QHash<qint32, FileState> expected;
        if (state != FileState::AsScanned)
            expected.insert(1, state);
        QCOMPARE(found.value(0).value(0).value<decltype(expected)>(), expected);
        const auto summary = finished.first().first().value<FileLookSummary>();
        QCOMPARE(summary.changed, state == FileState::Changed ? 1 : 0);
        QCOMPARE(summary.vanished, state == FileState::Vanished ? 1 : 0);
        QCOMPARE(summary.outOfReach.isEmpty(), QFileInfo::exists(box.library()));
    }
};

QTEST_GUILESS_MAIN(TestReviewKeeper)
#include "tst_reviewkeeper.moc"
