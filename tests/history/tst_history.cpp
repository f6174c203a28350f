// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanuphistory.h"

#include "cleanupchecks.h"
#include "purge.h"
#include "rows.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QProcess>
#include <QSqlQuery>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

QList<RecordedFile> planned(const QStringList &paths)
{
    QList<RecordedFile> files;
    for (const QString &path : paths)
        files.append({ 0, path, 100, MatchType::SameAudio, FileFate::Planned });
    return files;
}

/// The newest run as the record has it: its state, and the fates of its files as numbers.
QString newest(CleanupHistory &history)
{
    const QList<CleanupRun> runs = history.store().runs().value();
    if (runs.isEmpty())
        return u"none"_s;
    QString fates;
    const QList<RecordedFile> files = history.store().files(runs.first().id, 0, 100).value();
    for (const RecordedFile &file : files)
        fates += QString::number(static_cast<int>(file.fate));
    return u"%1 %2"_s.arg(static_cast<int>(runs.first().state)).arg(fates);
}

using Act = std::function<void(const Sandbox &box, const QStringList &paths)>;

} // namespace

Q_DECLARE_METATYPE(Act)

class TestHistory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordFollowsItsFiles_data()
    {
        const Rows<RemovalMode, Act, QString, bool> row("mode", "act", "fates", "isReversible");
        const auto quarantine = RemovalMode::Quarantine;
        const Act nothing = [](const Sandbox &, const QStringList &) {};
        row("quarantine", quarantine, nothing, u"1 11121"_s, true);
        row("deletion", RemovalMode::Delete, nothing, u"1 11121"_s, false);
        const Act some = [](const Sandbox &, const QStringList &paths) {
            const QString list = listUndoManifests().first();
            QCOMPARE(restoreManifest(list, {}, MissingFolders::Leave, QSet<QString> { paths.at(1) }).succeeded, 1);
            QVERIFY(followRecorded(list, FileFate::Back));
        };
        row("some are back", quarantine, some, u"1 13121"_s, true);
        const Act occupied = [](const Sandbox &box, const QStringList &paths) {
            box.write(paths.at(0), "other music");
            const QString list = listUndoManifests().first();
            QCOMPARE(restoreManifest(list).failed, 1);
            QVERIFY(listUndoManifests().first() != list); // that of the rest
            QVERIFY(followRecorded(list, FileFate::Back));
        };
        row("one place was taken", quarantine, occupied, u"1 13323"_s, true);
        const Act lost = [](const Sandbox &box, const QStringList &) {
            QVERIFY(QFile::remove(box.inRun(u"0"_s)));
            const QString list = listUndoManifests().first();
            QCOMPARE(restoreManifest(list).failed, 1);
            QVERIFY(followRecorded(list, FileFate::Back));
        };
        row("one has gone from the quarantine", quarantine, lost, u"1 53323"_s, false);
        const Act elsewhere = [](const Sandbox &, const QStringList &) {
            QCOMPARE(restoreManifest(listUndoManifests().first()).succeeded, 4);
        };
        row("undone without the record", quarantine, elsewhere, u"1 33323"_s, false);
        const Act purged = [](const Sandbox &, const QStringList &) {
            QCOMPARE(purgeQuarantine(listUndoManifests().first()).succeeded, 4);
        };
        row("purged without the record", quarantine, purged, u"1 44424"_s, false);
    }

    void recordFollowsItsFiles()
    {
        QFETCH(const RemovalMode, mode);
        QFETCH(const Act, act);
        QFETCH(const bool, isReversible);
        Sandbox box;
        const QStringList paths = box.addMany(5, u"a/%1"_s);
        CleanupHistory history;
        QVERIFY(history.open());
        const Result<qint64> id = history.begin(mode, { box.library() }, planned(paths));
        QVERIFY(id);
        QCOMPARE(newest(history), u"0 00000"_s);
        const auto meddle = [&paths](qsizetype index, qsizetype, const QString &) {
            return index != 3 || (QFile::remove(paths.at(3)) && QDir().mkdir(paths.at(3)));
        };
        QVERIFY(history.finish(*id, removeFiles(paths, mode, box.quarantine(), {}, meddle)));
        act(box, paths);
        QCOMPARE(history.refresh(), QStringList());
        QTEST(newest(history), "fates");
        const CleanupRun run = history.store().runs()->first();
        QCOMPARE(isInQuarantine(run), isReversible);
        QVERIFY(run.removed() == 4 && run.bytes == 400 && run.errors.size() == 1);
        QCOMPARE(run.types, (QMap<MatchType, qint64> { { MatchType::SameAudio, 4 } }));
        QCOMPARE(run.roots, QStringList(box.library()));
    }

    void killedRunsAreInterrupted_data()
    {
        const Rows<bool, QString> row("isRecorded", "fates");
        row("recorded", true, u"2 1122"_s);
        row("by an earlier version", false, u"2 11"_s);
    }

    void killedRunsAreInterrupted()
    {
        QFETCH(const bool, isRecorded);
        Sandbox box;
        const QStringList paths = box.addMany(4, u"%1"_s);
        CleanupHistory history;
        QVERIFY(history.open());
        if (isRecorded)
            QVERIFY(history.begin(RemovalMode::Quarantine, {}, planned(paths)));
        QProcess program;
        program.start(cleanupDriver(), { u"quarantine"_s, box.library(), box.quarantine(), u"2"_s });
        QVERIFY(program.waitForFinished());
        for (int times = 0; times < 2; ++times) {
            QCOMPARE(history.refresh(), QStringList());
            QTEST(newest(history), "fates");
            QVERIFY(history.store().runs()->size() == 1 && isInQuarantine(history.store().runs()->first()));
        }
        QCOMPARE(restoreManifest(listUndoManifests().first()).succeeded, 2);
        history.refresh();
        QCOMPARE(newest(history), isRecorded ? u"2 3322"_s : u"2 33"_s);
    }

    void filesAreFoundInParts()
    {
        const Sandbox box;
        CleanupStore store(CleanupStore::defaultFilePath());
        QVERIFY(store.open());
        QStringList paths;
        for (int i = 0; i < 1000; ++i)
            paths << u"/music/%1 %2.mp3"_s.arg(i % 2 == 0 ? u"Söng"_s : u"sÖNG b"_s).arg(i);
        CleanupRun run;
        run.id = 5;
        const qint64 first = store.add(run, planned(paths)).value();
        QVERIFY(store.add(run, planned({ u"/other"_s })).value() > first); // began in the same moment
        QCOMPARE(store.files(first, 0, 10, u"söng B"_s)->last().number, 19);
        QCOMPARE(store.files(first, 990, 100)->size(), 10);
        QCOMPARE(store.files(first, 0, 10, u"NG b 999"_s)->size(), 1);
        QCOMPARE(store.files(first, 0, 10, u"_"_s)->size(), 0);
        QCOMPARE(store.runsWith(u"SÖNG"_s).value(), QSet<qint64> { first });
    }

    void unusableRecordsAreLeftOrKeptAside_data()
    {
        const Rows<QByteArray, bool, bool> row("change", "isUsable", "isAside");
        row("newer", "PRAGMA user_version=99", false, false);
        row("another program's", "PRAGMA application_id=1", true, true);
        row("damaged", "", true, true);
    }

    void unusableRecordsAreLeftOrKeptAside()
    {
        QFETCH(const QByteArray, change);
        const Sandbox box;
        const QString file = CleanupStore::defaultFilePath();
        QVERIFY(CleanupStore(file).open());
        if (change.isEmpty()) {
            writeFile(file, QByteArray(8192, 'x'));
        } else {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"test"_s);
            db.setDatabaseName(file);
            QVERIFY(db.open() && QSqlQuery(db).exec(QString::fromLatin1(change)));
            db.close();
        }
        QSqlDatabase::removeDatabase(u"test"_s);
        CleanupStore store(file);
        QVERIFY(!store.open());
        QTEST(store.isOpen(), "isUsable");
        QTEST(!QFileInfo(file).dir().entryList({ u"cleanups.sqlite.damaged-*"_s }).isEmpty(), "isAside");
        QCOMPARE(store.add({}, {}).has_value(), store.isOpen());
    }
};

CLEANUP_MAIN(TestHistory)
#include "tst_history.moc"
