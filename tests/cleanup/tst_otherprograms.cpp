// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"
#include "cleanupchecks.h"
#include "rows.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QProcess>
#include <QTest>

#include <array>
#include <memory>
#include <vector>

#ifdef Q_OS_LINUX
#include <sys/syscall.h>
#endif
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace epr;
using namespace epr::test;

#ifdef Q_OS_LINUX
static QByteArray vanishesWithMoves; // the file that another program takes in the very moment
static bool movesNothing = false; // and says that it did

extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    const auto status =
        movesNothing ? 0 : static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    if (status == 0 && !vanishesWithMoves.isEmpty())
        unlink(vanishesWithMoves.constData());
    return status;
}
#endif

namespace {

constexpr int pairs = 400;

/// Files that this program holds as another might. Where the system knows such a thing, nobody moves or deletes what a
/// QFile has open.
using Held = std::vector<std::unique_ptr<QFile>>;

Held hold(const QStringList &paths)
{
    Held held;
    for (const QString &path : paths) {
        held.push_back(std::make_unique<QFile>(path));
        if (!held.back()->open(QIODevice::ReadOnly))
            qFatal("Cannot hold %ls", qUtf16Printable(path));
    }
    return held;
}

const QString inUseReason = u": Sharing violation: the file is in use by another program"_s;

} // namespace

