// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scancontroller.h"

#include "analysiscache.h"
#include "discovery.h"
#include "testfiles.h"

#include <QDataStream>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <functional>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

// A mono WAVE file of 8-bit samples at 8000 Hz, all the same; the tail follows the sample data.
QByteArray waveFile(int seconds, char sample, const QByteArray &tail = {})
{
    const QByteArray samples(qsizetype { 8000 } * seconds, sample);
    QByteArray header;
    QDataStream out(&header, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + samples.size() + tail.size());
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(1) << quint32(8000) << quint32(8000) << quint16(1) << quint16(8);
    out.writeRawData("data", 4);
    out << quint32(samples.size());
    return header + samples + tail;
}

// What a scan reported.
struct Outcome {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
    bool cancelled = false;
    int finishes = 0;
    QStringList phases;
    QStringList log;

    [[nodiscard]] TrackInfo track(QLatin1StringView fileName) const
    {
        const auto found = std::find_if(tracks.cbegin(), tracks.cend(),
                                        [&](const TrackInfo &track) { return track.fileName == fileName; });
        return found == tracks.cend() ? TrackInfo() : *found;
    }
};

Outcome scan(ScanController &controller, const ScanOptions &options,
             const std::function<void(const QString &phase)> &hook = {})
{
    Outcome outcome;
    const QObject context;
    QObject::connect(&controller, &ScanController::logMessage, &context,
                     [&](const QString &message) { outcome.log.append(message); });
    QObject::connect(&controller, &ScanController::phaseChanged, &context, [&](const QString &phase) {
        outcome.phases.append(phase);
        if (hook)
            hook(phase);
    });
    QObject::connect(&controller, &ScanController::finished, &context,
                     [&](const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled) {
                         outcome.tracks = tracks;
                         outcome.groups = groups;
                         outcome.cancelled = cancelled;
                         outcome.finishes += controller.isRunning() ? 100 : 1;
                     });
    controller.start(options);
    return outcome;
}

} // namespace

