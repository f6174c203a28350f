// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"

#include "testfiles.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

TrackInfo measured(const QString &path = u"/m/a.mp3"_s)
{
    TrackInfo track;
    track.path = path;
    track.size = 5000000000;
    track.mtime = QDateTime::fromMSecsSinceEpoch(1700000000400);
    return track;
}

TrackInfo analysed(const QString &path = u"/m/a.mp3"_s)
{
    TrackInfo track = measured(path);
    int n = 0; // no two fields are alike
    for (QString *text : { &track.fullHash, &track.audioHash, &track.title, &track.artist, &track.album,
                           &track.albumArtist, &track.genre, &track.year, &track.comment })
        *text = u"曲 '\"%1"_s.arg(++n);
    for (qint32 *number : { &track.trackNo, &track.bitrateKbps, &track.sampleRate, &track.channels })
        *number = ++n;
    track.durationMs = 5000000001;
    track.fingerprint = { 0x04030201, 0xffffffff };
    track.fingerprintMask = { 1, 2 };
    track.fingerprintAlt = { 3 };
    track.analysed = true;
    return track;
}

// What another program does to the file, on a connection of its own. A transaction lasts until the next statement.
QString otherProgram(const QByteArray &statement)
{
    QSqlDatabase db = QSqlDatabase::database(u"other"_s);
    db.rollback();
    QSqlQuery query(db);
    if (!query.exec(QString::fromUtf8(statement)))
        qFatal("%ls", qUtf16Printable(query.lastError().text()));
    return query.next() ? query.value(0).toString() : QString();
}

} // namespace

class TestAnalysisCache : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u"QSql"_s));
        m_data.emplace();
        const QString file = AnalysisCache::defaultFilePath();
        QDir().mkpath(QFileInfo(file).path());
        QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s).setDatabaseName(file);
    }

    void cleanup() { QSqlDatabase::removeDatabase(u"other"_s); }

    void validatesRows_data()
    {
        QTest::addColumn<QByteArray>("column"); // of the row, set by another program
        QTest::addColumn<int>("sizeChange"); // of the file
        QTest::addColumn<int>("mtimeChange");
        QTest::addColumn<bool>("hit");
        QTest::newRow("unchanged") << QByteArray("year = year") << 0 << 0 << true;
        QTest::newRow("other size") << QByteArray("year = year") << 1 << 0 << false;
        QTest::newRow("touched") << QByteArray("year = year") << 0 << 1000 << false;
        QTest::newRow("touched within the second") << QByteArray("year = year") << 0 << 500 << true;
        QTest::newRow("other engine") << QByteArray("engine = 0") << 0 << 0 << false;
        QTest::newRow("older layout") << QByteArray("schema_version = 1") << 0 << 0 << false;
        QTest::newRow("ragged blob") << QByteArray("fingerprint = x'01020304ffffffff0908'") << 0 << 0 << true;
    }

    void validatesRows()
    {
        QFETCH(QByteArray, column);
        QFETCH(int, sizeChange);
        QFETCH(int, mtimeChange);
        QFETCH(bool, hit);
        AnalysisCache cache;
        QVERIFY(cache.open());
        cache.store(analysed(), 1);
        QCOMPARE(otherProgram("SELECT hex(fingerprint) || typeof(fingerprint_alt_mask) FROM tracks"),
                 u"01020304FFFFFFFFblob"_s);
        otherProgram("UPDATE tracks SET " + column);
        TrackInfo track = measured();
        track.size += sizeChange;
        track.mtime = track.mtime.addMSecs(mtimeChange);
        TrackInfo expected = hit ? analysed() : track;
        expected.mtime = track.mtime;
        if (hit)
            expected.flags = TrackFromCache;
        QCOMPARE(cache.lookup(track, 1), hit);
        QCOMPARE(track, expected);
        QCOMPARE(cache.count(), 1); // a row that does not hold is left in place
    }

    void refusesOtherFiles()
    {
        AnalysisCache cache;
        QString error;
        otherProgram("CREATE TABLE tracks AS SELECT '/m/a.mp3' AS location, 9 AS layout");
        QVERIFY(!cache.open(&error) && error.contains("no such column"_L1));
        QCOMPARE(otherProgram("SELECT location || layout FROM tracks"), u"/m/a.mp39"_s);

        const QByteArray content = QByteArray("no database ").repeated(1000);
        QSqlDatabase::database(u"other"_s).close();
        writeFile(AnalysisCache::defaultFilePath(), content);
        QVERIFY(!cache.open(&error) && !cache.isOpen() && error.contains("not a database"_L1));
        QCOMPARE(readFile(AnalysisCache::defaultFilePath()), content);
    }

    void sharesItsFile()
    {
        AnalysisCache cache;
        AnalysisCache reader;
        QVERIFY(cache.open() && reader.open());
        cache.beginTransaction();
        cache.store(analysed(), 0);
        TrackInfo track = measured();
        QVERIFY(!reader.lookup(track, 0));
        cache.commitTransaction();
        QVERIFY(reader.lookup(track, 0));
        QCOMPARE(otherProgram("PRAGMA wal_checkpoint(TRUNCATE)"), u"0"_s); // nobody is still reading

        otherProgram("BEGIN IMMEDIATE");
        cache.beginTransaction();
        cache.store(analysed(u"/m/b.mp3"_s), 0);
        cache.commitTransaction();
        QVERIFY2(!cache.lookup(track, 0), "the connection is left alone until the error is taken");
        QVERIFY(cache.takeError().contains("locked"_L1));
        QVERIFY(cache.lookup(track, 0));
        otherProgram("SELECT 1");
        cache.store(analysed(u"/m/b.mp3"_s), 0);
        QVERIFY(cache.takeError().isEmpty() && reader.count() == 2);
    }

    void prunesClearsAndCloses()
    {
        const QString existing = QCoreApplication::applicationFilePath();
        AnalysisCache cache;
        QVERIFY(cache.open());
        for (const QString &path : { existing, u"/m/a.mp3"_s, QString() })
            cache.store(analysed(path), 0);
        QCOMPARE(cache.pruneMissing(), 1);
        QCOMPARE(cache.pruneMissing(), 0);
        TrackInfo track = measured(existing);
        QVERIFY(cache.lookup(track, 0));
        QVERIFY(cache.clear() && cache.clear() && cache.count() == 0);
        QCOMPARE(cache.fileSize(), QFileInfo(cache.filePath()).size());

        cache.store(analysed(), 0);
        cache.close();
        QCOMPARE(QSqlDatabase::connectionNames(), words("other"));
        track = measured();
        QVERIFY(!cache.lookup(track, 0) && !cache.clear());
        QCOMPARE(cache.count() + cache.fileSize() + cache.pruneMissing(), 0);
        QVERIFY(cache.open() && cache.count() == 1);
    }

private:
    std::optional<DataFolder> m_data;
};

QTEST_GUILESS_MAIN(TestAnalysisCache)
#include "tst_analysiscache.moc"
