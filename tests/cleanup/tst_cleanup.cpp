// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filemove.h"
#include "removal.h"
#include "restore.h"
#include "sandbox.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <cstdlib>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
constexpr bool isUnix = true;
#else
constexpr bool isUnix = false;
#endif

using namespace epr;
using namespace epr::test;

namespace {

constexpr auto childSwitch = "--quarantine"_L1;
const char *const noOtherFileSystem = "This machine has no second file system at hand";

QStringList undoFiles()
{
    return QDir(undoDirectory()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(entries.next());
    files.sort();
    return files;
}

RemovalResult quarantine(const Sandbox &box, const QStringList &paths, const CleanupProgressFn &progress = {})
{
    return removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), { box.library() }, progress);
}

CleanupProgressFn stopBefore(qsizetype number)
{
    return [number](qsizetype index, qsizetype, const QString &) { return index != number; };
}

void checkUndo(const Sandbox &box, const QString &manifest, qsizetype count, const Tree &before)
{
    QCOMPARE(restoreManifest(manifest), RestoreResult({ static_cast<qint32>(count), 0, {} }));
    QCOMPARE(treeOf(box.library()), before);
    QVERIFY(!QFileInfo::exists(manifest));
}

/// Lets no file of this process grow beyond the size: what a full disk does to a writer. -1 lifts the limit.
void limitFileSize([[maybe_unused]] qint64 bytes)
{
#ifdef Q_OS_UNIX
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit { bytes < 0 ? RLIM_INFINITY : static_cast<rlim_t>(bytes), RLIM_INFINITY };
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
#endif
}

/// The child of killedRunCanBeUndone: moves everything and dies before the file with the given number.
int quarantineAndDie(const QStringList &arguments)
{
    const auto die = [dieBefore = arguments.at(2).toInt()](qsizetype index, qsizetype, const QString &) {
        if (index == dieBefore) {
#ifdef Q_OS_UNIX
            std::raise(SIGKILL);
#endif
            std::_Exit(1);
        }
        return true;
    };
    const QStringList roots { arguments.at(0) };
    return removeFiles(filesBelow(roots.first()), RemovalMode::Quarantine, arguments.at(1), roots, die).failed;
}

/// A figure on what this process handed to the system for writing, which no load on the machine changes.
double ioCounter(const QByteArray &key)
{
    QFile counters(u"/proc/self/io"_s);
    const QByteArray lines = counters.open(QIODevice::ReadOnly) ? counters.readAll() : QByteArray();
    return lines.mid(lines.indexOf(key) + key.size()).split('\n').value(0).trimmed().toDouble();
}

/// Bytes and calls that it takes to quarantine so many files.
[[maybe_unused]] std::pair<double, double> quarantineCost(int files)
{
    Sandbox box;
    QStringList paths = box.addMany(files / 2, u"%1.mp3"_s);
    paths += box.addMany(files / 2, u"%1/same name.mp3"_s);
    const Tree before = treeOf(box.library());
    const double bytes = ioCounter("wchar:");
    const double calls = ioCounter("syscw:");
    // Without a root all go into one folder, half of them under one name.
    const RemovalResult removed = removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), {});
    const std::pair cost(ioCounter("wchar:") - bytes, ioCounter("syscw:") - calls);
    checkUndo(box, removed.manifestPath, files, before);
    return cost;
}

} // namespace

class TestCleanup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void undoBringsBackTheWholeTree_data();
    void undoBringsBackTheWholeTree();
    void manifestTellsExactlyWhatWasMoved();
    void fileThatCannotBeMovedStays_data();
    void fileThatCannotBeMovedStays();
    void nothingMovesWithoutAManifest();
    void failingDiskLeavesAnUndo();
    void newNameTakenAtTheLastMoment_data() { undoBringsBackTheWholeTree_data(); }
    void newNameTakenAtTheLastMoment();
    void moveNeverReplaces();
    void restoreSparesWhatIsThere();
    void damagedManifestTouchesNothing_data();
    void damagedManifestTouchesNothing();
    void stoppedRunsCanBeContinued();
    void runsInOneSecondStayApart();
    void killedRunCanBeUndone_data();
    void killedRunCanBeUndone();
    void costGrowsWithTheNumberOfFiles();
    void deletingRemovesNames();
    void recycleBinHoldsTheFile();
};

