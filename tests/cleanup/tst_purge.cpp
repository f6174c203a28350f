// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "purge.h"

#include "cleanupchecks.h"
#include "cleanuplock.h"
#include "emptyfolders.h"
#include "rows.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QProcess>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

/// Four files in the quarantine: "a/0" to "a/3".
struct Run final : Sandbox {
    Run()
        : paths(addMany(4, u"a/%1"_s))
        , before(treeOf(library()))
        , manifest(removeFiles(paths, RemovalMode::Quarantine, quarantine(), { library() }).manifestPath)
    {
    }

    QStringList paths;
    Tree before;
    QString manifest;
};

using Act = std::function<void(Run &)>;

} // namespace

Q_DECLARE_METATYPE(Act)

/// What is done later with the files of a clean-up: some come back, or all go for good.
class TestPurge : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chosenFilesComeBackAlone()
    {
        const Run run;
        const QSet<QString> chosen { run.paths.at(1), run.paths.at(3) };
        QProcess program;
        program.start(cleanupDriver(), { u"restore"_s, run.manifest, u"1"_s, run.paths.at(1), run.paths.at(3) });
        QVERIFY(program.waitForFinished());
        QCOMPARE(treeOf(run.library()).keys(), words("a a/1"));
        QCOMPARE(readManifest(run.manifest)->entries.size(), 4); // whole until there is a new one

        QVERIFY(QDir().rename(run.inLibrary(u"a"_s), run.path(u"away"_s)));
        QCOMPARE(lookAtUndo(run.manifest, chosen).missingFolders, QStringList(run.inLibrary(u"a"_s)));
        QCOMPARE(lookAtUndo(run.manifest, QSet<QString>()).missingFolders, QStringList());
        QVERIFY(QDir().rename(run.path(u"away"_s), run.inLibrary(u"a"_s)));
        QCOMPARE(restoreManifest(run.manifest, {}, MissingFolders::Leave, chosen), RestoreResult({ 1, 0, {} }));
        QCOMPARE(treeOf(run.library()).keys(), words("a a/1 a/3"));
        CHECK_UNDO(run, run.manifest, 2, run.before);
    }

    void onlyWhatTheRunPutThereGoes_data()
    {
        const Rows<Act, int, int, bool, bool> row("act", "removed", "failed", "isRefused", "isFolderLeft");
        row(
            "all", [](Run &) {}, 4, 0, false, false);
        row(
            "something else is there", [](Run &run) { run.write(run.inRun(u"library/other"_s), "x"); }, 4, 0, false,
            true);
        row(
            "another file in place of one", [](Run &run) { run.write(run.inRun(u"library/a/2"_s), "x"); }, 3, 1, false,
            true);
        row(
            "one has gone", [](Run &run) { QFile::remove(run.inRun(u"library/a/2"_s)); }, 3, 0, false, false);
        row(
            "the drive is away", [](Run &run) { QDir().rename(run.inRun({}), run.path(u"away"_s)); }, 0, 0, true,
            false);
        row(
            "the list names a file elsewhere",
            [](Run &run) {
                UndoManifest manifest = readManifest(run.manifest).value();
                manifest.entries[1].to = run.add(u"precious"_s);
                QVERIFY(writeManifest(run.manifest, manifest));
            },
            0, 0, true, true);
        row(
            "the list names the library for a quarantine",
            [](Run &run) {
                UndoManifest manifest = readManifest(run.manifest).value();
                manifest.quarantineRoot = run.path({});
                manifest.entries = { { u"/x"_s, run.add(u"precious"_s), 100 } };
                QVERIFY(writeManifest(run.manifest, manifest));
            },
            0, 0, true, true);
#ifdef Q_OS_UNIX
        row(
            "a link in place of a folder",
            [](Run &run) {
                QVERIFY(QDir().rename(run.inRun(u"library/a"_s), run.path(u"away"_s)));
                std::filesystem::create_symlink(run.path(u"away"_s).toStdString(),
                                                run.inRun(u"library/a"_s).toStdString());
            },
            0, 4, false, true);
#endif
    }

    void onlyWhatTheRunPutThereGoes()
    {
        QFETCH(const Act, act);
        QFETCH(const bool, isRefused);
        Run run;
        const QString folder = run.inRun({});
        act(run);
        const Tree library = treeOf(run.library());
        const qsizetype other = filesBelow(run.path({})).size();
        const RemovalResult purged = purgeQuarantine(run.manifest);
        QTEST(purged.succeeded, "removed");
        QTEST(purged.failed, "failed");
        QCOMPARE(!purged.refusal.isEmpty(), isRefused);
        QCOMPARE(treeOf(run.library()), library);
        QCOMPARE(filesBelow(run.path({})).size(), other - purged.succeeded - (QFile::exists(run.manifest) ? 0 : 1));
        QTEST(QDir(folder).exists(), "isFolderLeft");
        QCOMPARE(QFile::exists(run.manifest), isRefused || purged.failed > 0);
        if (purged.failed > 0)
            QCOMPARE(readManifest(run.manifest)->entries.size(), purged.failed);
    }

    void killedPurgeIsTakenUpAgain_data()
    {
        const Rows<bool> row("isUndone");
        row("by another purge", false);
        row("by an undo of what is left", true);
    }

    void killedPurgeIsTakenUpAgain()
    {
        QFETCH(const bool, isUndone);
        const Run run;
        QProcess program;
        program.start(cleanupDriver(), { u"purge"_s, run.manifest, u"2"_s });
        QVERIFY(program.waitForFinished());
        QCOMPARE(filesBelow(run.quarantine()).size(), 2);
        if (isUndone)
            QCOMPARE(restoreManifest(run.manifest).succeeded, 2);
        else
            QCOMPARE(purgeQuarantine(run.manifest).succeeded, 2);
        QCOMPARE(listUndoManifests(), QStringList());
        QCOMPARE(filesBelow(run.quarantine()), QStringList());
        QCOMPARE(filesBelow(run.library()).size(), isUndone ? 2 : 0);
    }

    void purgeKeepsToItsTurn()
    {
        Run run;
        QVERIFY(!purgeQuarantine(run.manifest, {}, { run.quarantine() }).refusal.isEmpty());
        {
            CleanupLock lock;
            QVERIFY(lock.take({}));
            QVERIFY(!purgeQuarantine(run.manifest).refusal.isEmpty());
        }
        const auto stop = [](qsizetype index, qsizetype, const QString &) { return index < 2; };
        QCOMPARE(purgeQuarantine(run.manifest, stop).succeeded, 2);
        QCOMPARE(restoreManifest(run.manifest), RestoreResult({ 2, 0, {} })); // what is left can still come back
    }

    void foldersThatBecameEmptyGo()
    {
        Sandbox box;
        const QStringList removed { box.add(u"a/b/1"_s), box.add(u"a/c/2"_s), box.add(u"d/3"_s),
                                    box.add(u"e/4"_s),   box.add(u"f/g/5"_s), box.add(u"6"_s) };
        box.add(u"d/.hidden"_s);
        QVERIFY(QDir().mkpath(box.inLibrary(u"f/always empty"_s)));
        for (const QString &path : removed)
            QVERIFY(QFile::remove(path));
        const QStringList roots { box.library() };
        const auto found = [&](const QStringList &kept) {
            QStringList names;
            for (const QString &folder : foldersLeftEmpty(removed, roots, kept))
                names << QDir(box.library()).relativeFilePath(folder);
            return names;
        };
        QCOMPARE(found({}), words("f/g a/c a/b e a"));
        QCOMPARE(found({ box.inLibrary(u"a/b"_s) }), words("f/g a/c e"));
        QCOMPARE(foldersLeftEmpty(removed, {}, {}), QStringList());
        const QStringList folders = foldersLeftEmpty(removed, roots, {});
        box.add(u"a/c/new"_s);
        QCOMPARE(removeEmptyFolders(folders).size(), 3);
        QCOMPARE(treeOf(box.library()).keys(),
                 QStringList({ u"a"_s, u"a/c"_s, u"a/c/new"_s, u"d"_s, u"d/.hidden"_s, u"f"_s, u"f/always empty"_s }));
    }
};

CLEANUP_MAIN(TestPurge)
#include "tst_purge.moc"
