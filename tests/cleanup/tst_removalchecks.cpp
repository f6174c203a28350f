// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalplan.h"

#include "libraryfiles.h"
#include "quarantinerun.h"
#include "rows.h"
#include "sandbox.h"
#include "secondname.h"

#include <QRegularExpression>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

RemovalCandidate scanned(const QString &path)
{
    const TrackInfo track = analyseFile(measureFile(path), ScanOptions(), nullptr);
    return { path, track.size, track.mtime, track.fullHash, track.audioHash };
}

/// Recordings with the same sound and other tags: two to be removed and two to keep, as a scan saw them.
struct Recordings final : Sandbox {
    Recordings()
    {
        for (const char *name : { "go1", "go2", "stay1", "stay2" }) {
            const QString path = inLibrary(QString::fromLatin1(name) + u".wav"_s);
            write(path, waveOf('a', 1, riffChunk("LIST", name)));
            (paths.size() < 2 ? paths : copies).append(path);
        }
        for (const QString &path : std::as_const(paths)) {
            checks.scanned.insert(path, scanned(path));
            checks.kept.insert(path, { scanned(copies.at(0)), scanned(copies.at(1)) });
        }
    }

    [[nodiscard]] RemovalResult remove(RemovalMode mode, const CleanupProgressFn &progress = {}) const
    {
        return removeFiles(paths, mode, quarantine(), { library() }, progress, checks);
    }

    /// Keeps size and time.
    void flip(const QString &path) const { write(path, readFile(path).replace("aaaa", "abaa")); }

    QStringList paths;
    QStringList copies;
    RemovalChecks checks;
};

} // namespace

class TestRemovalChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void destinationStaysInTheRunFolder()
    {
#ifdef Q_OS_UNIX // absolute paths have another form elsewhere
        const auto check = [](const QString &path, const QStringList &roots, const QString &expected) {
            QCOMPARE(quarantineDestination(path, u"/q/run"_s, roots), u"/q/run/"_s + expected);
        };
        const QString song = u"/srv/Music/a/b.mp3"_s;
        check(song, { u"/srv/Music"_s }, u"Music/a/b.mp3"_s);
        check(song, { u"/x"_s, u"/srv/Music/a/"_s, u"/srv"_s }, u"a/b.mp3"_s); // the first root that holds it
        check(song, { u"/srv/Mus"_s }, u"b.mp3"_s);
        check(song, { u"/"_s }, u"srv/Music/a/b.mp3"_s); // the top folder has no name
        check(u"/srv/Music/...b/c.mp3"_s, { u"/x"_s, u"/srv/Music"_s }, u"Music/...b/c.mp3"_s); // no way out
        check(u"/srv/Music/../../etc/b.mp3"_s, { u"/srv/Music"_s }, u"b.mp3"_s);
        check(u"a/../../../b.mp3"_s, { u"/srv/Music"_s }, u"b.mp3"_s);
#endif
    }

    void insideIsTheFolderOrBelow()
    {
        Sandbox box;
        box.add(u"music/a.mp3"_s);
        const auto inside = [&box](const QString &folder, const QString &root) {
            return isInside(box.inLibrary(folder), { box.path(u"data"_s), box.inLibrary(root) });
        };
        for (const QString &folder : { u"music"_s, u"music/"_s, u"music/not/there"_s, u"q/../music/q"_s })
            QVERIFY2(inside(folder, u"music"_s) && inside(folder, u"music/"_s), qPrintable(folder));
        for (const QString &folder : { u"music2"_s, u"mus"_s, u"."_s, u"music/../q"_s, u"music/q/../.."_s })
            QVERIFY2(!inside(folder, u"music"_s), qPrintable(folder));
        for (const QString &folder : { box.library(), QDir::rootPath() })
            QVERIFY(isInside(folder, { QDir::rootPath() }) && !isInside(folder, {}));
#ifdef Q_OS_UNIX
        box.addLink(u"music"_s, u"link"_s);
        QVERIFY(inside(u"link/q"_s, u"music"_s) && inside(u"music/q"_s, u"link"_s));
#endif
        QVERIFY(QDir().mkpath(box.inLibrary(u"seen"_s)));
        const SecondName second(box.inLibrary(u"music"_s), box.inLibrary(u"seen"_s));
        if (second.path().isEmpty())
            QSKIP("Only the administrator may mount");
        const QString within = QDir(second.path()).filePath(u"q/not/there"_s);
        QVERIFY(isInside(within, { box.inLibrary(u"music"_s) }));
        QVERIFY(isInside(box.inLibrary(u"music/q"_s), { second.path() }));
    }

    void nothingLeavesAProtectedFolder_data()
    {
        const Rows<QString, QString> row("folder", "path");
        row("itself", u"safe"_s, u"safe/go"_s);
        row("a folder above", u"safe/../."_s, u"safe/go"_s);
        row("named with a slash and a way around", u"safe/deep/../"_s, u"safe/deep/go"_s);
        row("by another path", u"safe"_s, u"seen/go"_s);
        row("protected by another path", u"seen"_s, u"safe/go"_s);
#ifdef Q_OS_UNIX
        row("through a link", u"safe"_s, u"link/deep/go"_s);
        row("protected through a link", u"link"_s, u"safe/go"_s);
        row("a link that lies there", u"safe"_s, u"safe/link-to-stay"_s);
#endif
    }

    void nothingLeavesAProtectedFolder()
    {
        QFETCH(const QString, folder);
        QFETCH(const QString, path);
        Sandbox box;
        for (const QString &name : words("stay outside safe/go safe/deep/go"))
            box.add(name);
        QVERIFY(QDir().mkpath(box.inLibrary(u"seen"_s)));
        const SecondName second(box.inLibrary(u"safe"_s), box.inLibrary(u"seen"_s));
        if (second.path().isEmpty() && (folder + path).contains(u"seen"_s))
            QSKIP("Only the administrator may mount");
#ifdef Q_OS_UNIX
        box.addLink(u"safe"_s, u"link"_s);
        box.addLink(u"../stay"_s, u"safe/link-to-stay"_s);
#endif
        const auto here = [&](const QString &name) {
            return name.startsWith(u"seen"_s) ? QDir(second.path()).filePath(name.mid(5)) : box.inLibrary(name);
        };
        const auto candidate = [](const QString &of) {
            return RemovalCandidate { of, QFileInfo(of).size(), QFileInfo(of).lastModified() };
        };
        const QString outside = here(u"outside"_s);
        const QStringList folders { here(u"is not there"_s), here(folder) };
        const bool isAllProtected = folder.endsWith(u'.');
        const Tree before = treeOf(box.library());

        // What is ticked and protected is a copy that stays, for which others may go.
        const RemovalPlan plan = planRemoval({ { 1, { candidate(here(path)), candidate(outside) }, {} } }, folders);
        QCOMPARE(plan.errors.value(0), protectedMessage(here(path)));
        QCOMPARE(plan.paths, isAllProtected ? QStringList() : QStringList(outside));

        for (const RemovalMode mode : { RemovalMode::Quarantine, RemovalMode::Delete }) {
            const RemovalResult result = removeFiles({ here(path) }, mode, box.quarantine(), { box.library() }, {},
                                                     { .kept = {}, .protectedFolders = folders });
            QCOMPARE(result.errors, QStringList(protectedMessage(here(path))));
            QCOMPARE(treeOf(box.library()), before);
        }
    }

    void changedFilesAreTakenOut()
    {
        Sandbox box;
        QList<RemovalCandidate> candidates;
        for (const QString &name : { u"same"_s, u"longer"_s, u"newer"_s, u"gone"_s }) {
            const QFileInfo info(box.add(name));
            candidates.append({ info.filePath(), info.size(), info.lastModified() });
        }
        candidates[0].mtime = QDateTime::fromSecsSinceEpoch(candidates[0].mtime.toSecsSinceEpoch()); // from the cache
        box.write(candidates[1].path, QByteArray(101, 'x'));
        candidates[1].mtime = QFileInfo(candidates[1].path).lastModified();
        candidates[2].mtime = candidates[2].mtime.addSecs(-1);
        QVERIFY(QFile::remove(candidates[3].path));

        const CheckedCandidates checked = checkCandidates(candidates);
        QCOMPARE(checked.paths, QStringList({ candidates[0].path, candidates[3].path }));
        QCOMPARE(checked.errors,
                 QStringList({ changedMessage(candidates[1].path), changedMessage(candidates[2].path) }));
    }

    void groupKeepsACopyThatStandsAlone_data()
    {
        const Rows<QString, QString, bool> row("members", "ticked", "refused");
        row("all ticked", u"a b"_s, u"a b"_s, true);
        row("the kept copy vanished", u"a gone"_s, u"a"_s, true);
        row("the kept copy is empty now", u"a empty"_s, u"a"_s, true);
        row("the kept copy is a folder now", u"a folder"_s, u"a"_s, true);
#ifdef Q_OS_UNIX
        row("the kept copy is a link to the ticked file", u"a link-to-a"_s, u"a"_s, true);
        row("the ticked path leads through the linked folder", u"alias/a a"_s, u"alias/a"_s, true);
        row("a ticked link to the kept copy", u"a link-to-a"_s, u"link-to-a"_s, false);
        row("a link through a ticked link", u"link-to-a link-to-link"_s, u"link-to-a"_s, true);
        row("target ticked in another group", u"b link-to-a"_s, u"b a"_s, true);
        row("a second hard link stays", u"hard-1 hard-2"_s, u"hard-1"_s, false);
        row("one name by two paths", u"hard-1 alias/hard-1 hard-2"_s, u"hard-1 alias/hard-1"_s, false);
        row("a symbolic link to a hard link that goes", u"hard-1 link-to-hard-1"_s, u"hard-1"_s, true);
#endif
    }

    void groupKeepsACopyThatStandsAlone()
    {
        QFETCH(QString, members);
        QFETCH(QString, ticked);
        Sandbox box;
        for (const QString &name : words("a b hard-1 folder/file"))
            box.add(name);
        box.write(box.inLibrary(u"empty"_s), {});
#ifdef Q_OS_UNIX
        for (const QString &link : words("a>link-to-a link-to-a>link-to-link hard-1>link-to-hard-1 .>alias"))
            box.addLink(link.section(u'>', 0, 0), link.section(u'>', 1));
        std::filesystem::create_hard_link(box.inLibrary(u"hard-1"_s).toStdString(),
                                          box.inLibrary(u"hard-2"_s).toStdString());
#endif
        const auto paths = [&box](const QString &names) {
            return names.split(u' ').replaceInStrings(QRegularExpression(u"^"_s), box.library() + u'/');
        };
        const QStringList tickedPaths = paths(ticked);
        const QList<RefusedGroup> refused =
            groupsWithoutSurvivor({ { 7, paths(members) } }, { tickedPaths.cbegin(), tickedPaths.cend() });
        QTEST(!refused.isEmpty(), "refused");
    }

    void contentIsComparedWithTheRecord_data()
    {
        const Rows<RemovalMode, bool, QString, QString> row("mode", "compareAgain", "wrong", "message");
        const auto permanently = RemovalMode::Delete;
        const QString own = u" was left in place: its content is not"_s;
        const QString copys = u" was left in place: the content of the copy to keep, "_s;
        row("as recorded", permanently, false, {}, {});
        row("record forged in all rows", permanently, false, u"record"_s, copys);
        row("recorded sound forged", permanently, false, u"sound"_s, copys);
        row("file changed", permanently, false, u"go1.wav"_s, own);
        row("one copy changed", permanently, false, u"stay1.wav"_s, {});
        row("copies changed", permanently, false, u"stay1.wav stay2.wav"_s, copys);
        row("quarantine", RemovalMode::Quarantine, false, u"record"_s, {});
        row("quarantine, if wished", RemovalMode::Quarantine, true, u"record"_s, copys);
        row("bin, if wished", RemovalMode::RecycleBin, true, u"record"_s, copys);
    }

    void contentIsComparedWithTheRecord()
    {
        QFETCH(RemovalMode, mode);
        QFETCH(bool, compareAgain);
        QFETCH(QString, wrong);
        QFETCH(QString, message);
        Recordings box;
        box.checks.compareAgain = compareAgain;
        for (auto file = box.checks.scanned.begin(); file != box.checks.scanned.end(); ++file) {
            QList<RemovalCandidate *> records { &*file };
            for (RemovalCandidate &copy : box.checks.kept[file.key()])
                records.append(&copy);
            QCOMPARE(file->audioHash, records.last()->audioHash);
            QVERIFY(file->fullHash != records.last()->fullHash);
            for (RemovalCandidate *record : std::as_const(records)) {
                if (wrong == u"record"_s || wrong == u"sound"_s)
                    (wrong == u"record"_s ? record->fullHash : record->audioHash) = QString(64, u'0');
                if (wrong.contains(QFileInfo(record->path).fileName()) && file.key() == box.paths.first())
                    box.flip(record->path);
            }
        }
        const QString error = box.remove(mode).errors.value(0);
        const bool goes = message.isEmpty();
        QCOMPARE(QFileInfo::exists(box.paths.first()), !goes);
        QVERIFY2(goes ? error.isEmpty() : error.startsWith(native(box.paths.first()) + message), qPrintable(error));
    }

    void comparingShowsCanBeStoppedAndReadsCopiesOnce()
    {
        Recordings box;
        QStringList shown;
        const auto stopAt = [&shown](const QString &last) {
            return [&shown, last](qsizetype index, qsizetype, const QString &path) {
                shown.append(QString::number(index) + u' ' + path);
                return !path.endsWith(last);
            };
        };
        const Tree before = treeOf(box.library());
        QCOMPARE(box.remove(RemovalMode::Delete, stopAt(u"Comparing "_s + native(box.paths.at(0)))), RemovalResult());
        QCOMPARE(treeOf(box.library()), before);
        shown.clear();
        QCOMPARE(box.remove(RemovalMode::Delete, stopAt(u"never"_s)).succeeded, 2);
        QVERIFY(shown.contains(u"0 Comparing "_s + native(box.copies.at(0))));
        QVERIFY(shown.contains(u"1 Comparing "_s + native(box.paths.at(1))));
        QVERIFY(!shown.contains(u"1 Comparing "_s + box.copies.at(0)));
    }
};

QTEST_GUILESS_MAIN(TestRemovalChecks)
#include "tst_removalchecks.moc"
