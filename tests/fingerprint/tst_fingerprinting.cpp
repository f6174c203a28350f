// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analyser.h"
#include "audiofixtures.h"
#include "decoding.h"
#include "fingerprintpool.h"
#include "mediabackend.h"
#include "records.h"

#include <QAudioDecoder>
#include <QElapsedTimer>
#include <QMultiMap>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <limits>
#include <memory>
#include <thread>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

using Results = QMultiMap<int, FingerprintResult>; // several for one id would be a fault

/// Runs the pool; what it reported comes back by id.
Results run(FingerprintPool &pool, const QList<FingerprintJob> &jobs)
{
    Results results;
    QObject collector;
    QObject::connect(&pool, &FingerprintPool::completed, &collector,
                     [&](int id, const FingerprintResult &result) { results.insert(id, result); });
    pool.run(jobs);
    return results;
}

} // namespace

class TestFingerprinting : public QObject {
    Q_OBJECT

public:
    static void initMain() { preferFfmpegMediaBackend(); }

private Q_SLOTS:
    // The stand-in for fpcalc runs its audio files as scripts, so that each job says how it ends. The one for ffmpeg
    // fails on files that say so in their name and is the real tool otherwise.
    void initTestCase()
    {
        registerMetaTypes();
        const QAudioDecoder decoder; // settles which libraries Qt uses
        qputenv("EPR_FPCALC",
                QFile::encodeName(makeStandIn(path(u"fpcalc"_s), "shift 3; for f; do (. \"$f\") || exit; done")));
        const QByteArray ffmpeg = "case \"$*\" in *undecodable*) echo broken >&2; exit 1;; esac; exec ffmpeg \"$@\"";
        qputenv("EPR_FFMPEG", QFile::encodeName(makeStandIn(path(u"ffmpeg"_s), ffmpeg)));
    }

    // With fewer, and then with more jobs than threads. Every third job fails; ids are neither indexes nor in order.
    void everyJobReportsOnce()
    {
        FingerprintPool pool(4, 60, true);
        for (const int count : { 3, 0, 30 }) {
            QList<FingerprintJob> jobs;
            Results expected;
            QList<QVariantList> steps;
            for (int i = 0; i < count; ++i) {
                const int id = 1000 - 3 * i;
                const QByteArray good = "echo DURATION=200; echo FINGERPRINT=" + QByteArray::number(id);
                jobs << job(id, i % 3 == 2 ? QByteArray("echo bad >&2; exit 1") : good);
                expected.insert(id,
                                i % 3 == 2 ? FingerprintResult { {}, 0, u"bad"_s }
                                           : FingerprintResult { { { quint32(id) }, {}, {}, {} }, 200000, {} });
                steps << QVariantList { i + 1, count };
            }
            const QSignalSpy progress(&pool, &FingerprintPool::progress);
            QVERIFY(run(pool, jobs) == expected);
            QCOMPARE(static_cast<const QList<QVariantList> &>(progress), steps);
        }
    }

    // The first job finishes and cancels while the second hangs, which then is neither failed nor done; the third is
    // never begun.
    void cancellingLetsGoOfHangingTools()
    {
        FingerprintPool pool(2, 60, true);
        connect(&pool, &FingerprintPool::completed, &pool, &FingerprintPool::cancel);
        const Results results =
            run(pool, { job(1, "echo FINGERPRINT=1"), job(2, "trap '' TERM; sleep 60"), job(3, "echo FINGERPRINT=3") });
        QCOMPARE(results.keys(), QList<int>({ 1 }));
        QVERIFY(run(pool, { job(4, "echo FINGERPRINT=4") }).isEmpty());
    }

    // The pool is paused while one tool has several jobs, and at the second of them would stay for a minute.
    void pausingTakesJobsBack()
    {
        const QString number = path(u"number"_s);
        const QByteArray waits = "[ -e FILE ] || { echo $$ >FILE; sleep 60; }; ";
        QList<FingerprintJob> jobs;
        for (int id = 0; id < 9; ++id)
            jobs << job(id,
                        (id == 1 ? QByteArray(waits).replace("FILE", QFile::encodeName(number)) : QByteArray())
                            + "echo DURATION=200; echo FINGERPRINT=5");
        FingerprintPool pool(1, 60, true);
        QTimer watch;
        connect(&watch, &QTimer::timeout, &pool, [&] {
            const QByteArray process = test::readFile(number).trimmed();
            pool.setPaused(!process.isEmpty() && QFile::exists(u"/proc/"_s + QString::fromLatin1(process)));
        });
        watch.start(20);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(run(pool, jobs).size(), 9);
        QVERIFY2(clock.elapsed() < 30000, "the pool sat out its tool");
    }