/// A clean-up while others are at work.
class TestOtherPrograms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyOneAtATime()
    {
        Sandbox box(Sandbox::hasTwoFileSystems());
        box.addMany(300, u"%1.mp3"_s);
        const Tree before = treeOf(box.library());
        QProcess child;
        child.start(cleanupDriver(), { u"quarantine"_s, box.library(), box.quarantine(), u"260"_s, u"wait"_s });
        QVERIFY(child.waitForReadyRead(30000));
        const QString manifest = listUndoManifests().value(0);
        const QString who = u"process %1, since"_s.arg(child.processId());
        const QString last = box.inLibrary(u"99.mp3"_s);
        const auto refused = [&](RemovalMode mode) {
            return removeFiles({ last }, mode, box.quarantine(), {}).refusal.contains(who) && QFileInfo::exists(last);
        };
        QVERIFY(refused(RemovalMode::Quarantine) && refused(RemovalMode::Delete));
        QVERIFY(restoreManifest(manifest).refusal.contains(who));
#ifdef Q_OS_UNIX
        const QByteArray data = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", box.path(u"another user"_s).toUtf8());
        QVERIFY(refused(RemovalMode::Quarantine) && refused(RemovalMode::RecycleBin));
        qputenv("XDG_DATA_HOME", data);
#endif
        QCOMPARE(filesBelow(box.library()).size(), 40);
        child.kill();
        QVERIFY(child.waitForFinished());
        CHECK_UNDO(box, manifest, 260, before);
    }

    void twoProgramsNeverTakeBothCopies_data()
    {
        const Rows<RemovalMode> row("mode");
        row("quarantine", RemovalMode::Quarantine);
        row("deletion", RemovalMode::Delete);
    }

    void twoProgramsNeverTakeBothCopies()
    {
        QFETCH(RemovalMode, mode);
        Sandbox box(Sandbox::hasTwoFileSystems());
        box.addMany(pairs, u"%1 a"_s);
        box.addMany(pairs, u"%1 b"_s);
        std::array<QProcess, 2> programs; // as of two users, with a quarantine of their own
        for (size_t i = 0; i < programs.size(); ++i) {
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            const QString name = i == 0 ? u"/%1 a"_s : u"/%1 b"_s;
            environment.insert(u"XDG_DATA_HOME"_s, box.path(u"data"_s + name));
            programs[i].setProcessEnvironment(environment);
            programs[i].start(cleanupDriver(),
                              { u"pairs"_s, box.library(), box.quarantine() + name, QString::number(pairs), name,
                                i == 0 ? u"/%1 b"_s : u"/%1 a"_s, QString::number(static_cast<int>(mode)) });
        }
        for (QProcess &program : programs)
            QVERIFY(program.waitForReadyRead(30000));
        for (QProcess &program : programs)
            program.write("\n");
        for (QProcess &program : programs)
            QVERIFY(program.waitForFinished(60000) && (!isUnix || program.exitCode() == 0));
        for (int i = 0; i < pairs; ++i)
            QVERIFY2(QFileInfo::exists(box.inLibrary(u"%1 a"_s.arg(i)))
                         || QFileInfo::exists(box.inLibrary(u"%1 b"_s.arg(i))),
                     qPrintable(u"both copies of %1 are gone"_s.arg(i)));
    }

    void fileStaysWhenItsKeptCopyGoes_data()
    {
        const Rows<QString> row("fate");
        for (const char *fate : { "gone", "changed", "emptied" })
            row(fate, QString::fromLatin1(fate));
#ifdef Q_OS_LINUX
        row("another path to the file", u"another path"_s);
        row("gone during the move", u"gone during the move"_s);
#endif
    }

    void fileStaysWhenItsKeptCopyGoes()
    {
        QFETCH(QString, fate);
        for (const RemovalMode mode : { RemovalMode::Quarantine, RemovalMode::Delete }) {
            const bool inTheMove = fate.endsWith("move"_L1);
            if (inTheMove && mode == RemovalMode::Delete)
                continue;
            Sandbox box(Sandbox::hasTwoFileSystems());
            const QStringList paths = box.addMany(2, u"go %1"_s);
            const QStringList stay = box.addMany(2, u"stay %1"_s);
            KeptCopies kept;
            for (int i = 0; i < 2; ++i)
                kept.insert(paths.at(i), { asItIs(box.inLibrary(u"was never there"_s)), asItIs(stay.at(i)) });
            if (fate.startsWith("another"_L1))
                kept[paths.at(1)] = { asItIs(box.addLink(u"."_s, u"alias"_s) + u"/go 1"_s),
                                      asItIs(box.addLink(u"alias/go 1"_s, u"link"_s)) };
            const RemovalResult removed =
                removeFiles(paths, mode, box.quarantine(), { box.library() },
                            [&](qsizetype index, qsizetype, const QString &) {
                                if (index == 0 || fate == u"another path"_s)
                                    return true;
                                if (fate == u"gone"_s)
                                    QFile::remove(stay.at(1));
#ifdef Q_OS_LINUX
                                else if (inTheMove)
                                    vanishesWithMoves = QFile::encodeName(stay.at(1));
#endif
                                else
                                    box.write(stay.at(1), fate == u"changed"_s ? "other music" : "");
                                return true;
                            },
                            { kept });
#ifdef Q_OS_LINUX
            vanishesWithMoves.clear();
#endif
            QCOMPARE(removed.succeeded, 1);
            QVERIFY2(removed.errors.value(0).startsWith(native(paths.at(1)) + u" was left in place: "_s),
                     qPrintable(removed.errors.value(0)));
            QVERIFY(!QFileInfo::exists(paths.at(0)) && QFileInfo::exists(paths.at(1)));
            if (mode == RemovalMode::Quarantine)
                QCOMPARE(filesBelow(box.quarantine()).size(), 1);
        }
    }

    void filesInUseGetSomePatience_data()
    {
        const Rows<RemovalMode, QString> row("mode", "message");
        row("quarantine", RemovalMode::Quarantine, u"Could not move "_s);
        row("deletion", RemovalMode::Delete, u"Could not delete "_s);
    }

    void filesInUseGetSomePatience()
    {
        if (isUnix)
            QSKIP("This system lets files go while they are open");
        QFETCH(RemovalMode, mode);
        QFETCH(QString, message);
        Sandbox box;
        const QStringList paths = box.addMany(30, u"%1"_s);
        Held held = hold(paths);
        const Tree before = treeOf(box.library());
        const auto stop = [](qsizetype, qsizetype, const QString &text) { return !text.startsWith("Waiting"_L1); };
        const RemovalResult stopped = removeFiles(paths, mode, box.quarantine(), {}, stop);
        QCOMPARE(stopped, RemovalResult());
        QCOMPARE(treeOf(box.library()), before);

        std::array<int, 30> waits {};
        const auto letGoOfTheSecond = [&](qsizetype index, qsizetype, const QString &text) {
            waits[index] += text == u"Waiting for "_s + native(paths.at(index)) ? 1 : 0;
            if (waits[1] == 3)
                held[1]->close();
            return true;
        };
        const RemovalResult removed = removeFiles(paths, mode, box.quarantine(), {}, letGoOfTheSecond);
        QCOMPARE(removed.succeeded, 1);
        QCOMPARE(removed.errors.last(), message + native(paths.at(29)) + inUseReason);
        QVERIFY2(waits[0] > 10 && waits[1] == 3 && waits[2] == waits[0], qPrintable(QString::number(waits[0])));
        QCOMPARE(waits[29], 0);
    }

    void undoOfFilesInUseKeepsThem()
    {
        if (isUnix)
            QSKIP("This system lets files go while they are open");
        Sandbox box;
        const QStringList paths = box.addMany(3, u"%1"_s);
        const Tree before = treeOf(box.library());
        const QString manifest = removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), {}).manifestPath;
        Held held = hold({ box.inRun(u"1"_s) });
        const auto stop = [](qsizetype, qsizetype, const QString &text) { return !text.startsWith("Waiting"_L1); };
        QCOMPARE(restoreManifest(manifest, stop), RestoreResult({ 1, 0, {} }));
        const QString error = u"Could not restore "_s + native(paths.at(1)) + inUseReason;
        const RestoreResult again = restoreManifest(manifest);
        QCOMPARE(again, RestoreResult({ 1, 1, { error }, {}, again.problems }));
        held.clear();
        CHECK_UNDO(box, listUndoManifests().value(0), 1, before);
    }

    void binIsBelievedOnlyAfterALook()
    {
#ifdef Q_OS_LINUX
        Sandbox box;
        const QString path = box.add(u"a"_s);
        movesNothing = true;
        const RemovalResult removed = removeFiles({ path }, RemovalMode::RecycleBin, {}, {});
        movesNothing = false;
        QVERIFY(QFileInfo::exists(path));
        QCOMPARE(removed.errors,
                 QStringList { u"Recycle bin unavailable for %1: the file is still in its place"_s.arg(path) });
#endif
    }

    void writeProtectedFilesGo()
    {
        for (const RemovalMode mode : { RemovalMode::Quarantine, RemovalMode::Delete }) {
            Sandbox box;
            const QString path = box.add(u"protected"_s);
            QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
            const RemovalResult removed = removeFiles({ path }, mode, box.quarantine(), {});
            QCOMPARE(removed, RemovalResult({ 1, 0, 100, {}, removed.manifestPath }));
            QVERIFY(!QFileInfo::exists(path));
            if (mode == RemovalMode::Delete)
                continue;
            QCOMPARE(restoreManifest(removed.manifestPath), RestoreResult({ 1, 0, {} }));
            QVERIFY(!QFile::permissions(path).testFlag(QFile::WriteOwner));
            QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        }
    }

    // In the library are "real" with the files a and b, of one size, and "elsewhere", a hard link to a; "seen" is where
    // something is mounted, and "spare" and "work" are empty.
    void oneFileUnderTwoMountsStays_data()
    {
        const Rows<QString, QString, QString, bool> row("mount", "file", "copy", "goes");
        const QString below = u"mount -t overlay o -o lowerdir=real,upperdir=spare,workdir=work seen"_s;
        const QString above = u"mount -t overlay o -o lowerdir=spare,upperdir=real,workdir=work seen"_s;
        const QString bindfs = u"bindfs real seen"_s;
        row("folder", u"mount --bind real seen"_s, u"real/a"_s, u"seen/a"_s, false);
        row("hard links", u"mount --bind spare seen"_s, u"real/a"_s, u"elsewhere"_s, true);
        row("file", u"touch seen/a; mount --bind real/a seen/a"_s, u"real/a"_s, u"seen/a"_s, false);
        row("below an overlay", below, u"real/a"_s, u"seen/a"_s, false);
        row("an overlay's copy of its own", below, u"seen/a"_s, u"real/a"_s, true);
        row("an overlay's upper folder", above, u"real/a"_s, u"seen/a"_s, false);
        row("overlay", above, u"seen/a"_s, u"real/a"_s, false);
        row("overlay, two files", above, u"seen/a"_s, u"real/b"_s, true);
        row("bindfs", bindfs, u"real/a"_s, u"seen/a"_s, false);
        row("bindfs, seen from it", bindfs, u"seen/a"_s, u"real/a"_s, false);
        row("bindfs, two files", bindfs, u"seen/a"_s, u"real/b"_s, true);
    }

    void oneFileUnderTwoMountsStays()
    {
        QFETCH(QString, mount);
        if (QProcess::execute(u"unshare"_s, { u"-m"_s, u"true"_s }) != 0)
            QSKIP("Only the administrator may mount");
        if (QStandardPaths::findExecutable(mount.section(u' ', 0, 0)).isEmpty())
            QSKIP("bindfs is not installed");
        QFETCH(QString, file);
        QFETCH(QString, copy);
        QFETCH(bool, goes);
        for (const RemovalMode mode : { RemovalMode::Quarantine, RemovalMode::Delete }) {
            Sandbox box;
            const QString real = box.add(u"real/a"_s);
            box.add(u"real/b"_s);
            std::filesystem::create_hard_link(real.toStdString(), box.inLibrary(u"elsewhere"_s).toStdString());
            for (const QString &folder : words("seen spare work"))
                QDir().mkpath(box.inLibrary(folder));
            const QDateTime read = QFileInfo(real).lastRead();
            QProcess program;
            program.setWorkingDirectory(box.library());
            program.start(u"unshare"_s,
                          { u"-m"_s, u"sh"_s, u"-c"_s,
                            mount + u" && { \"$@\"; result=$?; umount seen/a || umount seen; exit $result; }"_s,
                            u"sh"_s, cleanupDriver(), u"remove"_s, QString::number(static_cast<int>(mode)),
                            box.quarantine(), box.inLibrary(file), box.inLibrary(copy) });
            QVERIFY(program.waitForFinished());
            const QByteArray said = program.readAllStandardOutput();
            QVERIFY2(program.exitCode() == (goes ? 0 : 1), (said + program.readAllStandardError()).constData());
            QCOMPARE(said.contains(" was left in place: "), !goes);
            QCOMPARE(QFileInfo(goes ? box.inLibrary(copy) : real).size(), 100);
            if (!goes)
                QVERIFY(QFileInfo(real).lastRead() >= read); // the change that it was tried with was taken back
        }
    }

    // Nothing tells whether files on two drives are two unless the one may be touched.
    void strangersFileIsNotDeletedForACopyOnAnotherDrive()
    {
#ifdef Q_OS_UNIX
        if (geteuid() != 0 || !Sandbox::hasTwoFileSystems())
            QSKIP("Only the administrator can give files away, and it takes two file systems");
        const auto backToRoot = qScopeGuard([] { QVERIFY(seteuid(0) == 0); });
        QVERIFY(seteuid(65534) == 0);
        Sandbox box(true);
        const QString copy = box.quarantine() + u"/copy"_s;
        box.write(copy, QByteArray(100, 'c'));
        const QStringList paths { box.add(u"own"_s), box.add(u"stranger's"_s) };
        QVERIFY(seteuid(0) == 0);
        QVERIFY(chown(QFile::encodeName(paths.at(1)).constData(), 0, 0) == 0 && seteuid(65534) == 0);
        const KeptCopies kept { { paths.at(0), { asItIs(copy) } }, { paths.at(1), { asItIs(copy) } } };
        const QStringList errors = removeFiles(paths, RemovalMode::Delete, {}, {}, {}, { kept }).errors;
        QVERIFY2(errors.value(0).startsWith(native(paths.at(1)) + u" was left in place: it could not be proved"_s),
                 qPrintable(errors.join(u' ')));
        QVERIFY(!QFileInfo::exists(paths.at(0)) && QFileInfo::exists(paths.at(1)));
        QCOMPARE(removeFiles(paths.sliced(1), RemovalMode::Quarantine, box.path(u"q"_s), {}, {}, { kept }).succeeded,
                 1);
#endif
    }
};

CLEANUP_MAIN(TestOtherPrograms)
#include "tst_otherprograms.moc"
