// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include "secondname.h"
#include "temporarylibrary.h"

#include <QScopeGuard>
#include <QTest>

#include <array>

#ifdef Q_OS_UNIX
#include "deepfolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <qt_windows.h>
#endif

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

class TestDiscovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void excludes()
    {
        const QStringList defaults = ScanOptions::defaultExcludes();
        QVERIFY2(isExcluded(u"D:/echoprune QUARANTINE/a.mp3"_s, defaults), "letter case does not matter");
        QVERIFY2(!isExcluded(u"D:/Music/.Trash/song.mp3"_s, defaults), "the patterns reach one level");
        QVERIFY2(!isExcluded(u"a1xmp3"_s, words("a[!0-9]xmp3 a1.mp3")), "a negated set, and a dot is a dot");
        QVERIFY2(isExcluded(u"a.mp3"_s, words("[b-a] ?.mp3")), "a broken pattern does not stop the rest");
    }

    // Paths are relative to a temporary folder, and every file holds its own path. "name>target" is a link.
    void walks_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<ScanOptions>("options");
        QTest::addColumn<QStringList>("found");
        ScanOptions options;
        const auto row = [&options](const char *name, const QByteArray &files, const QByteArray &found) {
            QTest::newRow(name) << words(files) << options << words(found);
        };
        options.minBytes = 0;
        options.roots = words("gone m/a.mp3 m m/rock/ m/rock/..");
        row("overlapping roots, no folders", "m/a.mp3 m/rock/b.mp3", "m/a.mp3 m/rock/b.mp3");
#ifdef Q_OS_UNIX
        options.roots = words("m");
        const QByteArray files = "m/.b.mp3 m/.h/a.mp3 m/c.mp3 o/d.mp3 m/loop>m m/other>o";
        row("neither hidden nor linked", files, "m/c.mp3");
        options.includeHidden = options.followSymlinks = true;
        row("hidden and linked, a loop once", files, "m/.b.mp3 m/.h/a.mp3 m/c.mp3 m/other/d.mp3");
        options.roots = words("l m");
        row("first path wins, broken link", "m/a.mp3 l/c.mp3>m/a.mp3 l/d.mp3>gone", "l/c.mp3");
#endif
        options.roots = words("m");
        options.extensions = QStringList { u" MP3 "_s, u"ogg"_s };
        options.minBytes = 10;
        row("extension and size", "m/1234.OGG m/123.mp3 m/12.flac m/nothing-mp3", "m/1234.OGG");
        options.excludes = words("m/*/B.*"); // a star stays in its folder
        row("a pattern", "m/rock/pop/b.mp3 m/rock/b.mp3.mp3", "m/rock/pop/b.mp3");
    }

    void walks()
    {
        QFETCH(const QStringList, files);
        QFETCH(ScanOptions, options);
        QFETCH(QStringList, found);
        const QTemporaryDir folder;
        for (const QString &file : files) {
            const QString path = folder.filePath(file.section(u'>', 0, 0));
            writeFile(path, file.toUtf8());
            if (file.contains(u'>'))
                QVERIFY(QFile::remove(path) && QFile::link(folder.filePath(file.section(u'>', 1)), path));
        }
        for (QStringList *paths : { &options.roots, &options.excludes, &found })
            for (QString &path : *paths)
                path = folder.filePath(path);
        QStringList actual = discover(options, 0);
        actual.sort();
        QCOMPARE(actual, found);
    }

    void oneFolderUnderTwoNamesIsListedOnce()
    {
        const QTemporaryDir folder;
        const QString music = folder.filePath(u"Music"_s);
        for (const QString &name : words("a.mp3 Inbox/a.mp3 Inbox/b.mp3"))
            writeFile(music + u'/' + name, "a");
        QVERIFY(QDir().mkpath(music + "/again"_L1));
        const SecondName second(music, music + "/again"_L1);
        if (second.path().isEmpty())
            QSKIP("Only the administrator may mount");
        QVERIFY(QFile::exists(second.path() + "/a.mp3"_L1));
        ScanOptions options;
        options.minBytes = 0;
        options.roots = QStringList { music + "/Inbox"_L1, second.path(), music };
        QStringList found = discover(options, 0);
        found.sort();
        const QString inbox = music + "/Inbox"_L1;
        QStringList expected { inbox + "/a.mp3"_L1, inbox + "/b.mp3"_L1, QDir(second.path()).filePath(u"a.mp3"_s) };
        expected.sort();
        QCOMPARE(found, expected);
    }

    void specialAndUndecodableFilesAreLeftOut()
    {
#ifdef Q_OS_UNIX
        const QTemporaryDir folder;
        const QByteArray root = QFile::encodeName(folder.path()) + '/';
        for (const char *name : { "good.mp3", "bad\xff.mp3", "bad\xff.txt" })
            ::close(::creat((root + name).constData(), 0600));
        QCOMPARE(::mkdir((root + "folder\xff").constData(), 0700), 0);
        QCOMPARE(::mkfifo((root + "pipe.mp3").constData(), 0600), 0);
        ScanOptions options;
        options.minBytes = 0;
        options.roots = QStringList { folder.path() };
        DiscoveryProblems problems;
        QCOMPARE(discover(options, 0, {}, &problems), QStringList { folder.filePath(u"good.mp3"_s) });
        QCOMPARE(problems.unusableNames, 2); // the audio file and the folder
#else
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"R.E.M/a.mp3"_s), "a");
        const std::wstring root = L"\\\\?\\" + QDir::toNativeSeparators(folder.path()).toStdWString();
        const std::wstring dotted = root + L"\\R.E.M.";
        QVERIFY(CreateDirectoryW(dotted.c_str(), nullptr));
        const auto makeFile = [](const std::wstring &path) { // which goes with the last handle
            return CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                               CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        };
        const std::array handles { makeFile(dotted + L"\\a.mp3"), makeFile(root + L"\\con.mp3") };
        const auto cleanUp = qScopeGuard([&] {
            for (const HANDLE handle : handles)
                CloseHandle(handle);
            RemoveDirectoryW(dotted.c_str());
        });
        ScanOptions options;
        options.minBytes = 0;
        options.roots = QStringList { folder.path(), folder.path().toUpper() };
        DiscoveryProblems problems;
        QCOMPARE(discover(options, 0, {}, &problems).join(u' '), folder.filePath(u"R.E.M/a.mp3"_s));
        QCOMPARE(problems.unusableNames, 1);
        QCOMPARE(problems.unreadableFolders.size(), 1);
        QCOMPARE(problems.unreadableFolders.at(0).path, folder.filePath(u"R.E.M."_s));
