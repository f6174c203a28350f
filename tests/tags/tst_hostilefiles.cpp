// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "aiffreader.h"
#include "audiobuilder.h"
#include "flacreader.h"
#include "mp4reader.h"
#include "mpegreader.h"
#include "oggreader.h"
#include "probe.h"
#include "vorbiscomment.h"
#include "wavereader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace Qt::StringLiterals;
using namespace epr;
using namespace epr::test;

using Reader = bool (*)(QIODevice &device, ProbeResult &result);

namespace {

/// Some bytes, zeros behind them up to any size, and a record of how they were read.
class RecordingDevice final : public QIODevice {
public:
    explicit RecordingDevice(const QByteArray &bytes, qint64 zeros = 0)
        : m_bytes(bytes)
        , m_size(bytes.size() + zeros)
    {
        open(ReadOnly | Unbuffered);
    }

    qint64 size() const override { return m_size; }

    qint64 largestRequest = 0;
    qint64 bytesRead = 0;
    int reads = 0;

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        largestRequest = std::max(largestRequest, maxSize);
        const qint64 count = std::min(maxSize, m_size - pos());
        const QByteArray present = m_bytes.mid(pos(), count);
        std::fill_n(std::copy(present.begin(), present.end(), data), count - present.size(), '\0');
        bytesRead += count;
        ++reads;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_size = 0;
};

void addColumns()
{
    QTest::addColumn<Reader>("reader");
    QTest::addColumn<QByteArray>("bytes");
}

void row(const char *name, Reader reader, const QByteArray &bytes)
{
    QTest::newRow(name) << reader << bytes;
}

bool write(QFile &file, qint64 offset, const QByteArray &bytes)
{
    const bool ok = file.open(QIODevice::ReadWrite) && file.seek(offset) && file.write(bytes) == bytes.size();
    file.close();
    return ok;
}

const QByteArray fourOnes("\xFF\xFF\xFF\xFF");

} // namespace

class TestHostileFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boundsAreKept_data();
    void boundsAreKept();
    void emptyBlocksEnd_data();
    void emptyBlocksEnd();
    void commentCountIsNotTrusted();
    void nestedAtoms();
    void commentPacketBeyondTheLimit();
    void beyondFourGiB();
    void messages();
    void specialFilesAreNotOpened();
};

void TestHostileFiles::boundsAreKept_data()
{
    addColumns();
    const QByteArray common = aiffCommon(2, 441000, 16, 0x400E, 0xAC44000000000000);
    const QByteArray comment = vorbisComment({ "TITLE=Title" });
    row("mp3", readMpeg,
        id3v2Tag(id3v2Text("TIT2", "Title") + id3v2Frame("COMM", QByteArray("\1eng\0\0x\0", 8)))
            + mpegVbrFrame(36, "Xing" + big<quint32>(3) + big<quint32>(9) + big<quint32>(9)) + mpegAudio(900)
            + apeTag(20) + id3v1Tag("Title", "Artist", 1, 1));
    row("flac", readFlac,
        "fLaC" + flacBlock(0, flacStreamInfo(44100, 2, 441000)) + flacBlock(4, comment) + flacBlock(1, "x", true)
            + "audio");
    row("ogg", readOgg,
        oggPages({ vorbisIdentification(2, 44100), "\x03vorbis" + comment }, 0)
            + oggPages({ "audio" }, 441000).repeated(9));
    row("wave", readWave,
        waveFile(waveFormat(2, 44100, 176400) + riffChunk("LIST", "INFO" + riffChunk("INAM", "Title"))
                 + riffChunk("data", QByteArray(99, 's'))));
    row("aiff", readAiff, aiffFile(formChunk("NAME", "Title") + common + formChunk("SSND", QByteArray(99, '\0'))));
    row("mp4", readMp4,
        atom("ftyp", "M4A ") + movie(movieHeader(1000, 10000), listItem("\251nam", "Title")) + wideAtom("mdat", "x"));

    // Sizes that the file does not hold. None of these can be read, and none has a title.
    const QByteArray twoGiB = big<quint32>(0x7FFFFFFF);
    const QByteArray free = atom("free", {});
    row("an ID3 tag of 64 MiB", readMpeg, id3v2Tag(mpegAudio(900)).replace(6, 4, syncsafe(64 << 20)));
    row("a FLAC comment of 8 MiB", readFlac, "fLaC\x04\x7F\xFF\xFF" + little<quint32>(1));
    row("a WAVE list of 1 MiB", readWave, waveFile("LIST" + little<quint32>(1048575) + "INFO"));
    row("a WAVE format of 4 GiB", readWave, waveFile("fmt " + fourOnes));
    row("AIFF sound of 2 GiB", readAiff, aiffFile("SSND" + twoGiB));
    row("an AIFF name of 4 KiB", readAiff, aiffFile("NAME" + big<quint32>(4095) + "x"));
    row("an atom of 2 GiB", readMp4, twoGiB + "moov" + twoGiB + "ilst");
    row("an item of 2 GiB", readMp4, atom("moov", atom("ilst", twoGiB + "\251namdata")));
    row("an atom whose end wraps around", readMp4, free + big<quint32>(1) + "mdat" + big(~quint64(0) - 7));
    row("a wide atom shorter than its header", readMp4, big<quint32>(1) + "mdat" + big<quint64>(8));
    row("an atom of 2^63 bytes", readMp4, free + big<quint32>(1) + "mdat" + big(quint64(1) << 63));
}