void TestCleanup::undoBringsBackTheWholeTree_data()
{
    QTest::addColumn<bool>("otherFileSystem");
    QTest::newRow("same file system") << false;
    if (isUnix)
        QTest::newRow("other file system") << true;
}

void TestCleanup::undoBringsBackTheWholeTree()
{
    QFETCH(bool, otherFileSystem);
    Sandbox box(otherFileSystem);
    if (otherFileSystem && !box.hasTwoFileSystems())
        QSKIP(noOtherFileSystem);
    QStringList names = u"1/Music/a/song.mp3|2/Music/a/song.mp3|3/Music/a/song.mp3|1/Music/README|2/Music/README|"
                        "out/song.mp3|out/2/song.mp3|1/Music/Бајага/Живи песма.mp3|1/Music/سلام/أغنية \u202e.mp3|"
                        "2/Music/雨/曲 🎵.flac|2/Music/%1 %2.mp3|1/Music/.hidden.mp3"_s.split(u'|');
    names.append(u"1/Music/"_s + QString(isUnix ? 251 : 100, u'n'));
    if (isUnix)
        names.append(u"1/Music/two\nlines\t\".mp3"_s);
    QStringList paths { box.add(u"1/Music/big.wav"_s, 3000000) };
    for (const QString &name : names)
        paths.append(box.add(name));
    box.add(u"1/Music/kept.mp3"_s);
    if (isUnix)
        paths.append(box.addLink(u"kept.mp3"_s, u"1/Music/link.mp3"_s));
    const Tree before = treeOf(box.library());

    const QStringList roots { box.inLibrary(u"1/Music"_s), box.inLibrary(u"2/Music"_s), box.inLibrary(u"3/Music/"_s) };
    const RemovalResult removed = removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), roots);
    const auto count = static_cast<qint32>(paths.size());
    QCOMPARE(removed, RemovalResult({ count, 0, 3000000 + 100 * names.size(), {}, removed.manifestPath }));
    QCOMPARE(listUndoManifests(), QStringList { removed.manifestPath });
    for (const QString &path : paths)
        QVERIFY2(!entryExists(path), qPrintable(path));
    for (const QString &name : { u"Music/a/song.mp3"_s, u"Music/a/song (2).mp3"_s, u"Music/a/song (3).mp3"_s,
                                 u"Music/README (2)"_s, u"song.mp3"_s, u"song (2).mp3"_s })
        QVERIFY2(QFileInfo::exists(box.inRun(name)), qPrintable(name));
    checkUndo(box, removed.manifestPath, count, before);
    QCOMPARE(filesBelow(box.quarantine()), QStringList());
}

void TestCleanup::manifestTellsExactlyWhatWasMoved()
{
    Sandbox box;
    const QString path = box.add(u"Ünïcode\u2028.mp3"_s);
    const RemovalResult removed = quarantine(box, { box.inLibrary(u"gone"_s), path });
    QCOMPARE(undoFiles(), QStringList { u"undo-%1.json"_s.arg(box.runs().value(0)) });

    QFile file(removed.manifestPath);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QJsonObject json = QJsonDocument::fromJson(bytes).object();
    QCOMPARE(bytes, QJsonDocument(json).toJson(QJsonDocument::Indented));
    const QDateTime created = QDateTime::fromString(json.take("createdAt"_L1).toString(), Qt::ISODate);
    QCOMPARE(created.toString(u"yyyyMMdd-HHmmss"_s), box.runs().value(0));
    const QString expected = u"{\"entries\":[{\"from\":\"%1\",\"size\":100,\"to\":\"%2\"}],\"manifestVersion\":1,"
                             "\"mode\":\"Move to quarantine\",\"quarantineRoot\":\"%3\"}"_s;
    QCOMPARE(QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Compact)),
             expected.arg(path, box.inRun(u"library/Ünïcode\u2028.mp3"_s), box.quarantine()));
    const QString when = QLocale().toString(created, u"d MMM yyyy h:mm ap"_s);
    QCOMPARE(describeManifest(removed.manifestPath), when + u" - 1 file(s)"_s);
}

