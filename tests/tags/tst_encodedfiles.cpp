// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace epr;

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

/// Standard output of a tool; a null array when it failed.
QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return process.readAllStandardOutput() + '\n';
    qWarning() << program << process.errorString() << process.readAllStandardError();
    return {};
}

bool encode(const QStringList &arguments, const QString &path)
{
    return !run(u"ffmpeg"_s, words("-nostdin -v error -y") + arguments + QStringList { path }).isNull();
}

const char *const tone = "-f lavfi -i sine=duration=5:sample_rate=44100 ";

QByteArray payloadOf(const QString &path, const ProbeResult &result)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(result.audioOffset) ? file.read(result.audioLength)
                                                                           : QByteArray();
}

} // namespace

/// Files of an independent encoder, measured by an independent reader.
class TestEncodedFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void agreesWithReference_data();
    void agreesWithReference();

private:
    QTemporaryDir m_folder;
};

void TestEncodedFiles::initTestCase()
{
    for (const QString &tool : { u"ffmpeg"_s, u"ffprobe"_s })
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + " is needed for this test"_L1));
}

void TestEncodedFiles::agreesWithReference_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("format");
    const auto row = [](const char *title, const char *name, const char *format, const char *arguments) {
        QTest::newRow(title) << QString::fromLatin1(name) << words(arguments) << QString::fromLatin1(format);
    };
    row("MP3 of constant bit rate", "cbr.mp3", "MPEG Audio", "-ac 2 -b:a 128k");
    row("MP3 of variable bit rate", "vbr.mp3", "MPEG Audio", "-ac 2 -q:a 4 -id3v2_version 3 -write_id3v1 1");
    row("MP3 mono at 22.05 kHz", "mono.mp3", "MPEG Audio", "-ac 1 -ar 22050 -b:a 64k");
    row("MP3 without a VBR header", "bare.mp3", "MPEG Audio", "-b:a 128k -write_xing 0");
    row("MPEG 1 Layer II", "layer2.mp2", "MPEG Audio", "-ac 2 -b:a 192k");
    row("FLAC", "tone.flac", "FLAC", "-ac 2");
    row("FLAC of eight channels at 96 kHz", "eight.flac", "FLAC", "-ac 8 -ar 96000");
    row("Vorbis", "tone.ogg", "Ogg Vorbis", "-c:a libvorbis -ac 2");
    const QByteArray art = "-c:a libvorbis -metadata METADATA_BLOCK_PICTURE=" + QByteArray(100000, 'A');
    row("Vorbis with cover art over two pages, the title behind it", "art.ogg", "Ogg Vorbis", art.constData());
    // Both sides count the samples that a decoder drops at the start.
    row("Opus", "tone.opus", "Opus", "-c:a libopus -ac 2");
    row("WAVE", "tone.wav", "WAVE", "-ac 2");
    row("WAVE of 24 bits in the extensible format", "24.wav", "WAVE", "-ac 6 -c:a pcm_s24le");
    row("AIFF", "tone.aiff", "AIFF", "-ac 2");
    row("AIFF-C", "tone.aifc", "AIFF", "-ac 1 -c:a pcm_s16le");
    // Of these the movie header alone is read: no sample rate, and channels are taken to be 2.
    row("AAC in MP4", "tone.m4a", "MPEG-4 Audio", "-c:a aac -ac 2");
    row("AAC mono in MP4, moov first", "mono.m4a", "MPEG-4 Audio", "-c:a aac -ac 1 -movflags +faststart");
    row("ALAC in MP4", "alac.m4a", "MPEG-4 Audio", "-c:a alac -ac 1");
}

void TestEncodedFiles::agreesWithReference()
{
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);
    QFETCH(QString, format);
    const bool movieHeaderOnly = format.startsWith("MPEG-4"_L1);
    const QString path = m_folder.filePath(name);
    const QString retagged = m_folder.filePath(u"retagged-"_s + name);
    QVERIFY(encode(words(tone) + arguments + words("-metadata title=One -metadata artist=A"), path));
    QVERIFY(encode(words("-i") + QStringList { path } + words("-c copy -metadata title=Another"), retagged));
    const QByteArrayList reference =
        run(u"ffprobe"_s,
            words("-v error -show_entries stream=sample_rate,channels:format=duration -of csv=p=0") << path)
            .replace('\n', ',')
            .split(',');
    QVERIFY(reference.size() >= 3);

    ProbeResult result;
    QString error;
    QVERIFY2(probeFile(path, result, &error), qPrintable(error));
    QCOMPARE(result.format, format);
    QCOMPARE(result.sampleRate, movieHeaderOnly ? 0 : reference[0].toInt());
    QCOMPARE(result.channels, movieHeaderOnly ? 2 : reference[1].toInt());
    QVERIFY2(qAbs(double(result.durationMs) - reference[2].toDouble() * 1000) < 2, reference[2].constData());

    ProbeResult other;
    QVERIFY(probeFile(retagged, other));
    QCOMPARE(result.title, name.endsWith(".mp2"_L1) ? QString() : u"One"_s); // that encoder writes no tags
    QCOMPARE(result.audioRangeValid, !format.startsWith('O'_L1)); // Ogg Vorbis, Opus
    QCOMPARE(payloadOf(retagged, other), payloadOf(path, result));
}

QTEST_GUILESS_MAIN(TestEncodedFiles)
#include "tst_encodedfiles.moc"