class TestScanController : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_data.emplace();
        m_options = ScanOptions();
        m_options.roots = QStringList { path(QString()) };
        m_options.minBytes = 0;
        writeFile(path(u"one.wav"_s), waveFile(6, 1));
        writeFile(path(u"x/copy.wav"_s), waveFile(6, 1));
        writeFile(path(u"x/tagged.wav"_s), waveFile(6, 1, QByteArray("note\4\0\0\0abcd", 12)));
        writeFile(path(u"other.wav"_s), waveFile(6, 2));
        writeFile(path(u"short.wav"_s), waveFile(2, 1));
    }

    void findsDuplicates()
    {
        writeFile(path(u"damaged.wav"_s), QByteArray(50000, 'x'));
        ScanController controller;
        QSignalSpy failures(&controller, &ScanController::failed);
        const Outcome outcome = scan(controller, m_options, [&](const QString &phase) {
            if (phase == "Reading tags and hashing"_L1)
                controller.start(m_options); // refused: the controller is busy
        });
        QVERIFY(failures.size() == 1 && outcome.finishes == 1 && !outcome.cancelled);
        QStringList expected = discover(m_options, 0);
        expected.removeOne(path(u"short.wav"_s));
        for (const TrackInfo &track : outcome.tracks)
            QCOMPARE(track.path, expected.takeFirst());
        QCOMPARE(outcome.groups.size(), 1);
        QCOMPARE(outcome.groups.first().members.size(), 3);

        const TrackInfo damaged = outcome.track("damaged.wav"_L1);
        QVERIFY(!damaged.error.isEmpty() && !damaged.analysed && damaged.fullHash.size() == 64);
        QCOMPARE(damaged.audioHash, damaged.fullHash);
        const TrackInfo tagged = outcome.track("tagged.wav"_L1);
        QVERIFY(tagged.analysed && tagged.durationMs == 6000 && tagged.fullHash.size() == 64);
        QCOMPARE(tagged.audioHash, outcome.track("copy.wav"_L1).audioHash);
        QCOMPARE(outcome.log,
                 (QStringList { u"Analysis cache: 0 entries at %1"_s.arg(AnalysisCache::defaultFilePath()),
                                u"Discovered 6 audio files."_s, u"Skipped 1 file(s) shorter than 5 seconds."_s,
                                u"Found 1 duplicate group(s); 0.1 MB could be reclaimed."_s }));
    }

    // Every file but a touched one gets other content under its size and time: reading it would show.
    void secondScanReadsTouchedFilesOnly()
    {
        ScanController controller;
        Outcome first = scan(controller, m_options);
        for (const QString &name : discover(m_options, 0)) {
            const QFileInfo before(name);
            const QDateTime time = before.lastModified();
            const bool touched = before.fileName() == "other.wav"_L1;
            if (!touched)
                writeFile(name, QByteArray(before.size(), 'x'));
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(touched ? time.addDays(-1) : time, QFileDevice::FileModificationTime));
        }
        for (TrackInfo &track : first.tracks) {
            const bool touched = track.fileName == "other.wav"_L1;
            track.mtime = touched ? track.mtime.addDays(-1) : track.mtime;
            track.flags = touched ? 0 : quint64(TrackFromCache);
        }
        const Outcome second = scan(controller, m_options);
        QVERIFY(second.log.contains(u"Reused 4 cached analysis results."_s));
        QCOMPARE(second.tracks, first.tracks);
        QCOMPARE(second.groups, first.groups);
        m_options.useCache = false;
        QVERIFY(!scan(controller, m_options).track("one.wav"_L1).error.isEmpty());
    }

    void missingDigestIsMadeUpFor()
    {
        ScanController controller;
        m_options.detectSameAudio = false;
        TrackInfo other = scan(controller, m_options).track("other.wav"_L1);
        QVERIFY(other.analysed && other.audioHash.isEmpty());
        other.fingerprint = other.fingerprintMask = QList<quint32> { 1, 2, 3 };
        AnalysisCache cache;
        QVERIFY(cache.open());
        cache.store(other, 0);

        m_options.detectSameAudio = true;
        m_options.detectIdentical = false; // a digest that is not asked for is not thrown away
        const Outcome second = scan(controller, m_options);
        QCOMPARE(second.groups.value(0).members.size(), 3);
        QCOMPARE(second.track("other.wav"_L1).fingerprint, other.fingerprint);
        m_options.detectIdentical = true;
        QVERIFY(scan(controller, m_options).log.contains(u"Reused 5 cached analysis results."_s));
    }

    void cancels_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::addColumn<int>("phases");
        QTest::newRow("while folders are read") << u"Scanning folders"_s << 1;
        QTest::newRow("while the cache is checked") << u"Checking cache"_s << 2;
        QTest::newRow("while tags are read") << u"Reading tags and hashing"_s << 3;
        QTest::newRow("too late") << u"Grouping complete"_s << 7;
    }

    void cancels()
    {
        QFETCH(QString, phase);
        QFETCH(int, phases);
        ScanController controller;
        const Outcome outcome = scan(controller, m_options, [&](const QString &now) {
            if (now == phase)
                controller.cancel();
        });
        QVERIFY(outcome.finishes == 1 && outcome.phases.size() == phases);
        QCOMPARE(outcome.cancelled, phases < 7);
        QCOMPARE(outcome.groups.isEmpty(), outcome.cancelled);
        QVERIFY2(scan(controller, m_options).groups.size() == 1, "the next scan starts afresh");
    }

    // Files that are long to hash and, where they can be sparse, quick to write.
    void cancelledAnalysisIsKept()
    {
        constexpr int files = 16;
        m_options.roots = QStringList { path(u"big"_s) };
        for (int i = 0; i < files; ++i) {
            const QString name = path(u"big/%1.wav"_s.arg(i));
            writeFile(name, waveFile(6, 1));
            QVERIFY(QFile::resize(name, 128 * 1024 * 1024));
        }
        ScanController controller;
        connect(&controller, &ScanController::progress, this, [&](int done, int, const QString &detail) {
            if (detail.startsWith("Analysed"_L1) && done > 0)
                controller.cancel();
        });
        const Outcome outcome = scan(controller, m_options);
        QVERIFY(outcome.cancelled && !outcome.tracks.isEmpty() && outcome.tracks.size() < files);
        AnalysisCache cache;
        QVERIFY(cache.open() && cache.count() == outcome.tracks.size());
        for (const TrackInfo &track : outcome.tracks)
            QVERIFY(track.analysed && track.fullHash.size() == 64);
    }

    void fileChangesDuringTheScan_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::addColumn<bool>("removed");
        QTest::newRow("removed before it was measured") << u"Checking cache"_s << true;
        QTest::newRow("removed before it was read") << u"Reading tags and hashing"_s << true;
        QTest::newRow("rewritten") << u"Reading tags and hashing"_s << false;
    }

    void fileChangesDuringTheScan()
    {
        QFETCH(QString, phase);
        QFETCH(bool, removed);
        ScanController controller;
        const Outcome outcome = scan(controller, m_options, [&](const QString &now) {
            if (now == phase && removed)
                QFile::remove(path(u"one.wav"_s));
            else if (now == phase)
                writeFile(path(u"one.wav"_s), waveFile(7, 1));
        });
        const TrackInfo track = outcome.track("one.wav"_L1);
        QVERIFY(track.error.contains(removed ? "vanished"_L1 : "changed"_L1));
        QVERIFY(!track.analysed && track.fullHash.isEmpty() && track.audioHash.isEmpty());
        QCOMPARE(outcome.groups.value(0).members.size(), 2);
        AnalysisCache cache;
        QVERIFY(cache.open() && cache.count() == 4);
    }

    void carriesOnWhateverIsSet()
    {
        const QByteArray content = QByteArray("no database ").repeated(1000);
        writeFile(AnalysisCache::defaultFilePath(), content);
        m_options.decoderThreads = m_options.durationTolerance = m_options.metadataTolerance = -3;
        m_options.fingerprintSeconds = 0;
        m_options.keeperPolicy = 99;
        m_options.minBytes = m_options.minDurationMs = -5000;
        m_options.detectMetadata = true;
        ScanController controller;
        Outcome outcome = scan(controller, m_options);
        QVERIFY(outcome.log.value(0).startsWith("Analysis cache unavailable ("_L1));
        QCOMPARE(readFile(AnalysisCache::defaultFilePath()), content);
        QVERIFY(outcome.tracks.size() == 5 && outcome.groups.size() == 1);

        QVERIFY(QDir(path(QString())).removeRecursively() && QDir().mkpath(path(QString())));
        outcome = scan(controller, m_options);
        QVERIFY(outcome.finishes == 1 && !outcome.cancelled && outcome.tracks.isEmpty());
        QCOMPARE(outcome.log.last(), u"No audio files matched the current filters."_s);
    }

private:
    [[nodiscard]] QString path(const QString &name) const { return m_data->filePath(u"library/"_s + name); }

    std::optional<DataFolder> m_data;
    ScanOptions m_options;
};

QTEST_GUILESS_MAIN(TestScanController)
#include "tst_scancontroller.moc"