/// Every length of a small file, which takes in each structure's boundary and each place within one.
void TestHostileFiles::boundsAreKept()
{
    QFETCH(Reader, reader);
    QFETCH(QByteArray, bytes);
    for (qsizetype length = 0; length <= bytes.size(); ++length) {
        RecordingDevice device(bytes.first(length));
        ProbeResult result;
        const bool ok = reader(device, result);
        const QString where = u"%1 of %2 bytes"_s.arg(length).arg(bytes.size());
        QVERIFY2(u"Title"_s.startsWith(result.title), qPrintable(where));
        QVERIFY2(result.durationMs >= 0 && result.bitrateKbps >= 0, qPrintable(where));
        QVERIFY2(result.audioOffset >= 0 && result.audioLength >= 0, qPrintable(where));
        QVERIFY2(device.largestRequest <= length && device.reads <= 16, qPrintable(where));
        // A last chunk may lack its pad byte, so one byte is granted.
        QVERIFY2(!ok || !result.audioRangeValid || result.audioOffset + result.audioLength <= length + 1,
                 qPrintable(where));
        if (length == bytes.size())
            QVERIFY(ok == bytes.contains("Title") && ok == !result.title.isEmpty());
    }
}

void TestHostileFiles::emptyBlocksEnd_data()
{
    addColumns();
    row("flac", readFlac, "fLaC");
    row("ogg", readOgg, QByteArray("OggS").leftJustified(27, '\0').repeated(800000));
    row("wave", readWave, waveFile(waveFormat(2, 44100, 176400)));
    row("mp4", readMp4, atom("mdia", {}).repeated(3000000));
}

/// Bad disks and interrupted copies leave files that are zeros from somewhere on.
void TestHostileFiles::emptyBlocksEnd()
{
    QFETCH(Reader, reader);
    QFETCH(QByteArray, bytes);
    RecordingDevice device(bytes, qint64(1) << 33);
    ProbeResult result;
    QCOMPARE(reader(device, result), reader == readOgg);
    QVERIFY(device.reads < 1500000);
}

void TestHostileFiles::commentCountIsNotTrusted()
{
    ProbeResult result;
    readVorbisComment(vorbisComment({ "TITLE=x", "ARTIST=y" }).replace(10, 4, fourOnes), result);
    QCOMPARE(result.title + result.artist, u"xy"_s);
    readVorbisComment(vorbisComment({ "TITLE=z" }).replace(0, 4, fourOnes), result); // the vendor text's length
    QCOMPARE(result.title, u"x"_s);
}

