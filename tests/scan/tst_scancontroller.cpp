// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scancontroller.h"

#include "analysiscache.h"
#include "decoding.h"
#include "hole.h"
#include "libraryfiles.h"
#include "rows.h"
#include "scanoutcome.h"
#include "scanstages.h"
#include "temporarylibrary.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

Hook cancelAt(ScanController &controller, const QString &pattern)
{
    return [&controller, expression = QRegularExpression(pattern)](const QString &now) {
        if (now.contains(expression))
            controller.cancel();
    };
}

} // namespace

class TestScanController : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_options = ScanOptions();
        m_options.roots = QStringList { path(QString()) };
        m_options.minBytes = 0;
        m_options.detectAcoustic = false;
        writeFile(path(u"one.wav"_s), waveOf(1));
        writeFile(path(u"x/copy.wav"_s), waveOf(1));
        writeFile(path(u"x/tagged.wav"_s), waveOf(1, 6, QByteArray("note\4\0\0\0abcd", 12)));
        writeFile(path(u"other.wav"_s), waveOf(2));
        writeFile(path(u"short.wav"_s), waveOf(1, 2));
    }

    void findsDuplicates()
    {
        writeFile(path(u"damaged.wav"_s), QByteArray(50000, '\1'));
        m_options.onlyPossibleCopies = false;
        ScanController controller;
        QSignalSpy failures(&controller, &ScanController::failed);
        const Outcome outcome = scan(controller, m_options, [&](const QString &phase) {
            if (phase == "Reading tags and hashing"_L1)
                controller.start(m_options); // refused: the controller is busy
        });
        QVERIFY(failures.size() == 1 && outcome.finishes == 1 && !outcome.cancelled);
        QCOMPARE(outcome.groups.size(), 1);
        QCOMPARE(outcome.groups.first().members.size(), 3);

        const TrackInfo damaged = outcome.byName.value(u"damaged.wav"_s);
        QVERIFY(!damaged.error.isEmpty() && !damaged.analysed && damaged.fullHash.size() == 64);
        QCOMPARE(damaged.audioHash, damaged.fullHash);
        const TrackInfo tagged = outcome.byName.value(u"tagged.wav"_s);
        QVERIFY(tagged.analysed && tagged.fullHash != damaged.fullHash);
        QCOMPARE(tagged.audioHash, outcome.byName.value(u"copy.wav"_s).audioHash);
        QVERIFY(outcome.log.contains(u"Skipped 1 file(s) shorter than 5 seconds."_s));
        QCOMPARE(outcome.log.last(), u"Found 1 duplicate group(s); 0.1 MB could be reclaimed."_s);
    }

    void pauseHoldsEveryStage_data()
    {
        const Rows<QString> row("next");
        row("Scanning folders", u"Checking cache"_s);
        row("Checking cache", u"Reading tags and hashing"_s);
        row("Reading tags and hashing", u"Fingerprinting audio"_s);
        row("Fingerprinting audio", u"Fingerprinted 1 of 4"_s);
        row("Fingerprinted 1 of 4", u"Fingerprinted 2 of 4"_s);
        row("Grouping duplicates", u"Matching identical files"_s);
    }

    void pauseHoldsEveryStage()
    {
        QFETCH(const QString, next);
        const QString at = QString::fromLatin1(QTest::currentDataTag());
        m_options.detectAcoustic = true;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        m_options.decoderThreads = 1;
        m_options.useCache = false;
        for (const bool stops : { false, true }) {
            ScanController controller;
            std::atomic<bool> released = false;
            QStringList heldUntil;
            const std::unique_ptr<QThread> releaser(QThread::create([&] {
                QThread::msleep(200);
                released = true;
                stops ? controller.cancel() : controller.setPaused(false);
            }));
            const Outcome outcome = scan(controller, m_options, [&](const QString &now) {
                if (now == at && !releaser->isRunning()) {
                    controller.setPaused(true);
                    releaser->start();
                } else if (now == next) {
                    heldUntil << (released ? u"release"_s : u"too early"_s);
                }
            });
            QVERIFY(releaser->wait());
            QCOMPARE(outcome.cancelled,
                     stops && at != "Grouping duplicates"_L1); // which is noticed before or not at all
            QVERIFY2(!heldUntil.contains(u"too early"_s), qPrintable(next));
            QVERIFY(stops || !heldUntil.isEmpty());
        }
    }

    void fingerprintsAreKeptAndFailuresTriedAgain()
    {
#ifdef Q_OS_WIN // where the set-up does not bring it
        if (!hasFfmpeg())
            QSKIP("ffmpeg is not installed");
#endif
        m_options.detectAcoustic = true;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        m_options.decoderThreads = 1;
        ScanController controller;
        const Outcome cancelled = scan(controller, m_options, cancelAt(controller, u"Fingerprinted 1 of 4"_s));
        QVERIFY(cancelled.cancelled && cancelled.groups.isEmpty());
        writeFile(path(u"damaged.wav"_s), QByteArray(50000, '\1'));
        m_options.decoderThreads = 4;
        for (const int left : { 4, 1 }) { // one of the four is done; the damaged one fails each time
            const QStringList log = scan(controller, m_options).log;
            QVERIFY(log.contains(u"Reused 5 cached analysis results."_s));
            QVERIFY(log.contains(
                u"Fingerprinting %1 file(s) on 4 thread(s) using built-in analysis, ffmpeg decode."_s.arg(left)));
            QCOMPARE(log.filter(u"1 file(s) could not be decoded for fingerprinting."_s).size(), 1);
            QCOMPARE(
                log.filter(u"Could not decode %1: "_s.arg(QDir::toNativeSeparators(path(u"damaged.wav"_s)))).size(), 1);
        }
    }

    // One of two equal files is decoded, unless that fails or may have been of another content by then. What is removed
    // cannot be decoded.
    void copiesAreDecodedOnce_data()
    {
        const Rows<QString, QList<int>, int> row("when", "removed", "failures");
        row("the copy goes", u"Fingerprinting audio"_s, { 1 }, 0);
        row("the original goes", u"Fingerprinting audio"_s, { 0 }, 1);
        row("both go, the original decoded", u"Fingerprinted 3 of 4"_s, { 0, 1 }, 1);
    }

    void copiesAreDecodedOnce()
    {
#ifdef Q_OS_WIN // where the set-up does not bring it
        if (!hasFfmpeg())
            QSKIP("ffmpeg is not installed");
#endif
        QFETCH(const QString, when);
        QFETCH(const QList<int>, removed);
        QFETCH(const int, failures);
        m_options.detectAcoustic = true;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        QStringList equal = discover(m_options, 0);
        equal.removeIf([](const QString &file) { return !file.contains(QRegularExpression(u"/(one|copy)\\.wav$"_s)); });
        QCOMPARE(equal.size(), 2);
        ScanController controller;
        QStringList counts;
        const Outcome outcome = scan(controller, m_options, [&](const QString &now) {
            if (now.startsWith("Fingerprinted"_L1))
                counts << now;
            for (const int file : removed)
                now == when ? static_cast<void>(QFile::remove(equal.at(file))) : void();
        });
        QCOMPARE(counts.size(), 4);
        QCOMPARE(counts.last(), u"Fingerprinted 4 of 4"_s);
        QCOMPARE(outcome.log.filter(u"Could not decode"_s).size(), failures);
        AnalysisCache cache;
        QVERIFY(cache.open());
        QCOMPARE(cache.count(), 5 - failures);
    }

    // Two playlists of one song, with the fingerprint and the duration of the song from an earlier version, and a copy.
    void textsAreNotComparedBySound()
    {
        m_options.detectAcoustic = true;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        m_options.extensions = words("wma");
        AnalysisCache cache;
        QVERIFY(cache.open());
        for (const QString &name : words("a.wma b.wma c.wma")) {
            writeFile(path(name), "#EXTM3U\nsong.mp3\n#" + name.toUtf8().replace('c', 'b'));
            TrackInfo track = measureFile(path(name));
            track.fullHash = track.audioHash = QString(64, name.at(0) == u'a' ? u'a' : u'b');
            track.stream.durationMs = 180000;
            for (quint32 i = 0; i < 500; ++i)
                track.fingerprint.words.append(i * 0x9E3779B9);
            track.fingerprint.mask = QList<quint32>(500, 0xFFFFFFFF);
            cache.store(track, FingerprintEngine::BuiltIn);
        }
        cache.close();
        ScanController controller;
        const Outcome outcome = scan(controller, m_options);
        QVERIFY(outcome.log.contains(u"Reused 3 cached analysis results."_s));
        QVERIFY(outcome.groups.size() == 1 && outcome.groups.at(0).members.size() == 2);
        for (const TrackInfo &track : outcome.tracks) {
            QCOMPARE(track.error, u"Text, not audio: not compared by sound"_s);
            QCOMPARE(track.stream, StreamFacts());
        }
        QCOMPARE(outcome.log.filter(u"3 file(s) are text"_s).size(), 1);
        QVERIFY(outcome.log.filter(u"Fingerprinting"_s).isEmpty());

        m_options.detectAcoustic = false; // the cache then gets what is right
        QVERIFY(scan(controller, m_options).phases.contains(u"Updating the cache"_s));
        TrackInfo text = measureFile(path(u"a.wma"_s));
        QVERIFY(cache.open() && cache.lookup(text, FingerprintEngine::BuiltIn));
        QVERIFY(text.fingerprint == Fingerprint() && text.stream == StreamFacts());
    }

    // Six pieces that begin after 50 s of digital silence, and a copy of one.
    void silenceIsNoAgreement()
    {
#ifdef Q_OS_WIN // where the set-up does not bring it
        if (!hasFfmpeg())
            QSKIP("ffmpeg is not installed");
#endif
        m_options.roots = QStringList { path(u"silent"_s) };
        m_options.detectAcoustic = true;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        for (quint32 piece = 0; piece < 6; ++piece) {
            QByteArray file = waveOf('\x80', 50);
            QRandomGenerator random(piece);
            while (file.size() < 60 * 8000)
                file.append(static_cast<char>(random.generate()));
            writeFile(path(u"silent/%1.wav"_s.arg(piece)), file.replace(40, 4, little<quint32>(60 * 8000 - 44)));
        }
        QFile::copy(path(u"silent/0.wav"_s), path(u"silent/copy.wav"_s));
        ScanController controller;
        for (const int cached : { 0, 7 }) {
            const Outcome outcome = scan(controller, m_options);
            QCOMPARE(outcome.log.filter(u"Reused 7 cached"_s).size(), cached / 7);
            QCOMPARE(outcome.log.filter(u"Fingerprinting 7 file(s)"_s).size(), 1 - cached / 7);
            QCOMPARE(outcome.log.filter(u"7 file(s) are mostly silence"_s).size(), 1);
            for (const TrackInfo &track : outcome.tracks)
                QVERIFY(track.analysed && track.error.startsWith("Mostly silence in the analysed part"_L1));
            QVERIFY(outcome.groups.size() == 1 && outcome.groups.at(0).members.size() == 2);
        }
    }

    void silenceBeginsAboveSixtyPercent()
    {
        const std::atomic<qint32> notCancelled = 0;
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc }) {
            QList<TrackInfo> tracks(3);
            for (const qsizetype silent : { 60, 61 }) {
                Fingerprint &fingerprint = tracks[silent - 60].fingerprint;
                fingerprint.words = QList<quint32>(silent, 627964279) + QList<quint32>(100 - silent, 5);
                if (engine == FingerprintEngine::BuiltIn) {
                    fingerprint.mask = QList<quint32>(silent, 0) + QList<quint32>(100 - silent, 1);
                    fingerprint.words.fill(627964279); // a word like any other
                }
            }
            ScanOptions options;
            options.fingerprintEngine = engine;
            QList<TrackInfo> expected = tracks;
            expected[1].fingerprint = {};
            expected[1].error = u"Mostly silence in the analysed part: not compared by sound"_s;
            QCOMPARE(leaveOutSilence(tracks, options, { notCancelled }), expected);
            options.detectAcoustic = false;
            QCOMPARE(leaveOutSilence(tracks, options, { notCancelled }), tracks);
        }
    }

    // Every file but a touched one gets other content under its size and time: reading it would show.
    void secondScanReadsTouchedFilesOnly()
    {
        ScanController controller;
        Outcome first = scan(controller, m_options);
        for (const QString &name : discover(m_options, 0)) {
            const QFileInfo before(name);
            const bool touched = before.fileName() == "other.wav"_L1;
            const QDateTime time = before.lastModified().addDays(touched ? -1 : 0);
            if (!touched)
                writeFile(name, QByteArray(before.size(), 'x'));
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
        }
        for (TrackInfo &track : first.tracks) {
            const bool touched = track.fileName == "other.wav"_L1;
            track.mtime = track.mtime.addDays(touched ? -1 : 0);
            track.flags = touched ? 0 : TrackFromCache | TrackKeysFromCache;
        }
        const Outcome second = scan(controller, m_options);
        QVERIFY(second.log.contains(u"Reused 4 cached analysis results."_s));
        QCOMPARE(second.tracks, first.tracks);
        QCOMPARE(second.groups, first.groups);
        m_options.useCache = false;
        QVERIFY(!scan(controller, m_options).byName.value(u"one.wav"_s).error.isEmpty());
    }

    void missingDigestIsMadeUpFor()
    {
        ScanController controller;
        m_options.detectSameAudio = false;
        m_options.fingerprintEngine = FingerprintEngine::BuiltIn;
        TrackInfo one = scan(controller, m_options).byName.value(u"one.wav"_s);
        QVERIFY(one.analysed && one.audioHash.isEmpty());
        AnalysisCache cache;
        one.fingerprint.words = { 1, 2 };
        QVERIFY(cache.open());
        cache.store(one, FingerprintEngine::BuiltIn);
        m_options.detectSameAudio = true;
        m_options.detectIdentical = false; // a digest that is not asked for is not thrown away
        QCOMPARE(scan(controller, m_options).groups.value(0).members.size(), 3);
        m_options.detectIdentical = true;
        QVERIFY(scan(controller, m_options).log.contains(u"Reused 5 cached analysis results."_s));
        QVERIFY(cache.lookup(one, FingerprintEngine::BuiltIn) && one.fingerprint.words.size() == 2);
    }

    void cancels()
    {
        ScanController controller;
        QStringList reached;
        for (const auto &phase : { u"Scanning folders"_s, u"Checking cache"_s, u"Reading tags and hashing"_s }) {
            const Outcome outcome = scan(controller, m_options, cancelAt(controller, phase));
            QVERIFY(outcome.cancelled && outcome.finishes == 1 && outcome.groups.isEmpty());
            QCOMPARE(outcome.phases, reached << phase);
        }
        QVERIFY2(scan(controller, m_options).groups.size() == 1, "the next scan starts afresh");
    }

    void cancelledAnalysisIsKept()
    {
        constexpr int files = 16;
        m_options.roots = QStringList { path(u"big"_s) };
        for (int i = 0; i < files; ++i)
            QVERIFY(makeHole(path(u"big/%1.wma"_s.arg(i)), 128 * 1024 * 1024));
        ScanController controller;
        const Outcome outcome = scan(controller, m_options, cancelAt(controller, u"Analysed [1-9]"_s));
        QVERIFY(outcome.cancelled && !outcome.tracks.isEmpty() && outcome.tracks.size() < files);
        AnalysisCache cache;
        QVERIFY(cache.open() && cache.count() == outcome.tracks.size());
    }

    void filesChangeDuringTheScan()
    {
        ScanController controller;
        const Outcome outcome = scan(controller, m_options, [&](const QString &phase) {
            if (phase == "Checking cache"_L1)
                QFile::remove(path(u"other.wav"_s));
            if (phase != "Reading tags and hashing"_L1)
                return;
            QFile::remove(path(u"one.wav"_s));
            writeFile(path(u"x/copy.wav"_s), waveOf(1, 7));
        });
        const TrackInfo removed = outcome.byName.value(u"one.wav"_s);
        const TrackInfo rewritten = outcome.byName.value(u"copy.wav"_s);
        QVERIFY(outcome.byName.value(u"other.wav"_s).error.contains("vanished"_L1));
        QVERIFY(removed.error.contains("vanished"_L1) && rewritten.error.contains("changed"_L1));
        QVERIFY(!removed.analysed && !rewritten.analysed);
        QVERIFY((removed.fullHash + removed.audioHash + rewritten.fullHash + rewritten.audioHash).isEmpty());
        AnalysisCache cache;
        QVERIFY(cache.open() && cache.count() == 2);
    }

    // The database is cut at a place, and something else put there, with or without the rest behind it. Its pages have
    // 4 KiB; the third is the way to the paths, the fourth to the digests, which only a store goes.
    void damagedCacheIsReplaced_data()
    {
        const QByteArray page(4096, '\xFF');
        const Rows<qint64, QByteArray, bool, bool> row("place", "instead", "rest", "isInUse");
        row("no database", 0, QByteArray("no database ").repeated(1000), false, false);
        row("cut off", 100000, {}, false, false);
        row("a page that look-ups need", 2 * 4096, page, true, false);
        row("a page that stores need", 3 * 4096, page, true, false);
        row("damaged, and in use elsewhere", 2 * 4096, page, true, true);
    }

    void damagedCacheIsReplaced()
    {
        QFETCH(const qint64, place);
        QFETCH(const QByteArray, instead);
        QFETCH(const bool, rest);
        QFETCH(const bool, isInUse);
        const QString file = AnalysisCache::defaultFilePath();
        AnalysisCache other;
        QVERIFY(other.open());
        other.beginTransaction();
        for (int i = 0; i < 1000; ++i) {
            TrackInfo track;
            track.path = u"/m/%1.mp3"_s.arg(i);
            track.audioHash = QString::number(i).repeated(20);
            other.store(track, FingerprintEngine::BuiltIn);
        }
        other.commitTransaction();
        other.close();
        const QByteArray intact = readFile(file);
        const QByteArray damaged =
            intact.left(place) + instead + intact.sliced(rest ? place + instead.size() : intact.size());
        writeFile(file, damaged);
        const QString earlier = file + ".damaged-20000101-000000"_L1;
        writeFile(earlier, "x");
        if (isInUse)
            QVERIFY(other.open());

        ScanController controller;
        const QStringList log = scan(controller, m_options).log;
        QCOMPARE(log.filter(u"The analysis cache is damaged. It is kept as "_s).size(), isInUse ? 0 : 1);
        QCOMPARE(log.filter(u"was left as it is ("_s).isEmpty(), !isInUse);
        const QFileInfoList aside = QFileInfo(file).dir().entryInfoList({ u"*.damaged-*"_s });
        QCOMPARE(aside.size(), 1); // the latest
        QCOMPARE(aside.first().filePath() == earlier, isInUse);
        QVERIFY(isInUse || readFile(aside.first().filePath()) == damaged);
        QCOMPARE(scan(controller, m_options).log.contains(u"Reused 5 cached analysis results."_s), !isInUse);
    }

    void carriesOnWhateverIsSet()
    {
        QVERIFY(QDir().mkpath(AnalysisCache::defaultFilePath()));
        m_options.decoderThreads = -3;
        m_options.keeperPolicy = 99;
        ScanController controller;
        const Outcome outcome = scan(controller, m_options);
        QVERIFY(outcome.log.value(0).startsWith("Analysis cache unavailable ("_L1));
        QVERIFY(outcome.tracks.size() == 4 && outcome.groups.size() == 1);
    }

private:
    [[nodiscard]] QString path(const QString &name) const
    {
        return m_home->filePath(u"library/"_s + name);
    }

    std::optional<TemporaryHome> m_home;
    ScanOptions m_options;
};

QTEST_GUILESS_MAIN(TestScanController)
#include "tst_scancontroller.moc"
