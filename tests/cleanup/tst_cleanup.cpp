// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"
#include "cleanupchecks.h"
#include "cleanuplock.h"
#include "filemove.h"
#include "patience.h"
#include "rows.h"
#include "sandbox.h"
#include "traces.h"
#include "undomanifest.h"

#include <QProcess>
#include <QTest>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#endif

#include <cerrno>

using namespace epr;
using namespace epr::test;

#ifdef Q_OS_LINUX
// The disk gives no answer to what kind of file this is, neither to us nor to Qt.
static QByteArray unreadableKind;

extern "C" int lstat(const char *path, struct stat *status) noexcept
{
    errno = EIO;
    return unreadableKind == path ? -1 : fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

extern "C" int statx(int folder, const char *path, int flags, unsigned mask, struct statx *status) noexcept
{
    errno = EIO;
    return (flags & AT_SYMLINK_NOFOLLOW) != 0 && unreadableKind == path
        ? -1
        : static_cast<int>(syscall(SYS_statx, folder, path, flags, mask, status));
}
#endif

namespace {

bool otherFileSystem()
{
    QFETCH_GLOBAL(bool, isOther);
    return isOther;
}

RemovalResult quarantine(const Sandbox &box, const QStringList &paths, const CleanupProgressFn &progress = {})
{
    return removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), { box.library() }, progress);
}

} // namespace

