// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "discovery.h"

#include "testfiles.h"

#include <QTemporaryDir>
#include <QTest>

#include <fstream>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
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
        QVERIFY2(!isExcluded(u"D:/Music/x.tmp.mp3"_s, words("*.tmp.mp3")), "a star stays in its folder");
        QVERIFY2(isExcluded(u"D:/Music/x.tmp.mp3"_s, words("*/*/x.tmp.mp3")), "one star for each folder");
        QVERIFY2(!isExcluded(u"a1xmp3"_s, words("a[!0-9]xmp3 a1.mp3")), "a negated set, and a dot is a dot");
        QVERIFY2(!isExcluded(u"  "_s, { u"  "_s, QString() }), "blank patterns are none");
        QVERIFY2(isExcluded(u"a.mp3"_s, words("[b-a] ?.mp3")), "a broken pattern does not stop the rest");
    }

    // Paths are relative to a temporary folder, and every file holds its own path. "name>target" is a link.
    void walks_data()
    {
        QTest::addColumn<QByteArray>("files");
        QTest::addColumn<ScanOptions>("options");
        QTest::addColumn<QByteArray>("found"); // sorted
        const auto row = [](const char *name, const char *files, const ScanOptions &options, const char *found) {
            QTest::newRow(name) << QByteArray(files) << options << QByteArray(found);
        };
        ScanOptions options;
        options.minBytes = 0;
        options.roots = words("m m/rock m/rock/..");
        row("overlapping roots", "m/a.mp3 m/rock/b.mp3", options, "m/a.mp3 m/rock/b.mp3");
        options.roots = words("gone m/a.mp3 m/rock/");
        row("roots that are no folders", "m/a.mp3 m/rock/b.mp3", options, "m/rock/b.mp3");
        options.roots = words("m");
        options.extensions = QStringList { u" MP3 "_s, u"ogg"_s };
        options.minBytes = 10;
        row("extension and size", "m/1234.OGG m/123.mp3 m/12.flac m/nothing-mp3", options, "m/1234.OGG");
        options.excludes = words("m/*/B.*");
        options.minBytes = 9;
        row("a byte less, a pattern", "m/b.mp3.mp3 m/rock/b.mp3 m/123.mp3", options, "m/123.mp3 m/b.mp3.mp3");
#ifdef Q_OS_UNIX
        options.excludes.clear();
        options.minBytes = 0;
        row("hidden", "m/.b.mp3 m/.h/a.mp3 m/c.mp3", options, "m/c.mp3");
        row("links to folders", "m/a.mp3 o/b.mp3 m/loop>m m/other>o", options, "m/a.mp3");
        options.includeHidden = options.followSymlinks = true;
        row("hidden wanted", "m/.b.mp3 m/.h/a.mp3", options, "m/.b.mp3 m/.h/a.mp3");
        row("links followed, a loop once", "m/a.mp3 o/b.mp3 m/loop>m m/other>o", options, "m/a.mp3 m/other/b.mp3");
        options.roots = words("l m");
        row("first path wins, broken link", "m/a.mp3 l/c.mp3>m/a.mp3 l/d.mp3>gone", options, "l/c.mp3");
#endif
    }

    void walks()
    {
        QFETCH(QByteArray, files);
        QFETCH(ScanOptions, options);
        QFETCH(QByteArray, found);
        const QTemporaryDir folder;
        for (const QString &file : words(files)) {
            const QString path = folder.filePath(file.section(u'>', 0, 0));
            writeFile(path, file.toUtf8());
            if (file.contains(u'>'))
                QVERIFY(QFile::remove(path) && QFile::link(folder.filePath(file.section(u'>', 1)), path));
        }
        QStringList expected = words(found);
        for (QStringList *paths : { &options.roots, &options.excludes, &expected }) {
            for (QString &path : *paths)
                path = folder.filePath(path);
        }
        QStringList actual = discover(options, 0);
        actual.sort();
        QCOMPARE(actual, expected);
    }

    void reportsAndStops()
    {
        const QTemporaryDir folder;
        for (int i = 0; i < 130; ++i)
            writeFile(folder.filePath(u"a/%1.mp3"_s.arg(i)), {});
        writeFile(folder.filePath(u"b/1.mp3"_s), {});
        ScanOptions options;
        options.minBytes = 0;
        options.roots = QStringList { folder.filePath(u"a"_s), folder.filePath(u"b"_s) };
        std::atomic<qint32> cancelFlag = 0;
        qint32 cancelValue = 0;
        QStringList reports;
        const auto report = [&](int count, const QString &where) {
            reports.append(QString::number(count) + QFileInfo(where).fileName());
            cancelFlag = cancelValue;
        };
        QCOMPARE(discover(options, cancelFlag, report).size(), 131);
        QCOMPARE(std::exchange(reports, {}), words("1a 64a 128a 131b 131"));
        cancelValue = 1;
        QCOMPARE(discover(options, cancelFlag, report).size(), 1);
        QCOMPARE(reports, words("1a 1"));
    }

#ifdef Q_OS_UNIX
    void pipesAndUndecodableNames()
    {
        const QTemporaryDir folder;
        const QByteArray base = QFile::encodeName(folder.path()) + '/';
        for (const char *name : { "caf\xe9.MP3", "caf\xe9.txt", ".caf\xe9.mp3" }) // Latin-1
            QVERIFY(std::ofstream((base + name).constData()).is_open());
        QVERIFY(mkdir((base + "d\xe9j\xe0").constData(), 0700) == 0);
        QVERIFY(mkfifo((base + "pipe.mp3").constData(), 0600) == 0);
        QVERIFY(QFile::link(folder.filePath(u"pipe.mp3"_s), folder.filePath(u"link.mp3"_s)));
        ScanOptions options;
        options.roots = QStringList { folder.path(), folder.filePath(u"."_s) };
        int undecodable = -1;
        for (const qint32 minBytes : { 0, 1 }) {
            options.minBytes = minBytes;
            QCOMPARE(discover(options, 0, {}, &undecodable), QStringList());
            QCOMPARE(undecodable, minBytes == 0 ? 2 : 1); // the first file unless it is too small, and the folder
        }
        for (const char *name : { "caf\xe9.MP3", "caf\xe9.txt", ".caf\xe9.mp3", "d\xe9j\xe0" }) // the toolkit cannot
            QVERIFY(std::remove((base + name).constData()) == 0);
    }
#endif
};

QTEST_GUILESS_MAIN(TestDiscovery)
#include "tst_discovery.moc"