#endif
    }

    void unreadableFoldersAreToldOnce()
    {
#ifdef Q_OS_UNIX
        const bool isRoot = geteuid() == 0; // whom no protection binds
        QVERIFY(!isRoot || seteuid(65534) == 0);
        const auto backToRoot = qScopeGuard([isRoot] { QVERIFY(!isRoot || seteuid(0) == 0); });
        const QTemporaryDir folder;
        if (!folder.isValid())
            QSKIP("needs a folder for temporary files that everybody may write to");
        const QStringList locked = words("m/locked m/listed m/lost+found m/left-out");
        for (const QString &name : locked + words("m dropping gone"))
            writeFile(folder.filePath(name + "/a.mp3"_L1), "a");
        QVERIFY(QFile::link(folder.filePath(u"nowhere"_s), folder.filePath(u"m/broken.mp3"_s)));
        const DeepFolder deep(folder.filePath(u"m/deep"_s));
        for (const QString &name : locked)
            ::chmod(QFile::encodeName(folder.filePath(name)).constData(), name.endsWith("listed"_L1) ? 0400 : 0);
        const auto unlock = qScopeGuard([&] {
            for (const QString &name : locked)
                ::chmod(QFile::encodeName(folder.filePath(name)).constData(), 0700);
        });
        ScanOptions options;
        options.minBytes = 1;
        options.roots = words("m m/locked dropping gone");
        for (QString &root : options.roots)
            root = folder.filePath(root);
        options.excludes = QStringList { folder.filePath(u"m/left-out/*"_s) };
        DiscoveryProblems problems;
        const QStringList found = discover(
            options, 0,
            [&](int count, const QString &) { // of the two one is being walked when it goes
                QDir(folder.path()).rename(count == 1 ? u"gone"_s : u"dropping"_s, u"away%1"_s.arg(count));
            },
            &problems);
        QCOMPARE(found, (QStringList { folder.filePath(u"m/a.mp3"_s), folder.filePath(u"dropping/a.mp3"_s) }));
        QCOMPARE(problems.missingRoots, options.roots.sliced(3));
        QStringList told;
        for (const auto &[path, reason] : problems.unreadableFolders)
            told.append(path.sliced(folder.path().size() + 1).section(u"/ddd"_s, 0, 0) + u':' + reason);
        told.sort();
        QCOMPARE(told,
                 (QStringList { u"dropping:No such file or directory"_s, u"m/deep:File name too long"_s,
                                u"m/listed:Permission denied"_s, u"m/locked:Permission denied"_s }));
#else
        QSKIP("Windows knows neither such rights nor such limits");
#endif
    }

    void reportsAndStops()
    {
        const QTemporaryDir folder;
        for (int i = 0; i < 65; ++i)
            writeFile(folder.filePath(u"a/%1.mp3"_s.arg(i)), {});
        ScanOptions options;
        options.minBytes = 0;
        options.roots = QStringList { folder.filePath(u"a"_s) };
        std::atomic<qint32> cancelFlag = 0;
        qint32 cancelValue = 0;
        QStringList reports;
        const auto report = [&](int count, const QString &where) {
            reports.append(QString::number(count) + QFileInfo(where).fileName());
            cancelFlag = cancelValue;
        };
        QCOMPARE(discover(options, cancelFlag, report).size(), 65);
        QCOMPARE(std::exchange(reports, {}), words("1a 64a 65"));
        cancelValue = 1;
        QCOMPARE(discover(options, cancelFlag, report).size(), 1);
        QCOMPARE(reports, words("1a 1"));
    }
};

QTEST_GUILESS_MAIN(TestDiscovery)
#include "tst_discovery.moc"