    // Closing the window during a scan: a hanging tool must not hold up the program's end.
    void quittingTheThreadAbandonsTheBatch()
    {
        const QString begun = path(u"begun"_s);
        const FingerprintJob hanging = job(1, "echo >'" + QFile::encodeName(begun) + "'; exec sleep 60");
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            FingerprintPool(2, 60, true).run({ hanging, hanging });
        }));
        thread->start();
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(begun), 10000);
        thread->quit();
        QElapsedTimer clock;
        clock.start();
        QVERIFY(thread->wait(30000));
        QVERIFY2(clock.elapsed() < 4000, "the pool sat out its tools");
    }

    // Qt is asked about files that ffmpeg refuses, unless it would ask the same libraries. Which it uses is settled
    // when it first decodes; what the variable says later only changes what we take it for.
    void builtInAnalysisFallsBackToQt_data()
    {
        QTest::addColumn<QByteArray>("backend");
        QTest::newRow("the same libraries") << "ffmpeg"_ba;
        QTest::newRow("others") << "others"_ba;
    }

    void builtInAnalysisFallsBackToQt()
    {
        QFETCH(const QByteArray, backend);
        const auto restore =
            qScopeGuard([before = qgetenv("QT_MEDIA_BACKEND")] { qputenv("QT_MEDIA_BACKEND", before); });
        qputenv("QT_MEDIA_BACKEND", backend);
        QList<FingerprintJob> jobs;
        for (const auto &name : { u"a.mp3"_s, u"undecodable.mp3"_s, u"short.wav"_s, u"undecodable.wav"_s }) {
            QVERIFY(makeAudioFile(path(name), 8, name.endsWith(u"wav"_s) ? u"-t 0.4"_s : QString()));
            jobs.append({ static_cast<int>(jobs.size()), path(name) });
        }
        FingerprintPool pool(2, 5, false);
        const Results results = run(pool, jobs);
        const FingerprintResult byFfmpeg = results.value(0);
        const FingerprintResult byQt = results.value(1);
        QCOMPARE(byFfmpeg.error, QString());
        QCOMPARE(byFfmpeg.durationMs, 5000);
        QVERIFY(byFfmpeg.durationIsGuess && !results.value(2).durationIsGuess); // cut off there; decoded to its end
        QCOMPARE(byQt.error, backend == "others" ? QString() : u"broken"_s);
        if (byQt.error.isEmpty())
            QVERIFY(bitErrorRate(byFfmpeg.fingerprint.words, byQt.fingerprint.words.first(36)) < 0.03);
        for (const FingerprintResult &result : { byFfmpeg, byQt }) {
            QCOMPARE(result.fingerprint.mask.size(), result.fingerprint.words.size());
            QCOMPARE(result.fingerprint.alternativeMask.size(), result.fingerprint.alternative.size());
        }
        QCOMPARE(results.value(2).error, u"No decodable audio found"_s);
        QCOMPARE(results.value(3).error, u"broken"_s); // what Qt decodes is too short, too
    }

    // ffmpeg decodes and resamples, or Qt decodes and our own resampler follows: two roads to the same words.
    void wordsAgreeOnBothRoads_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("rate");
        QTest::addColumn<QString>("options");
        QTest::newRow("stereo MP3") << u".två 日本.mp3"_s << 44100 << u"-ac 2"_s;
        QTest::newRow("8 bits") << u" # bits?.wav"_s << 8000 << u"-c:a pcm_u8"_s;
        QTest::newRow("24 bits") << u".wav"_s << 96000 << u"-c:a pcm_s24le"_s;
        QTest::newRow("16 bits, stereo") << u".wav"_s << 48000 << u"-c:a pcm_s16le -ac 2"_s;
    }

    void wordsAgreeOnBothRoads()
    {
        QFETCH(const QString, suffix);
        QFETCH(const int, rate);
        QFETCH(const QString, options);
        const QString file = path(QString::number(rate) + suffix);
        QVERIFY(makeAudioFile(file, 10, u"-ar %1 "_s.arg(rate) + options, 96000));
        QList<float> samples;
        qint64 durationMs = 0;
        QString error;
        QVERIFY(decodeWithFfmpeg(file, 11025, 8, samples, durationMs, error));
        Analyser expected;
        expected.feed(samples.constData(), samples.size());
        Analyser analyser;
        const QtDecodeLimits limits { 8 * rate, 15000 };
        QtDecodeOutcome outcome = decodeWithQt(file, limits, analyser);
        if (outcome.error.startsWith("Timed out"_L1)) {
            qWarning("Qt's decoder stood still"); // Qt 6.4's does, once in some hundred files under load
            outcome = decodeWithQt(file, limits, analyser);
        }
        QCOMPARE(outcome.error, QString());
        // The ffmpeg back-end of Qt 6.4 never knows the duration.
        QVERIFY(outcome.durationMs == 0 || qAbs(outcome.durationMs - 10000) < 100);
        QVERIFY(bitErrorRate(analyser.main().words(), expected.main().words()) < 0.03);
        QVERIFY(bitErrorRate(analyser.alternative().words(), expected.alternative().words()) < 0.03);
    }

    void limitsEndTheDecoding()
    {
        const QString file = path(u"long.mp3"_s);
        QVERIFY(makeAudioFile(file, 600));
        Analyser analyser;
        const qint64 frames = decodeWithQt(file, { 100000, 60000 }, analyser).frames;
        QVERIFY(frames >= 100000 && frames < 110000);
        QCOMPARE(analyser.main().words().size(), (frames / 4 - 4096) / 1365);
        const QtDecodeOutcome byTime = decodeWithQt(file, { std::numeric_limits<qint64>::max(), 1 }, analyser);
        QCOMPARE(byTime.error, u"Timed out decoding audio"_s);
        QVERIFY(byTime.frames < 600 * 44100);
    }

private:
    FingerprintJob job(int id, const QByteArray &script)
    {
        return { id, makeStandIn(path(u"%1.job"_s.arg(id)), script), 200000 };
    }
    QString path(const QString &name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestFingerprinting)
#include "tst_fingerprinting.moc"
