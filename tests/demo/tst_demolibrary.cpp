// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metatypes.h"
#include "probe.h"
#include "proberesult.h"
#include "scancontroller.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QSet>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

struct Facts {
    int sampleRate = 0;
    int channels = 0;
    qint64 durationMs = 0;
};

/// What ffprobe, an independent reader, says of the file.
Facts factsByFfprobe(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start(u"ffprobe"_s,
                  { u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_entries"_s,
                    u"stream=sample_rate,channels:format=duration"_s, u"-of"_s, u"default=nw=1"_s, path });
    if (!ffprobe.waitForFinished(30000))
        return {};
    Facts facts;
    for (const QByteArray &line : ffprobe.readAllStandardOutput().split('\n')) {
        const QByteArray value = line.mid(line.indexOf('=') + 1);
        if (line.startsWith("sample_rate="))
            facts.sampleRate = value.toInt();
        else if (line.startsWith("channels="))
            facts.channels = value.toInt();
        else if (line.startsWith("duration="))
            facts.durationMs = qRound64(value.toDouble() * 1000);
    }
    return facts;
}

/// How far a format's reader may be from ffprobe, and why.
struct Deviation {
    const char *suffix;
    bool sampleRateKnown;
    bool propertiesKnown;
    qint64 durationToleranceMs;
    const char *reason;
};

constexpr Deviation deviations[] = {
    { "mp3", true, true, 60, "counts whole frames, the encoder's delay and padding included" },
    { "mp2", true, true, 30, "counts whole frames" },
    { "opus", true, true, 10, "the pre-skip is not subtracted from the last granule position" },
    { "m4a", false, true, 60, "only the movie header is read: no sample rate, and two channels unless known better" },
    { "wma", false, false, 0, "has no reader: known by its digests and its fingerprint only" },
};

Deviation deviationOf(const QString &suffix)
{
    for (const Deviation &deviation : deviations) {
        if (suffix == QLatin1StringView(deviation.suffix))
            return deviation;
    }
    return { "", true, true, 1, "agrees; one millisecond for rounding" };
}

} // namespace

class TestDemoLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyFileReadsAsFfprobeReadsIt();
    void scanFindsTheDuplicates_data();
    void scanFindsTheDuplicates();

private:
    QStringList files() const;
    QString library() const { return m_dir.filePath(u"library"_s); }

    QTemporaryDir m_dir;
};

void TestDemoLibrary::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.filePath(u"data"_s)));
    registerMetaTypes();
    QProcess script;
    script.setProcessChannelMode(QProcess::ForwardedChannels);
    script.start(QStringLiteral(EPR_MAKE_DEMO_LIBRARY), { library() });
    QVERIFY(script.waitForFinished(300000));
    QCOMPARE(script.exitCode(), 0);
}

QStringList TestDemoLibrary::files() const
{
    QStringList paths;
    QDirIterator it(library(), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        paths << it.next();
    return paths;
}

void TestDemoLibrary::everyFileReadsAsFfprobeReadsIt()
{
    const QStringList paths = files();
    QVERIFY(paths.size() >= 20);
    for (const QString &path : paths) {
        ProbeResult ours;
        QString error;
        QVERIFY2(probeFile(path, ours, &error), qPrintable(path + error));
        const Facts facts = factsByFfprobe(path);
        QVERIFY2(facts.durationMs > 0, qPrintable(path));
        const Deviation deviation = deviationOf(QFileInfo(path).suffix());
        const QByteArray where = path.toUtf8() + ": " + deviation.reason;
        QVERIFY2(ours.sampleRate == (deviation.sampleRateKnown ? facts.sampleRate : 0), where.constData());
        QVERIFY2(ours.channels == (deviation.propertiesKnown ? facts.channels : 0), where.constData());
        const qint64 difference = qAbs(ours.durationMs - facts.durationMs);
        QVERIFY2(deviation.propertiesKnown ? difference <= deviation.durationToleranceMs : ours.durationMs == 0, where.constData());
    }
}

void TestDemoLibrary::scanFindsTheDuplicates_data()
{
    QTest::addColumn<bool>("identical");
    QTest::addColumn<bool>("sameAudio");
    QTest::addColumn<bool>("metadata");
    QTest::addColumn<int>("type");
    QTest::addColumn<QList<QSet<QString>>>("groups");
    const QSet<QString> straightCopies { u"01 Harbour Lights.flac"_s, u"Harbour Lights (copy).flac"_s };
    const QSet<QString> cyrillicCopies { u"track03.mp3"_s, u"track03 (1).mp3"_s };
    QTest::newRow("straight copies") << true << false << false << 0
                                     << QList<QSet<QString>> { straightCopies, cyrillicCopies };
    QTest::newRow("retagged copies") << false << true << false << 1
                                     << QList<QSet<QString>> { straightCopies,
                                                               cyrillicCopies | QSet { u"Поезд на рассвете.mp3"_s },
                                                               { u"夜の電車.m4a"_s, u"Yoru no densha.m4a"_s },
                                                               { u"Ταξίδι.flac"_s, u"Taxidi.flac"_s } };
    QTest::newRow("same artist, title and duration")
        << false << false << true << 3
        << QList<QSet<QString>> {
               straightCopies | QSet { u"Harbour Lights.mp3"_s, u"lanternmen - harbour lights.mp3"_s },
               cyrillicCopies,
               { u"02 Signal Box.flac"_s, u"07 Signal Box.mp3"_s },
               { u"Ada Quill - Kerosene Waltz.mp3"_s, u"kerosene_waltz_128.mp3"_s },
               { u"Tramway Blues.ogg"_s, u"Tramway Blues.wav"_s },
           };
}

void TestDemoLibrary::scanFindsTheDuplicates()
{
    ScanOptions options;
    options.roots = { library() };
    options.useCache = false;
    options.detectAcoustic = false;
    QFETCH(bool, identical);
    QFETCH(bool, sameAudio);
    QFETCH(bool, metadata);
    QFETCH(int, type);
    QFETCH(QList<QSet<QString>>, groups);
    options.detectIdentical = identical;
    options.detectSameAudio = sameAudio;
    options.detectMetadata = metadata;

    ScanController controller;
    QList<TrackInfo> tracks;
    QList<MatchGroup> found;
    connect(&controller, &ScanController::finished, this,
            [&](const QList<TrackInfo> &t, const QList<MatchGroup> &g) { tracks = t, found = g; });
    controller.start(options);

    QCOMPARE(tracks.size(), files().size() - 1); // the ident is too short
    for (const MatchGroup &group : found) {
        QCOMPARE(static_cast<int>(group.matchType), type);
        QSet<QString> names;
        for (const qint32 member : group.members)
            names << tracks.at(member).fileName;
        QVERIFY2(groups.removeOne(names), qPrintable(names.values().join(u", "_s)));
    }
    QVERIFY(groups.isEmpty());
}

QTEST_GUILESS_MAIN(TestDemoLibrary)
#include "tst_demolibrary.moc"