void TestHostileFiles::nestedAtoms()
{
    constexpr int depth = 100000;
    QByteArray bytes;
    for (quint32 left = depth; left > 0; --left)
        bytes += big(left * 8 + 13) + "moov";
    RecordingDevice device(bytes + atom("mdat", "media"));
    ProbeResult result;
    QVERIFY(readMp4(device, result));
    QCOMPARE(result.audioLength, 5);
    QVERIFY(device.reads <= depth + 1); // linear, however deep
}

void TestHostileFiles::commentPacketBeyondTheLimit()
{
    const QByteArray comment = vorbisComment({ "TITLE=Title", "PICTURE=" + QByteArray(20 << 20, 'p') });
    RecordingDevice device(oggPages({ vorbisIdentification(2, 44100), "\x03vorbis" + comment }, 0));
    ProbeResult result;
    QVERIFY(readOgg(device, result));
    QCOMPARE(result.title, u"Title"_s);
    QVERIFY(device.bytesRead < 17 << 20);
}

void TestHostileFiles::beyondFourGiB()
{
    constexpr qint64 fiveGiB = qint64(5) << 30;
    const QTemporaryDir folder;
    QFile m4a(folder.filePath(u"sparse.m4a"_s));
    QVERIFY(write(m4a, 0, big<quint32>(1) + "mdat" + big(quint64(fiveGiB))));
    QVERIFY(write(m4a, fiveGiB, movie(movieHeader(1000, 10000000), listItem("\251nam", "Title"))));
    ProbeResult result;
    QVERIFY(probeFile(m4a.fileName(), result));
    QCOMPARE(result.audioLength, fiveGiB - 16);
    QCOMPARE(result.bitrateKbps, 4294);
    QCOMPARE(result.title, u"Title"_s);

    QFile mp3(folder.filePath(u"sparse.mp3"_s));
    QVERIFY(write(mp3, 0, mpegAudio(262144)) && write(mp3, fiveGiB, id3v1Tag("Title", "Artist", 1, 1)));
    result = {};
    QVERIFY(probeFile(mp3.fileName(), result));
    QCOMPARE(result.audioLength, fiveGiB);
    QCOMPARE(result.durationMs, fiveGiB * 8 / 128);
    QCOMPARE(result.title, u"Title"_s);
}

void TestHostileFiles::messages()
{
    const QTemporaryDir folder;
    QFile wrong(folder.filePath(u"wrong.Flac"_s));
    QVERIFY(write(wrong, 0, mpegAudio(1000)));
    const QString missing = folder.filePath(u"missing.mp3"_s);
    ProbeResult result;
    QString error;
    QVERIFY(!probeFile(missing, result, &error));
    QFile device(missing);
    QVERIFY(!device.open(QIODevice::ReadOnly));
    QCOMPARE(error, u"Cannot open file: "_s + device.errorString());
    error.clear();
    QVERIFY(!probeFile(wrong.fileName(), result, &error));
    QCOMPARE(error, u"Unrecognised or damaged FLAC container"_s);
    QVERIFY(!probeFile(missing, result, &error));
    QCOMPARE(error, u"Unrecognised or damaged FLAC container"_s); // a message that stands there stays
    QVERIFY(!probeFile(missing, result));
}

void TestHostileFiles::specialFilesAreNotOpened()
{
    const QTemporaryDir folder;
    const QString directory = folder.filePath(u"directory.mp3"_s);
    QVERIFY(QDir().mkdir(directory));
    QStringList paths { directory };
#ifdef Q_OS_UNIX
    // Nobody writes into the pipe: opening it would never return.
    const QString pipe = folder.filePath(u"pipe.mp3"_s);
    const QString link = folder.filePath(u"link.mp3"_s);
    QVERIFY(mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0 && QFile::link(pipe, link));
    paths << pipe << link;
#endif
    for (const QString &path : paths) {
        ProbeResult result;
        QString error;
        QVERIFY(!probeFile(path, result, &error));
        QVERIFY2(error.startsWith("Cannot open file: "_L1), qPrintable(error));
    }
}

QTEST_GUILESS_MAIN(TestHostileFiles)
#include "tst_hostilefiles.moc"