void TestCleanup::fileThatCannotBeMovedStays_data()
{
    QTest::addColumn<QString>("victim");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("otherFileSystem");

    QTest::newRow("vanished") << u"vanished"_s << u"%1 no longer exists"_s << false;
    QTest::newRow("a folder now") << u"folder"_s << u"Could not move %1"_s << false;
    if (!isUnix)
        return;
    QTest::newRow("a link that leads nowhere") << u"dangling"_s << u"%1 no longer exists"_s << false;
    QTest::newRow("folder is read-only") << u"read-only/victim"_s << u"Could not move %1"_s << false;
    QTest::newRow("read-only, other file system") << u"read-only/victim"_s << u"Could not move %1"_s << true;
    QTest::newRow("unreadable, other file system") << u"unreadable"_s << u"Could not move %1"_s << true;
}

void TestCleanup::fileThatCannotBeMovedStays()
{
    QFETCH(QString, victim);
    QFETCH(QString, message);
    QFETCH(bool, otherFileSystem);
    Sandbox box(otherFileSystem);
    if (otherFileSystem && !box.hasTwoFileSystems())
        QSKIP(noOtherFileSystem);
    const QStringList paths { box.add(u"first"_s), box.inLibrary(victim), box.add(u"last"_s) };
    for (const QString &name : { u"folder/inner"_s, u"read-only/victim"_s, u"unreadable"_s })
        box.add(name);
    if (isUnix)
        box.addLink(u"nowhere"_s, u"dangling"_s);
    const Tree before = treeOf(box.library());
    QFile::setPermissions(box.inLibrary(u"read-only"_s), QFile::Permissions(0x5555));
    QFile::setPermissions(box.inLibrary(u"unreadable"_s), {});
    auto unprivileged = std::make_unique<Unprivileged>();
    const RemovalResult removed = quarantine(box, paths);
    const qsizetype quarantined = filesBelow(box.quarantine()).size();
    const RestoreResult restored = restoreManifest(removed.manifestPath);
    const RemovalResult alone = quarantine(box, { paths.at(1) });
    unprivileged.reset();
    QFile::setPermissions(box.inLibrary(u"read-only"_s), QFile::Permissions(0x7777));
    QFile::setPermissions(box.inLibrary(u"unreadable"_s), QFile::Permissions(0x6666));

    QCOMPARE(removed, RemovalResult({ 2, 1, 200, { message.arg(paths.at(1)) }, removed.manifestPath }));
    QCOMPARE(quarantined, 2);
    QCOMPARE(restored, RestoreResult({ 2, 0, {} }));
    QCOMPARE(alone, RemovalResult({ 0, 1, 0, { message.arg(paths.at(1)) }, {} }));
    QCOMPARE(undoFiles(), QStringList());
    QCOMPARE(box.runs().size(), 1);
    QCOMPARE(treeOf(box.library()), before);
}

