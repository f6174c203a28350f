// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"

#include "rows.h"
#include "scanstages.h"
#include "temporarylibrary.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

// What another program does to a row, how the file's size and time change, and whether the row still holds.
using RowChange = std::tuple<QByteArray, int, int, bool>;

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
    for (QString *text : { &track.fullHash, &track.audioHash, &track.tags.title, &track.tags.artist, &track.tags.album,
                           &track.tags.albumArtist, &track.tags.genre, &track.tags.year, &track.tags.comment })
        *text = u"曲 '\"%1"_s.arg(++n);
    for (qint32 *number :
         { &track.tags.trackNo, &track.stream.bitrateKbps, &track.stream.sampleRate, &track.stream.channels })
        *number = ++n;
    track.stream.durationMs = 5000000001;
    track.fingerprint.words = { 0x04030201, 0xffffffff };
    track.fingerprint.mask = { 1, 2 };
    track.fingerprint.alternative = { 3 };
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
        m_home.emplace();
        const QString file = AnalysisCache::defaultFilePath();
        QDir().mkpath(QFileInfo(file).path());
        QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s).setDatabaseName(file);
    }

    void cleanup() { QSqlDatabase::removeDatabase(u"other"_s); }

    void validatesRows_data()
    {
        QTest::addColumn<RowChange>("change");
        const auto row = [](const char *name, const QByteArray &column, int size, int msecs, bool hit) {
            QTest::newRow(name) << RowChange(column, size, msecs, hit);
        };
        row("larger", "year = year", 1, 0, false);
        row("within the second", "year = year", 0, 500, true);
        row("of another engine", "engine = 0", 0, 0, false);
        row("of another layout", "schema_version = 1", 0, 0, false);
        row("ragged", "fingerprint = x'01020304ffffffff0908'", 0, 0, true);
    }

    void validatesRows()
    {
        QFETCH(const RowChange, change);
        const auto &[column, sizeChange, mtimeChange, hit] = change;
        AnalysisCache cache;
        QVERIFY(cache.open());
        cache.store(analysed(), FingerprintEngine::Fpcalc);
        QCOMPARE(otherProgram("SELECT hex(fingerprint) || typeof(fingerprint_alt_mask) FROM tracks"),
                 u"01020304FFFFFFFFblob"_s);
        otherProgram("UPDATE tracks SET " + column);
        TrackInfo track = measured();
        track.size += sizeChange;
        track.mtime = track.mtime.addMSecs(mtimeChange);
        TrackInfo expected = hit ? analysed() : track;
        expected.mtime = track.mtime;
        expected.flags = hit ? quint64(TrackFromCache) : 0;
        QList<TrackInfo> batched { track, track };
        cache.lookupAll({ &batched[0], 1 }, FingerprintEngine::Fpcalc);
        cache.lookupAll({ &batched[1], 1 }, FingerprintEngine::Fpcalc, AnalysisCache::LookupScope::AllButFingerprint);
        QCOMPARE(batched.at(0), expected);
        QVERIFY(batched.at(1).fingerprint == Fingerprint());
        batched[1].fingerprint = expected.fingerprint;
        QCOMPARE(batched.at(1), expected);
        QCOMPARE(cache.lookup(track, FingerprintEngine::Fpcalc), hit);
        QCOMPARE(track, expected);
        QCOMPARE(cache.count(), 1); // a row that does not hold is left in place
    }

    void guessesAreKeptInTheTableOfAnEarlierVersionToo()
    {
        AnalysisCache cache;
        QVERIFY(cache.open());
        cache.close();
        otherProgram("ALTER TABLE content_keys DROP COLUMN duration_is_guess");
        QVERIFY(cache.open());
        for (const bool isGuess : { true, false }) {
            TrackInfo stored = analysed();
            stored.stream.durationIsGuess = isGuess;
            cache.store(stored, FingerprintEngine::Fpcalc);
            const TrackInfo *const rows[] { &stored };
            cache.storeKeys(rows);
            QList<TrackInfo> found { measured() };
            cache.lookupAll(found, FingerprintEngine::Fpcalc);
            cache.lookupKeys(found);
            QCOMPARE(found.at(0).stream, stored.stream);
        }
    }

    // More slices than threads, of files that are gone, which are quick to measure. Every third path has no row, and
    // one path comes twice.
    void checksOnSeveralThreads_data()
    {
        QTest::addColumn<int>("cancelAt");
        QTest::newRow("all rows") << -1;
        QTest::newRow("complete as far as reported when cancelled") << 1024;
    }

    void checksOnSeveralThreads()
    {
        QFETCH(const int, cancelAt);
        AnalysisCache cache;
        QVERIFY(cache.open());
        QStringList paths;
        cache.beginTransaction();
        for (int i = 0; i < 6000; ++i) {
            TrackInfo track;
            track.path = paths.emplaceBack(u"/m/%1.mp3"_s.arg(i == 7 ? 8 : i));
            track.stream.durationMs = i;
            if (i % 3 != 0)
                cache.store(track, ScanOptions().fingerprintEngine);
        }
        cache.commitTransaction();
        cache.close();
        std::atomic<qint32> cancelFlag = 0;
        StageContext context { cancelFlag };
        context.progress = [&](int done, int, const QString &) { cancelFlag = done == cancelAt; };
        ScanOptions options;
        options.detectIdentical = options.detectSameAudio = false;
        const auto [tracks, isDamaged] = checkCache(paths, options, context);
        QVERIFY(!isDamaged);
        QCOMPARE(tracks.size(), cancelAt < 0 ? 6000 : cancelAt);
        for (int i = 0; i < tracks.size(); ++i) {
            QCOMPARE(tracks.at(i).path, paths.at(i));
            QCOMPARE(tracks.at(i).stream.durationMs, i % 3 == 0 ? 0 : i == 7 ? 8 : i);
        }
    }

    void sharesItsFile()
    {
        AnalysisCache cache;
        QVERIFY(cache.open());
        otherProgram("BEGIN IMMEDIATE");
        cache.store(analysed(u"/m/b.mp3"_s), FingerprintEngine::BuiltIn);
        QVERIFY(cache.takeError().contains("locked"_L1));
        otherProgram("SELECT 1");
        cache.store(analysed(u"/m/b.mp3"_s), FingerprintEngine::BuiltIn);
        QVERIFY(cache.takeError().isEmpty() && cache.count() == 1);
    }

    void oneRefusedRowCostsNoOther()
    {
        AnalysisCache cache;
        QVERIFY(cache.open());
        otherProgram("CREATE TRIGGER one BEFORE INSERT ON tracks WHEN NEW.path = '/m/2.mp3' "
                     "BEGIN SELECT RAISE(ABORT, 'refused'); END");
        cache.beginTransaction();
        for (const QString &path : words("/m/1.mp3 /m/2.mp3 /m/3.mp3"))
            cache.store(analysed(path), FingerprintEngine::BuiltIn);
        cache.commitTransaction();
        QCOMPARE(cache.count(), 2);
        QVERIFY(cache.takeError().contains("refused"_L1) && cache.takeError().isEmpty());
    }

    // 300 rows in batches of 256, whose titles another program has written over: a row that is only touched keeps that.
    void touchesWhatIsThere_data()
    {
        const Rows<QByteArray, int, int> row("change", "rewritten", "fingerprints");
        row("nothing else", "SELECT 1", 0, 300);
        row("one is gone", "DELETE FROM tracks WHERE path = '/m/7'", 256, 299);
        row("one is another engine's", "UPDATE tracks SET engine = 1 WHERE path = '/m/290'", 44, 299);
        row("of another layout", "UPDATE tracks SET schema_version = 1", 300, 0);
    }

    void touchesWhatIsThere()
    {
        QFETCH(const QByteArray, change);
        QFETCH(const int, rewritten);
        QFETCH(const int, fingerprints); // which were not looked up
        AnalysisCache cache;
        QVERIFY(cache.open());
        QList<TrackInfo> tracks;
        QList<const TrackInfo *> pointers;
        for (int i = 0; i < 300; ++i)
            cache.store(tracks.emplaceBack(analysed(u"/m/%1"_s.arg(i))), FingerprintEngine::BuiltIn);
        for (TrackInfo &track : tracks) {
            track.fingerprint = {};
            pointers.append(&track);
        }
        otherProgram("UPDATE tracks SET analysed_at = 5, title = 'theirs'");
        otherProgram(change);
        cache.touchAll(pointers, FingerprintEngine::BuiltIn);
        QCOMPARE(cache.takeError(), QString());
        QCOMPARE(
            otherProgram("SELECT COUNT(*) FROM tracks WHERE analysed_at > 5 AND engine = 0 AND schema_version = 4"),
            u"300"_s);
        QCOMPARE(otherProgram("SELECT COUNT(*) FROM tracks WHERE title <> 'theirs'").toInt(), rewritten);
        QCOMPARE(otherProgram("SELECT COUNT(*) FROM tracks WHERE fingerprint <> x''").toInt(), fingerprints);
    }

    void prunesClearsAndCloses()
    {
        const QString existing = QCoreApplication::applicationFilePath();
        AnalysisCache cache;
        QVERIFY(cache.open());
        for (const QString &path : { existing, u"/m/a.mp3"_s })
            cache.store(analysed(path), FingerprintEngine::BuiltIn);
        QCOMPARE(cache.pruneMissing(), 1);
        TrackInfo track = measured(existing);
        QVERIFY(cache.lookup(track, FingerprintEngine::BuiltIn));
        QVERIFY(cache.clear() && cache.count() == 0);

        cache.store(analysed(), FingerprintEngine::BuiltIn);
        cache.close();
        QCOMPARE(QSqlDatabase::connectionNames(), words("other"));
        track = measured();
        QVERIFY(!cache.lookup(track, FingerprintEngine::BuiltIn) && !cache.clear() && cache.count() == 0);
        QVERIFY(cache.open() && cache.count() == 1);
    }

private:
    std::optional<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestAnalysisCache)
#include "tst_analysiscache.moc"
