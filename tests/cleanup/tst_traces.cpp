// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"
#include "cleanupchecks.h"
#include "cleanuplock.h"
#include "rows.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QProcess>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

QString inUndoFolder(const QString &name)
{
    return undoDirectory() + u'/' + name;
}

/// Runs the driver until it kills itself: in the middle of a copy of more than a megabyte, or of a rename.
bool isKilled(const QStringList &task, [[maybe_unused]] bool duringCopy)
{
    QProcess program;
#ifdef Q_OS_UNIX
    if (duringCopy) {
        program.setChildProcessModifier([] {
            std::signal(SIGXFSZ, SIG_DFL);
            const rlimit none { 0, 0 };
            const rlimit limit { 1000000, 1000000 };
            setrlimit(RLIMIT_CORE, &none);
            setrlimit(RLIMIT_FSIZE, &limit);
        });
    } else {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"EPR_TEST_PLAIN_RENAMES"_s, u"1"_s);
        program.setProcessEnvironment(environment);
    }
#endif
    program.start(cleanupDriver(), task);
    return program.waitForFinished() && program.exitStatus() == QProcess::CrashExit;
}

QString removedText(int files, const QString &folder)
{
    return u"Removed %1 unfinished file(s) that an interrupted clean-up had left in %2."_s.arg(files).arg(
        native(folder));
}

} // namespace

/// What a clean-up that was killed has left goes, and nothing else.
class TestTraces : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void killedMoveLeavesNothing_data()
    {
#ifdef Q_OS_LINUX
        const Rows<bool, bool, int> row("isUndo", "duringCopy", "toRestore");
        if (Sandbox::hasTwoFileSystems()) {
            row("copy into the quarantine", false, true, 1);
            row("copy back", true, true, 1);
        }
        row("rename into the quarantine", false, false, 0);
        row("rename back", true, false, 2);
#else
        QSKIP("The ways to die are those of Linux");
#endif
    }

    void killedMoveLeavesNothing()
    {
        QFETCH(bool, isUndo);
        QFETCH(bool, duringCopy);
        QFETCH(int, toRestore);
        Sandbox box(duringCopy);
        const QStringList paths { box.add(u"a/.echoprune-x-1.part"_s), box.add(u"a/big"_s, 3000000) };
        const Tree before = treeOf(box.library());
        if (isUndo)
            QCOMPARE(removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), { box.library() }).succeeded, 2);
        const QStringList quarantine { u"quarantine"_s, box.library(), box.quarantine(), u"9"_s };
        QVERIFY(isKilled(isUndo ? QStringList(u"undo"_s) : quarantine, duringCopy));
        const auto files = [&box] { return filesBelow(box.library()).size() + filesBelow(box.quarantine()).size(); };
        QCOMPARE(files(), 3);

        const QString folder = isUndo ? box.inLibrary(u"a"_s) : box.inRun(u"library/a"_s);
        QVERIFY(QDir().rename(folder, folder + u" away"_s));
        QCOMPARE(clearTraces(), QStringList());
        QVERIFY(QDir().rename(folder + u" away"_s, folder));
        {
            CleanupLock lock;
            QVERIFY(lock.take({}));
            QCOMPARE(clearTraces(), QStringList());
        }
        QCOMPARE(files(), 3);
        QCOMPARE(clearTraces(), QStringList(removedText(1, folder)));
        QCOMPARE(files(), 2);
        QCOMPARE(QDir(undoDirectory()).entryList({ u"traces*"_s }), QStringList());
        CHECK_UNDO(box, listUndoManifests().value(0), toRestore, before);
    }

    void undoFolderIsClearedUp()
    {
        Sandbox box;
        const QStringList paths = box.addMany(3, u"%1"_s);
        const Tree before = treeOf(box.library());
        QVERIFY(QProcess::execute(cleanupDriver(), { u"quarantine"_s, box.library(), box.quarantine(), u"2"_s }) != 0);
        const QString manifest = listUndoManifests().value(0);
        QVERIFY(QFile::remove(manifest));
        const QString undone = uR"({"from": "%1", "to": "/nowhere/x"})"_s.arg(paths.at(2));
        box.write(inUndoFolder(u"undo-20200101-000000.journal"_s), undone.toUtf8() + '\n');
        box.write(inUndoFolder(u"undo-20200101-000000.json.AbCdEf"_s), "{");
        const QString whole = inUndoFolder(u"undo-20200101-000000.json.BackUp"_s);
        QVERIFY(writeManifest(whole, {}));
        const QStringList strangers { inUndoFolder(u"undo-20200101-000000.json.broken"_s),
                                      inUndoFolder(u"traces-1.journal"_s), box.path(u"1/.echoprune-1-1.part"_s) };
        const QString note = uR"({"part": "%1", "token": "1"})"_s.arg(box.path(u"1"_s));
        for (const QString &path : strangers)
            box.write(path, note.toUtf8() + "\ndamaged\n");

        const QStringList said = clearTraces();
        QCOMPARE(said.value(0), removedText(2, undoDirectory()));
        QCOMPARE(said.value(1),
                 u"The list of an interrupted clean-up was found again: %1."_s.arg(describeManifest(manifest)));
        for (const QString &path : strangers + QStringList(whole))
            QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        QCOMPARE(readManifest(manifest).value().quarantineRoot, box.quarantine());
        CHECK_UNDO(box, manifest, 2, before);
    }
};

CLEANUP_MAIN(TestTraces)
#include "tst_traces.moc"