void TestCleanup::nothingMovesWithoutAManifest()
{
    for (const bool blockUndo : { true, false }) {
        Sandbox box;
        const QStringList paths = box.addMany(2, u"%1"_s);
        const QString inTheWay = blockUndo ? undoDirectory() : box.quarantine();
        QVERIFY(QDir().rmdir(inTheWay));
        box.write(inTheWay, "a file where a folder should be");
        const Tree before = treeOf(box.library());
        const RemovalResult removed = quarantine(box, paths);
        QCOMPARE(removed, RemovalResult({ 0, 2, 0, removed.errors, {} }));
        const QString reason = blockUndo ? u"no undo manifest can be written ("_s : u"the quarantine folder "_s;
        QVERIFY(removed.errors.value(1).startsWith(u"Could not move %1: "_s.arg(paths.at(1)) + reason));
        QCOMPARE(treeOf(box.library()), before);
        QCOMPARE(box.runs(), QStringList());
    }
}

void TestCleanup::failingDiskLeavesAnUndo()
{
    if (!isUnix)
        return;
    Sandbox box;
    const QStringList paths = box.addMany(600, u"%1.mp3"_s);
    const Tree before = treeOf(box.library());
    const RemovalResult removed = quarantine(box, paths, [](qsizetype index, qsizetype, const QString &) {
        if (index == 10) // a little of the next lines still fits into the journal
            limitFileSize(QFileInfo(undoDirectory() + u'/' + undoFiles().value(0)).size() + 300);
        return true;
    });
    limitFileSize(-1);

    QVERIFY2(removed.succeeded >= 11 && removed.succeeded < 600, qPrintable(QString::number(removed.succeeded)));
    QCOMPARE(removed.failed, 600 - removed.succeeded);
    QCOMPARE(removed.errors.size(), removed.failed + 1);
    QVERIFY(removed.errors.first().contains(u"the undo journal cannot be written"_s));
    QVERIFY(removed.errors.last().contains(u"could not be completed"_s));
    QCOMPARE(filesBelow(box.quarantine()).size(), removed.succeeded);
    QVERIFY(describeManifest(removed.manifestPath).endsWith(u" - %1 file(s)"_s.arg(removed.succeeded)));
    checkUndo(box, removed.manifestPath, removed.succeeded, before);
    QCOMPARE(undoFiles(), QStringList());
}

// Where the files go is settled before the first of them is moved, so what is made in between is in the way.
void TestCleanup::newNameTakenAtTheLastMoment()
{
    QFETCH(bool, otherFileSystem);
    Sandbox box(otherFileSystem);
    if (otherFileSystem && !box.hasTwoFileSystems())
        QSKIP(noOtherFileSystem);
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
    QVERIFY(QFileInfo::exists(box.inRun(u"library/1 (2).mp3"_s)));
    checkUndo(box, removed.manifestPath, 4, before);
    QVERIFY(treeOf(box.inRun(u"library"_s)).value(u"1.mp3"_s).endsWith("an intruder"));
}

void TestCleanup::moveNeverReplaces()
{
    Sandbox box(isUnix);
    const QString from = box.add(u"from"_s);
    box.write(box.path(u"occupied"_s), "other music");
    const Tree before = treeOf(box.path(QString()));
    QCOMPARE(moveFile(from, box.inLibrary(u"from/inside a file"_s)), MoveOutcome::Failed);
    QCOMPARE(moveFile(box.inLibrary(u"missing"_s), box.path(u"new/folder/x"_s)), MoveOutcome::Failed);
    QCOMPARE(moveFile(from, box.path(u"occupied"_s)), MoveOutcome::Occupied);
    QCOMPARE(treeOf(box.path(QString())), before);
    if (!box.hasTwoFileSystems())
        QSKIP(noOtherFileSystem);
    const QString there = box.quarantine() + u"/there"_s;
    std::filesystem::create_symlink("nowhere", there.toStdString());
    QCOMPARE(moveFile(from, there), MoveOutcome::Occupied);
    QCOMPARE(moveFile(there, from), MoveOutcome::Occupied);
    limitFileSize(50); // the copy breaks off half-way
    const MoveOutcome broken = moveFile(from, box.quarantine() + u"/new/folder/x"_s);
    limitFileSize(-1);
    QCOMPARE(broken, MoveOutcome::Failed);
    QCOMPARE(treeOf(box.quarantine()), Tree({ { u"there"_s, "link nowhere" } }));
    QCOMPARE(treeOf(box.path(QString())), before);
}

