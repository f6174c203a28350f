// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"
#include "records.h"
#include "scancontroller.h"

#include "temporarylibrary.h"

#include <QDirIterator>
#include <QProcess>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

/// What ffprobe, an independent reader, says of the file; zeros if it cannot read it.
ProbeResult probedByFfprobe(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start(u"ffprobe"_s,
                  test::words("-v error -select_streams a:0 -show_entries stream=sample_rate,channels:format=duration "
                              "-of csv=p=0")
                      << path);
    ProbeResult result;
    if (!ffprobe.waitForFinished(30000))
        return result;
    const QByteArrayList values = ffprobe.readAllStandardOutput().replace('\n', ',').split(',');
    result.stream.sampleRate = values.value(0).toInt();
    result.stream.channels = values.value(1).toInt();
    result.stream.durationMs = qRound64(values.value(2).toDouble() * 1000);
    return result;
}

/// How far a format's reader may be from ffprobe. MPEG: whole frames are counted, with the encoder's delay and padding.
/// Opus: the pre-skip is not subtracted from the last granule position. MP4: only the movie header is read. Else a
/// millisecond for rounding.
qint64 durationToleranceMs(const QString &suffix)
{
    return test::words("mp3 mp2 m4a").contains(suffix) ? 60 : suffix == u"opus"_s ? 10 : 1;
}

} // namespace

class TestDemoLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        registerMetaTypes();
        QProcess script;
        script.setProcessChannelMode(QProcess::ForwardedChannels);
        script.start(QStringLiteral(EPR_MAKE_DEMO_LIBRARY), { library() });
        QVERIFY(script.waitForFinished(300000));
        QCOMPARE(script.exitCode(), 0);
        QDirIterator it(library(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            m_files << it.next();
        QVERIFY(m_files.size() >= 20);
    }

    void everyFileReadsAsFfprobeReadsIt()
    {
        for (const QString &path : std::as_const(m_files)) {
            ProbeResult ours;
            QString error;
            QVERIFY2(probeFile(path, ours, &error), qPrintable(path + error));
            ProbeResult theirs = probedByFfprobe(path);
            QVERIFY2(theirs.stream.durationMs > 0, qPrintable(path));
            const QString suffix = QFileInfo(path).suffix();
            if (suffix == "wma"_L1) // has no reader: known by its digests and its fingerprint only
                theirs = {};
            if (suffix == "m4a"_L1) // has none in the movie header
                theirs.stream.sampleRate = 0;
            QVERIFY2(ours.stream.sampleRate == theirs.stream.sampleRate
                         && ours.stream.channels == theirs.stream.channels,
                     qPrintable(path));
            QVERIFY2(qAbs(ours.stream.durationMs - theirs.stream.durationMs) <= durationToleranceMs(suffix),
                     qPrintable(path));
        }
    }

    void scanFindsTheDuplicates()
    {
        const QStringList reencoded {
            u"01 Harbour Lights.flac|Harbour Lights (copy).flac|Harbour Lights.mp3|lanternmen - harbour lights.mp3"_s,
            u"Ada Quill - Kerosene Waltz.mp3|kerosene_waltz_128.mp3"_s,
            u"Salt 'n' Smoke, take #2 & 3.mp2|salt-n-smoke.mp3"_s,
            u"Taxidi.aiff|Taxidi.flac|Ταξίδι.flac"_s,
            u"Tramway Blues.ogg|Tramway Blues.wav"_s,
            u"Yoru no densha.m4a|夜の電車.m4a|夜の電車.opus"_s,
            u"track03 (1).mp3|track03.mp3|Поезд на рассвете.mp3"_s
        };
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc })
            QCOMPARE(groupsOf(MatchType::SameRecording, engine), reencoded);
        const QStringList retagged { u"01 Harbour Lights.flac|Harbour Lights (copy).flac"_s,
                                     u"Taxidi.flac|Ταξίδι.flac"_s, u"Yoru no densha.m4a|夜の電車.m4a"_s,
                                     u"track03 (1).mp3|track03.mp3|Поезд на рассвете.mp3"_s };
        QCOMPARE(groupsOf(MatchType::SameAudio), retagged);
        const QStringList sameSong {
            u"01 Harbour Lights.flac|Harbour Lights (copy).flac|Harbour Lights.mp3|lanternmen - harbour lights.mp3"_s,
            u"02 Signal Box.flac|07 Signal Box.mp3"_s, u"Ada Quill - Kerosene Waltz.mp3|kerosene_waltz_128.mp3"_s,
            u"Tramway Blues.ogg|Tramway Blues.wav"_s, u"track03 (1).mp3|track03.mp3"_s
        };
        QCOMPARE(groupsOf(MatchType::SameSong), sameSong);
    }

private:
    /// The groups of one kind, sorted, as the names in each.
    QStringList groupsOf(MatchType type, FingerprintEngine engine = FingerprintEngine::BuiltIn)
    {
        ScanOptions options;
        options.roots = QStringList { library() };
        options.useCache = options.detectIdentical = false;
        options.detectAcoustic = type == MatchType::SameRecording;
        options.fingerprintEngine = engine;
        options.detectSameAudio = type == MatchType::SameAudio;
        options.detectMetadata = type == MatchType::SameSong;
        ScanController controller;
        QStringList found;
        connect(&controller, &ScanController::finished, this,
                [&](const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups) {
                    QCOMPARE(tracks.size(), m_files.size() - 1); // the ident is too short
                    for (const MatchGroup &group : groups) {
                        QCOMPARE(group.matchType, type);
                        QStringList names;
                        for (const qint32 member : group.members)
                            names << tracks.at(member).fileName;
                        names.sort();
                        found << names.join(u'|');
                    }
                });
        controller.start(options);
        found.sort();
        return found;
    }

    [[nodiscard]] QString library() const { return m_home.filePath(u"library"_s); }

    test::TemporaryHome m_home;
    QStringList m_files;
};

QTEST_GUILESS_MAIN(TestDemoLibrary)
#include "tst_demolibrary.moc"