class TestCleanup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Everything is done with a quarantine on the library's file system and with one on another.
    void initTestCase_data()
    {
        QTest::addColumn<bool>("isOther");
        QTest::newRow("same file system") << false;
        if (isUnix && Sandbox::hasTwoFileSystems())
            QTest::newRow("other file system") << true;
        else
            qWarning("This machine has no second file system at hand: moves across file systems are not tested");
    }

    void undoBringsBackTheWholeTree()
    {
        Sandbox box(otherFileSystem());
        QStringList names = u"1/Music/a/song.mp3|2/Music/a/song.mp3|3/Music/a/song.mp3|1/Music/README|2/Music/README|"
                            "out/song.mp3|out/2/song.mp3|1/Music/Бајага/Живи песма.mp3|1/Music/سلام/أغنية \u202e.mp3|"
                            "2/Music/雨/曲 🎵.flac|2/Music/%1 %2.mp3|1/Music/.hidden.mp3"_s.split(u'|');
        const QString longName(251, u'n');
        const QString notes = u"🎵"_s.repeated(isUnix ? 62 : 20);
        for (const QString &folder : { u"1/Music/"_s, u"2/Music/"_s })
            names << folder + longName + u".mp3"_s << folder + notes + u"🎵nnn"_s << folder + u"n."_s + longName;
        if (isUnix)
            names.append(u"1/Music/two\nlines\t\".mp3"_s);
        QStringList paths { box.add(u"1/Music/big.wav"_s, 3000000) };
        for (const QString &name : names)
            paths.append(box.add(name));
        box.add(u"1/Music/kept.mp3"_s);
        if (isUnix)
            paths.append(box.addLink(u"kept.mp3"_s, u"1/Music/link.mp3"_s));
        const Tree before = treeOf(box.library());

        const QStringList roots { box.inLibrary(u"1/Music"_s), box.inLibrary(u"2/Music"_s),
                                  box.inLibrary(u"3/Music/"_s) };
        const RemovalResult removed = removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), roots);
        const auto count = static_cast<qint32>(paths.size());
        QCOMPARE(removed, RemovalResult({ count, 0, 3000000 + 100 * names.size(), {}, removed.manifestPath }));
        QCOMPARE(listUndoManifests(), QStringList { removed.manifestPath });
        QCOMPARE(filesBelow(box.library()), QStringList { box.inLibrary(u"1/Music/kept.mp3"_s) });
        QStringList numbered { u"Music/a/song (3).mp3"_s, u"Music/README (2)"_s, u"song (2).mp3"_s,
                               u"Music/%1 (2).mp3"_s.arg(longName.chopped(4)),
                               u"Music/n.%1 (2)"_s.arg(longName.chopped(2)) };
        if (isUnix)
            numbered << u"Music/%1 (2)"_s.arg(notes);
        for (const QString &name : numbered)
            QVERIFY2(QFileInfo::exists(box.inRun(name)), qPrintable(name));
        CHECK_UNDO(box, removed.manifestPath, count, before);
        QCOMPARE(filesBelow(box.quarantine()), QStringList());
    }

    // Windows takes full stops and spaces off the end of a name.
    void oddlyNamedQuarantineIsOneFolder()
    {
        Sandbox box(otherFileSystem());
        const QString root = box.quarantine() + u"/q. .."_s;
        const QStringList paths { box.add(u"...And Justice/a.mp3"_s), box.add(u"..b.mp3"_s) };
        const Tree before = treeOf(box.library());
        const RemovalResult removed = removeFiles(paths, RemovalMode::Quarantine, root, { box.library() });
        QCOMPARE(removed, RemovalResult({ 2, 0, 200, {}, removed.manifestPath }));
        QCOMPARE(QDir(box.quarantine()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size(), 1);
        const QStringList moved = filesBelow(box.quarantine());
        QVERIFY(moved.value(0).endsWith("/library/...And Justice/a.mp3"_L1));
        QVERIFY(moved.value(1).endsWith("/library/..b.mp3"_L1));
        CHECK_UNDO(box, removed.manifestPath, 2, before);
    }

    void fileThatCannotBeMovedStays()
    {
        Sandbox box(otherFileSystem());
        box.add(u"folder/inner"_s);
        const QStringList paths { box.inLibrary(u"vanished"_s),
                                  isUnix ? box.addLink(u"nowhere"_s, u"dangling"_s) : box.inLibrary(u"dangling"_s),
                                  box.inLibrary(u"folder"_s), box.add(u"last"_s) };
        const Tree before = treeOf(box.library());
        const RemovalResult removed = quarantine(box, paths);
        const QStringList errors { native(paths.at(0)) + u" no longer exists"_s,
                                   native(paths.at(1)) + u" no longer exists"_s,
                                   u"Could not move "_s + native(paths.at(2)) };
        QCOMPARE(removed, RemovalResult({ 1, 3, 100, errors, removed.manifestPath, {}, removed.problems }));
        QCOMPARE(removed.problems.value(2).path, paths.at(2));
        QCOMPARE(filesBelow(box.quarantine()).size(), 1);
        CHECK_UNDO(box, removed.manifestPath, 1, before);
    }

    void nothingMovesWithoutAManifest_data()
    {
        const Rows<int, QString> row("largestFile", "reason");
        row("no undo folder", 0, u"cleanup.lock cannot be opened"_s);
        row("no quarantine", -1, u"quarantine"_s);
#ifdef Q_OS_UNIX
        row("no room for the manifest", 50, u"no undo manifest can be written (File too large)"_s);
        row("no room for the journal", 1000, u"undo journal cannot be written (File too large)"_s);
#endif
    }

    void nothingMovesWithoutAManifest()
    {
        QFETCH(int, largestFile);
        QFETCH(QString, reason);
        Sandbox box;
        const QStringList paths = box.addMany(20, u"%1"_s);
        if (largestFile <= 0) {
            const QString inTheWay = largestFile == 0 ? undoDirectory() : box.quarantine();
            QVERIFY(QDir().rmdir(inTheWay));
            box.write(inTheWay, "a file where a folder should be");
        }
        const Tree before = treeOf(box.library());
        limitFileSize(largestFile > 0 ? largestFile : -1);
        const RemovalResult removed = quarantine(box, paths);
        limitFileSize(-1);
        QCOMPARE(removed.succeeded, 0);
        const QString said = removed.refusal.isEmpty() ? removed.errors.value(19) : removed.refusal;
        QVERIFY2(said.contains(reason), qPrintable(said));
        const QString unwritable = box.quarantine() + QChar(0xd800); // half a character
        QCOMPARE(removeFiles(paths, RemovalMode::Quarantine, unwritable, {}).succeeded, 0);
        QCOMPARE(treeOf(box.library()), before);
        QVERIFY(listUndoManifests().isEmpty() && box.runs().isEmpty());
    }

    void runsOfOneSecondAreKeptApart()
    {
        Sandbox box(otherFileSystem());
        QStringList manifests; // newest first
        const auto second = [&manifests](int run) { return QFileInfo(manifests.value(run)).fileName().left(20); };
        while (second(0) != second(1) || manifests.isEmpty())
            manifests.prepend(quarantine(box, { box.add(u"%1 ñ"_s.arg(manifests.size())) }).manifestPath);
        QCOMPARE(box.runs().size(), manifests.size());
        QCOMPARE(listUndoManifests(), manifests);

        const QString json = QString::fromUtf8(readFile(manifests.first()));
        const QString created = json.section(u'"', 3, 3);
        QVERIFY(QDateTime::fromString(created, u"yyyy-MM-ddTHH:mm:ss"_s).isValid());
        const QString song = u"%1 ñ"_s.arg(manifests.size() - 1);
        const QString expected = uR"({
    "createdAt": "%1",
    "entries": [
        {
            "from": "%2/%3",
            "size": 100,
            "to": "%4/%5/library/%3"
        }
    ],
    "manifestVersion": 1,
    "mode": "Move to quarantine",
    "quarantineRoot": "%4"
}
)"_s;
        QCOMPARE(json, expected.arg(created, box.library(), song, box.quarantine(), box.runs().last()));
    }

    void writeProtectedFoldersKeepTheirFiles()
    {
#ifdef Q_OS_UNIX
        const bool isRoot = geteuid() == 0; // whom no protection binds
        QVERIFY(!isRoot || seteuid(65534) == 0);
        const auto backToRoot = qScopeGuard([isRoot] { QVERIFY(!isRoot || seteuid(0) == 0); });
        if (!QTemporaryDir().isValid())
            QSKIP("needs a folder for temporary files that everybody may write to");
        Sandbox box(otherFileSystem());
        const QStringList paths { box.add(u"locked/kept"_s), box.add(u"free/moved"_s) };
        Tree expected = treeOf(box.library());
        expected.remove(u"free/moved"_s);
        QVERIFY(QFile::setPermissions(box.inLibrary(u"locked"_s), QFile::ReadOwner | QFile::ExeOwner));
        const RemovalResult removed = quarantine(box, paths);
        QCOMPARE(removed.errors, QStringList { u"Could not move "_s + paths.at(0) + u": Permission denied"_s });
        QVERIFY(QFile::setPermissions(box.inLibrary(u"free"_s), QFile::ReadOwner | QFile::ExeOwner));
        const QStringList errors { u"Could not restore "_s + paths.at(1) + u": Permission denied"_s };
        const RestoreResult restored = restoreManifest(removed.manifestPath);
        QCOMPARE(restored, RestoreResult({ 0, 1, errors, {}, restored.problems }));
        QCOMPARE(removeFiles({ paths.at(0) }, RemovalMode::Delete, {}, {}).errors,
                 QStringList { u"Could not delete "_s + paths.at(0) + u": Permission denied"_s });
        RemovalCandidate recorded = asItIs(paths.at(0));
        recorded.fullHash = u"0"_s;
        QVERIFY(QFile::setPermissions(paths.at(0), {}));
        const RemovalChecks checks { { { paths.at(0), { asItIs(box.add(u"copy"_s)) } } },
                                     { { paths.at(0), recorded } } };
        QCOMPARE(removeFiles({ paths.at(0) }, RemovalMode::Delete, {}, {}, {}, checks).errors,
                 QStringList { u"%1 was left in place: Cannot read %1: Permission denied"_s.arg(paths.at(0)) });
        QVERIFY(QFile::remove(box.inLibrary(u"copy"_s)) && QFile::setPermissions(paths.at(0), QFile::ReadOwner));
        QCOMPARE(filesBelow(box.quarantine()), QStringList { box.inRun(u"library/free/moved"_s) });
        QCOMPARE(treeOf(box.library()), expected);
        const QFile::Permissions writable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        for (const QString &folder : { u"locked"_s, u"free"_s }) // so that they can be deleted
            QVERIFY(QFile::setPermissions(box.inLibrary(folder), writable));
#endif
    }

    // Where the files go is settled before the first of them is moved, so what is made in between is in the way.
    void newNameTakenAtTheLastMoment()
    {
        Sandbox box(otherFileSystem());
        const QStringList paths = box.addMany(4, u"%1.mp3"_s);
        const Tree before = treeOf(box.library());
        const RemovalResult removed = quarantine(box, paths, [&box](qsizetype index, qsizetype, const QString &) {
            if (index == 1)
                box.write(box.inRun(u"library/1.mp3"_s), "an intruder");
            else if (isUnix && index == 2)
                std::filesystem::create_symlink("nowhere", box.inRun(u"library/2.mp3"_s).toStdString());
            else if (index == 3)
                limitFileSize(200); // no room for the manifest, so that the undo has to go by the journal
            return true;
        });
        limitFileSize(-1);
        QCOMPARE(removed.errors.size(), isUnix ? 1 : 0);
        QVERIFY(!isUnix || removed.errors.first().contains("(File too large)"_L1));
        CHECK_UNDO(box, removed.manifestPath, 4, before);
        QVERIFY(treeOf(box.inRun(u"library"_s)).value(u"1.mp3"_s).endsWith("an intruder"));
    }

    void quarantineThatGoesTakesNothingMore()
    {
        Sandbox box(otherFileSystem());
        const QStringList paths = box.addMany(4, u"%1.mp3"_s);
        const Tree before = treeOf(box.library());
        const QString away = box.quarantine() + u" away"_s;
        const RemovalResult removed = quarantine(box, paths, [&](qsizetype index, qsizetype, const QString &) {
            // What a drive leaves behind is an empty folder, into which the files would fit as well.
            return index != 2 || (QDir().rename(box.quarantine(), away) && QDir().mkdir(box.quarantine()));
        });
        QCOMPARE(removed.succeeded, 2);
        QVERIFY2(removed.errors.value(1).endsWith(" is gone"_L1), qPrintable(removed.errors.value(1)));
        QCOMPARE(treeOf(box.quarantine()), Tree());
        QVERIFY(QDir().rmdir(box.quarantine()) && QDir().rename(away, box.quarantine()));
        CHECK_UNDO(box, removed.manifestPath, 2, before);
    }

    void moveNeverReplaces()
    {
        Sandbox box(otherFileSystem());
        const QString from = box.add(u"from"_s);
        const QString occupied = box.inLibrary(u"occupied"_s);
        box.write(occupied, "other music");
        const Tree before = treeOf(box.library());
        TraceNotes notes;
        Patience patience;
        const Result<MoveOutcome> missing =
            moveFile(box.inLibrary(u"missing"_s), box.inLibrary(u"new/folder/x"_s), notes, patience);
        QVERIFY(!missing && (!isUnix || missing.error() == u"No such file or directory"_s));
        for (const auto &[folder, reason] : { std::pair(occupied, u"File exists"_s),
                                              { box.inLibrary(QString(300, u'n')), u"File name too long"_s } }) {
            const Result<MoveOutcome> refused = moveFile(from, folder + u"/x"_s, notes, patience);
            QVERIFY2(!refused && (!isUnix || refused.error() == reason), qPrintable(folder));
        }
        QVERIFY(moveFile(from, occupied, notes, patience) == MoveOutcome::Occupied);
        QCOMPARE(treeOf(box.library()), before);
        if (!otherFileSystem())
            return;
        const QString there = box.quarantine() + u"/there"_s;
        std::filesystem::create_symlink("nowhere", there.toStdString());
        QVERIFY(moveFile(from, there, notes, patience) == MoveOutcome::Occupied);
        QVERIFY(moveFile(there, from, notes, patience) == MoveOutcome::Occupied);
#ifdef Q_OS_LINUX
        unreadableKind = QFile::encodeName(there); // what leads to music would be taken for the music itself
        std::filesystem::remove(there.toStdString());
        std::filesystem::create_symlink(from.toStdString(), there.toStdString());
        const Result<MoveOutcome> unread = moveFile(there, box.inLibrary(u"new"_s), notes, patience);
        unreadableKind.clear();
        QVERIFY(!unread && unread.error() == u"Input/output error"_s);
        std::filesystem::remove(there.toStdString());
        std::filesystem::create_symlink("nowhere", there.toStdString());
#endif
        limitFileSize(50); // the copy breaks off half-way
        const Result<MoveOutcome> broken = moveFile(from, box.quarantine() + u"/new/folder/x"_s, notes, patience);
        limitFileSize(-1);
        QVERIFY(!broken && broken.error() == u"File too large"_s);
        QCOMPARE(treeOf(box.quarantine()), Tree({ { u"there"_s, "link nowhere" } }));
        QCOMPARE(treeOf(box.library()), before);
    }

    void restoreSparesWhatIsThere()
    {
        Sandbox box(otherFileSystem());
        const QStringList paths { box.add(u"occupied"_s), box.add(u"lost"_s), box.add(u"sub/back"_s),
                                  box.add(u"half back"_s), box.add(u"alike"_s) };
        Tree expected = treeOf(box.library());
        const RemovalResult removed = quarantine(box, paths);
        // What an undo across file systems leaves if it is killed before it removes the copy, and what only looks so.
        std::filesystem::copy_file(box.inRun(u"library/half back"_s).toStdString(), paths.at(3).toStdString());
        box.write(paths.at(4), QByteArray(100, '?'));
        for (const QString &path : paths.sliced(3)) {
            QFile file(path);
            const QFileInfo moved(box.inRun(u"library/"_s + QFileInfo(path).fileName()));
            QVERIFY(file.open(QFile::ReadWrite) && file.setFileTime(moved.lastModified(), QFile::FileModificationTime));
        }
        const QString lost = box.inRun(u"library/lost"_s);
        QVERIFY(QFile::remove(lost) && QDir(box.library()).rmdir(u"sub"_s));
        box.write(paths.at(0), "new music");
        expected.remove(u"lost"_s);
        expected.insert(treeOf(box.library()));
        const QStringList errors { u"A file already exists at "_s + native(paths.at(0)),
                                   u"Quarantined copy missing: "_s + native(lost),
                                   u"A file already exists at "_s + native(paths.at(4)) };
        const RestoreResult restored = restoreManifest(removed.manifestPath, {}, MissingFolders::Make);
        QCOMPARE(restored, RestoreResult({ 1, 3, errors, {}, restored.problems }));
        QCOMPARE(restored.problems.size(), 3);
        QCOMPARE(treeOf(box.library()), expected);
        QCOMPARE(filesBelow(box.quarantine()),
                 QStringList({ box.inRun(u"library/alike"_s), box.inRun(u"library/occupied"_s) }));
    }

    void undoKeepsWhatItCouldNotRestore_data()
    {
        const Rows<QString, QString> row("moved", "message"); // what is out of the way during the undo
        row("quarantine not connected", u"quarantine"_s, u"Quarantined copy missing: "_s);
        row("library not connected", u"library"_s, u"the folder that it came from is not there"_s);
        row("name taken", {}, u"A file already exists at "_s);
    }

    void undoKeepsWhatItCouldNotRestore()
    {
        QFETCH(QString, moved);
        QFETCH(QString, message);
        Sandbox box(otherFileSystem());
        const QStringList paths { box.add(u"1/a"_s), box.add(u"2/b"_s), box.add(u"3/c"_s) };
        const Tree before = treeOf(box.library());
        QString manifest = quarantine(box, paths).manifestPath;
        const UndoManifest expected = readManifest(manifest).value();
        const QString folder = moved == u"library"_s ? box.library() : box.quarantine();
        for (int undo = 0; undo < 3; ++undo) { // each of them leaves a list that is as good
            if (moved.isEmpty()) {
                for (const QString &path : paths)
                    box.write(path, "in the way");
            } else {
                QVERIFY(QDir().rename(folder, folder + u" away"_s) && QDir().mkdir(folder));
            }
            const RestoreResult restored = restoreManifest(manifest);
            QCOMPARE(restored, RestoreResult({ 0, 3, restored.errors, {}, restored.problems }));
            QVERIFY2(restored.errors.last().contains(message), qPrintable(restored.errors.last()));
            if (moved.isEmpty()) {
                for (const QString &path : paths)
                    QVERIFY(QFile::remove(path));
            } else {
                QFile::remove(folder + u'/' + quarantineLockName);
                QVERIFY(QDir().rmdir(folder) && QDir().rename(folder + u" away"_s, folder));
            }
            QVERIFY(!QFileInfo::exists(manifest));
            QCOMPARE(listUndoManifests().size(), 1);
            manifest = listUndoManifests().first();
            QVERIFY(readManifest(manifest) == expected);
        }
        // An undo that was killed leaves the whole list, and its files do not count as failures of the next.
        QVERIFY(QFile::copy(manifest, box.path(u"list"_s)));
        CHECK_UNDO(box, manifest, 3, before);
        QVERIFY(listUndoManifests().isEmpty() && QFile::rename(box.path(u"list"_s), manifest));
        CHECK_UNDO(box, manifest, 0, before);
    }

    void killedRunCanBeUndone_data()
    {
        const Rows<int> row("dieBefore");
        row("first file", 1);
        row("end of a batch", 256);
        row("middle of a batch", 300);
    }

    void killedRunCanBeUndone()
    {
        QFETCH(int, dieBefore);
        Sandbox box(otherFileSystem());
        box.addMany(320, u"%1.mp3"_s);
        const Tree before = treeOf(box.library());
        const QStringList arguments { u"quarantine"_s, box.library(), box.quarantine(), QString::number(dieBefore) };
        QVERIFY(QProcess::execute(cleanupDriver(), arguments) != 0);
        QCOMPARE(before.size() - treeOf(box.library()).size(), dieBefore);
        const QStringList manifests = listUndoManifests();
        QCOMPARE(manifests.size(), 1);
        QVERIFY(describeManifest(manifests.first()).endsWith(u" - %1 file(s)"_s.arg(dieBefore)));
        CHECK_UNDO(box, manifests.first(), dieBefore, before);
    }

    void unreadableJournalKeepsTheList()
    {
        Sandbox box(otherFileSystem());
        box.addMany(5, u"%1"_s);
        const Tree before = treeOf(box.library());
        QVERIFY(QProcess::execute(cleanupDriver(), { u"quarantine"_s, box.library(), box.quarantine(), u"3"_s }) != 0);
        const QString manifest = listUndoManifests().value(0);
        const QString journal = UndoJournal::pathFor(manifest);
        const QString aside = box.path(u"journal"_s);
        QVERIFY(QFile::rename(journal, aside));
        for (int fate = 0; fate < 3; ++fate) {
            if (fate == 0)
                QVERIFY(QDir().mkdir(journal));
            else if (fate == 1) // not to be taken for the end of the file
                box.write(journal, QByteArray(2000000, ' ') + '\n' + readFile(aside));
            else if (!isUnix || !QFileInfo::exists(u"/proc/self/mem"_s))
                break;
            else // opens, and every read of its start fails
                std::filesystem::create_symlink("/proc/self/mem", journal.toStdString());
            const RestoreResult restored = restoreManifest(manifest);
            QCOMPARE(restored, RestoreResult({ 0, 0, restored.errors }));
            QVERIFY(restored.errors.value(0).startsWith("Cannot read manifest: "_L1));
            QVERIFY(QFileInfo::exists(manifest) && describeManifest(manifest).endsWith("- 0 file(s)"_L1));
            QVERIFY(fate > 0 ? QFile::remove(journal) : QDir().rmdir(journal));
        }
        QVERIFY(QFile::rename(aside, journal));
        CHECK_UNDO(box, manifest, 3, before);
    }

    void binAndDeletionTakeOnlyTheName()
    {
        if (!isUnix)
            QSKIP("The bin of this system is not under the home folder");
        Sandbox box;
        box.add(u"kept"_s);
        const Tree kept = treeOf(box.library());
        const QString name = u"ünï\ncode.mp3"_s;
        const QStringList paths { box.add(name), box.addLink(u"kept"_s, u"link"_s), box.library() };
        const Tree whole = treeOf(box.library());
        QCOMPARE(removeFiles({ paths.at(0) }, RemovalMode::RecycleBin, {}, {}), RemovalResult({ 1, 0, 100, {}, {} }));
        QCOMPARE(treeOf(box.path(u"data/Trash/files"_s)), Tree({ { name, whole.value(name) } }));
        QCOMPARE(removeFiles(paths, RemovalMode::Delete, {}, {}).succeeded, 1);
        QCOMPARE(treeOf(box.library()), kept);
    }
};

CLEANUP_MAIN(TestCleanup)
#include "tst_cleanup.moc"