void TestCleanup::restoreSparesWhatIsThere()
{
    Sandbox box;
    QStringList paths { box.add(u"occupied"_s), box.add(u"lost"_s), box.add(u"sub/back"_s), box.add(u"blocked/x"_s) };
    Tree expected = treeOf(box.library());
    const RemovalResult removed = quarantine(box, paths);
    QCOMPARE(removed.succeeded, 4);
    const QString runFolder = box.inRun(u"library"_s);
    QVERIFY(QFile::remove(runFolder + u"/lost"_s) && QDir(box.library()).rmdir(u"sub"_s));
    QVERIFY(QDir(box.library()).rmdir(u"blocked"_s));
    box.write(box.inLibrary(u"blocked"_s), "a file where the folder was");
    box.write(paths.at(0), "new music");
    expected.remove(u"lost"_s);
    expected.remove(u"blocked/x"_s);
    expected.insert(treeOf(box.library()));

    const QStringList errors { u"A file already exists at %1"_s.arg(paths.at(0)),
                               u"Quarantined copy missing: %1/lost"_s.arg(runFolder),
                               u"Could not restore %1"_s.arg(paths.at(3)) };
    QCOMPARE(restoreManifest(removed.manifestPath), RestoreResult({ 1, 3, errors }));
    QCOMPARE(treeOf(box.library()), expected);
    QCOMPARE(treeOf(runFolder).keys().join(u' '), u"blocked blocked/x occupied sub"_s);
    QCOMPARE(undoFiles(), QStringList());
}

void TestCleanup::damagedManifestTouchesNothing_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<int>("failed"); // -1 for a manifest that cannot be read

    QTest::newRow("cut off") << QByteArray("[") << -1;
    QTest::newRow("entries of a wrong type") << QByteArray(R"({"from": "L/x"})") << -1;
    QTest::newRow("wrong types inside") << QByteArray(R"([1, [], {}, {"from": 1, "to": "L/a"}, {"from": "L/x"}])") << 0;
    QTest::newRow("parent parts") << QByteArray(R"([{"from": "L/sub/../x", "to": "L/a"}])") << 1;
    QTest::newRow("parent parts below") << QByteArray(R"([{"from": "L/x", "to": "L/sub/../a"}])") << 1;
    QTest::newRow("relative") << QByteArray(R"([{"from": "x", "to": "L/a"}])") << 1;
    QTest::newRow("relative below") << QByteArray(R"([{"from": "L/x", "to": "a"}])") << 1;
    QTest::newRow("a folder") << QByteArray(R"([{"from": "L/x", "to": "L/sub"}])") << 1;
    QTest::newRow("onto itself") << QByteArray(R"([{"from": "L/a", "to": "L/a"}])") << 1;
}

void TestCleanup::damagedManifestTouchesNothing()
{
    QFETCH(QByteArray, entries);
    QFETCH(int, failed);
    Sandbox box;
    box.add(u"a"_s);
    box.add(u"sub/b"_s);
    const Tree before = treeOf(box.library());
    const QString manifest = undoDirectory() + u"/undo-x.json"_s;
    box.write(manifest, "{\"entries\": " + entries.replace("L/", box.library().toUtf8() + '/') + '}');
    QVERIFY(describeManifest(manifest).startsWith(u"undo-x.json - "_s));

    QDir::setCurrent(box.library());
    const RestoreResult restored = restoreManifest(manifest);
    QDir::setCurrent(QDir::rootPath());
    QCOMPARE(restored, RestoreResult({ 0, std::max(failed, 0), restored.errors }));
    QCOMPARE(restored.errors.size(), std::abs(failed));
    QVERIFY(failed >= 0 || restored.errors.first().startsWith(u"Cannot read manifest: "_s));
    QCOMPARE(QFileInfo::exists(manifest), failed < 0);
    QCOMPARE(treeOf(box.library()), before);
}

void TestCleanup::stoppedRunsCanBeContinued()
{
    Sandbox box;
    const QStringList paths = box.addMany(5, u"%1"_s);
    const Tree before = treeOf(box.library());
    QCOMPARE(quarantine(box, paths, stopBefore(0)), RemovalResult());
    QCOMPARE(undoFiles(), QStringList());

    const RemovalResult removed = quarantine(box, paths, stopBefore(4));
    QCOMPARE(removed, RemovalResult({ 4, 0, 400, {}, removed.manifestPath }));
    QVERIFY(QFileInfo::exists(paths.at(4)));
    QCOMPARE(restoreManifest(removed.manifestPath, stopBefore(3)), RestoreResult({ 3, 0, {} }));
    QVERIFY(describeManifest(removed.manifestPath).endsWith(u" - 1 file(s)"_s));
    checkUndo(box, removed.manifestPath, 1, before);
}

void TestCleanup::runsInOneSecondStayApart()
{
    Sandbox box;
    const QStringList paths = box.addMany(12, u"%1"_s);
    const Tree before = treeOf(box.library());
    QStringList newestFirst;
    for (const QString &path : paths)
        newestFirst.prepend(quarantine(box, { path }).manifestPath);
    QCOMPARE(listUndoManifests(), newestFirst);
    QCOMPARE(box.runs().size(), 12);
    for (const QString &manifest : newestFirst)
        QCOMPARE(restoreManifest(manifest).succeeded, 1);
    QCOMPARE(treeOf(box.library()), before);
}

void TestCleanup::killedRunCanBeUndone_data()
{
    QTest::addColumn<int>("dieBefore"); // -1 to be killed from outside
    QTest::addColumn<bool>("otherFileSystem");

    QTest::newRow("before the first file") << 0 << false;
    QTest::newRow("after the first file") << 1 << false;
    QTest::newRow("at the end of a batch") << 256 << false;
    QTest::newRow("in the middle of a batch, other file system") << 300 << true;
    QTest::newRow("from outside") << -1 << false;
    QTest::newRow("from outside while copying") << -1 << true;
}

void TestCleanup::killedRunCanBeUndone()
{
    QFETCH(int, dieBefore);
    QFETCH(bool, otherFileSystem);
    Sandbox box(otherFileSystem);
    if (otherFileSystem && !box.hasTwoFileSystems())
        QSKIP(noOtherFileSystem);
    box.addMany(320, u"%1.mp3"_s);
    const Tree before = treeOf(box.library());

    QProcess child;
    const QStringList arguments { childSwitch, box.library(), box.quarantine(), QString::number(dieBefore) };
    child.start(QCoreApplication::applicationFilePath(), arguments);
    QVERIFY(child.waitForStarted());
    if (dieBefore < 0) {
        QTRY_VERIFY(!filesBelow(box.quarantine()).isEmpty());
        child.kill();
    }
    QVERIFY(child.state() == QProcess::NotRunning || child.waitForFinished());
    const qsizetype moved = before.size() - treeOf(box.library()).size();
    QCOMPARE(dieBefore < 0 ? -1 : moved, dieBefore);
    const QStringList manifests = listUndoManifests();
    QCOMPARE(manifests.size(), dieBefore == 0 ? 0 : 1);
    if (dieBefore == 0)
        return;
    // A copy that is in place while its original is not yet removed counts as well.
    static const QRegularExpression form(u"^\\d+ \\w{3} \\d{4} \\d+:\\d\\d [ap]m - (\\d+) file"_s);
    const int counted = form.match(describeManifest(manifests.first())).captured(1).toInt();
    QVERIFY2(counted == moved || (dieBefore < 0 && counted == moved + 1), qPrintable(QString::number(counted)));
    QCOMPARE(restoreManifest(manifests.first()).succeeded, moved);
    QCOMPARE(treeOf(box.library()), before);
    QCOMPARE(undoFiles(), QStringList());
}

void TestCleanup::costGrowsWithTheNumberOfFiles()
{
#ifdef Q_OS_LINUX
    if (QFileInfo::exists(u"/dev/shm"_s))
        qputenv("TMPDIR", "/dev/shm"); // the disk has nothing to do with it
    const auto [fewBytes, fewCalls] = quarantineCost(2000);
    const auto [manyBytes, manyCalls] = quarantineCost(20000);
    qunsetenv("TMPDIR");
    qInfo("2,000 files: %.0f bytes, %.0f calls; 20,000: %.0f, %.0f", fewBytes, fewCalls, manyBytes, manyCalls);
    QVERIFY(fewBytes > 0 && manyBytes < 11.5 * fewBytes);
    QVERIFY(fewCalls > 0 && manyCalls < 11.5 * fewCalls);
#endif
}

void TestCleanup::deletingRemovesNames()
{
    Sandbox box;
    box.add(u"kept"_s);
    const Tree kept = treeOf(box.library());
    QStringList paths { box.add(u"a"_s), box.inLibrary(u"gone"_s), box.library() };
    const RemovalResult unknown = removeFiles({ paths.at(0) }, RemovalMode { 3 }, box.quarantine(), {});
    QCOMPARE(unknown, RemovalResult({ 0, 1, 0, { u"Unknown way of removing %1"_s.arg(paths.at(0)) }, {} }));
    QVERIFY(QFileInfo::exists(paths.at(0)));
    if (isUnix)
        paths.append(box.addLink(u"kept"_s, u"link"_s));
    const QStringList errors { u"%1 no longer exists"_s.arg(paths.at(1)), u"Could not delete %1"_s.arg(paths.at(2)) };
    QCOMPARE(removeFiles(paths, RemovalMode::Delete, box.quarantine(), {}),
             RemovalResult({ static_cast<qint32>(paths.size() - 2), 2, 100, errors, {} }));
    QCOMPARE(treeOf(box.library()), kept);
    QCOMPARE(undoFiles(), QStringList());
}

void TestCleanup::recycleBinHoldsTheFile()
{
    if (!isUnix)
        return;
    Sandbox box;
    box.add(u"kept.mp3"_s);
    const Tree kept = treeOf(box.library());
    const QString name = u"ünï\ncode.mp3"_s;
    const QString path = box.add(name);
    const Tree whole = treeOf(box.library());
    const QString unavailable = u"Recycle bin unavailable for %1"_s;
    box.write(box.path(u"data"_s), "a file where the bin should be");
    QCOMPARE(removeFiles({ path }, RemovalMode::RecycleBin, {}, {}),
             RemovalResult({ 0, 1, 0, { unavailable.arg(path) }, {} }));
    QCOMPARE(treeOf(box.library()), whole);

    QVERIFY(QFile::remove(box.path(u"data"_s)));
    QCOMPARE(removeFiles({ path, box.library() }, RemovalMode::RecycleBin, {}, {}),
             RemovalResult({ 1, 1, 100, { unavailable.arg(box.library()) }, {} }));
    QCOMPARE(treeOf(box.library()), kept);
    QCOMPARE(treeOf(box.path(u"data/Trash/files"_s)), Tree({ { name, whole.value(name) } }));
    QCOMPARE(undoFiles(), QStringList());
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"epr-test"_s);
    if (!isUnix)
        QStandardPaths::setTestModeEnabled(true); // in the child too
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == childSwitch)
        return quarantineAndDie(arguments.sliced(2));
    TestCleanup test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cleanup.moc"
