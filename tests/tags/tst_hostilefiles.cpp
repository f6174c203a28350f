// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "readers.h"

#include <QTest>

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
    int reads = 0;

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        largestRequest = std::max(largestRequest, maxSize);
        ++reads;
        const QByteArray present = m_bytes.mid(pos(), maxSize);
        const qint64 count = std::min(maxSize, m_size - pos());
        std::fill_n(std::copy(present.begin(), present.end(), data), count - present.size(), '\0');
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_size = 0;
};

constexpr qint64 fiveGiB = qint64(5) << 30;

} // namespace

class TestHostileFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boundsAreKept_data()
    {
        QTest::addColumn<Reader>("reader");
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char *name, Reader reader, const QByteArray &bytes) {
            QTest::newRow(name) << reader << bytes;
        };
        const QByteArray comment = vorbisComment({ "TITLE=Title" });
        row("mp3", readMpeg,
            id3v2Tag(text("TIT2", "Title") + frame("COMM", QByteArray("\1eng\0\0x\0", 8)))
                + mpegAudio(417).replace(36, 16, "Xing" + big<quint32>(3) + big<quint32>(9) + big<quint32>(9))
                + mpegAudio(900) + apeTag(20) + id3v1Tag("Title", "Artist", 1, 1));
        row("flac", readFlac,
            "fLaC" + flacBlock(0, flacStreamInfo(44100, 2, 441000)) + flacBlock(4, comment, true) + "audio");
        row("a comment count of 2^32", readFlac,
            "fLaC" + flacBlock(4, QByteArray(comment).replace(10, 4, "\xFF\xFF\xFF\xFF"), true) + "audio");
        row("ogg", readOgg,
            oggPages({ vorbisIdentification(2, 44100), "\x03vorbis" + comment }, 0)
                + oggPages({ "audio" }, 441000).repeated(9));
        row("wave", readWave,
            riffChunk("RIFF",
                      "WAVE" + waveFormat() + riffChunk("LIST", "INFO" + riffChunk("INAM", "Title"))
                          + riffChunk("data", QByteArray(99, 's'))));
        row("aiff", readAiff,
            formChunk("FORM",
                      "AIFF" + formChunk("NAME", "Title") + aiffCommon(2, 441000, 16, 0x400E, 0xAC44000000000000)
                          + formChunk("SSND", QByteArray(99, '\0'))));
        row("mp4", readMp4, movie(movieHeader(1000, 10000), listItem("\251nam", "Title")) + atom("mdat", "x"));

        // Sizes that the file does not hold. None of these can be read, and none has a title.
        const QByteArray twoGiB = big<quint32>(0x7FFFFFFF);
        const QByteArray wide = atom("free", {}) + big<quint32>(1) + "mdat";
        row("an ID3 tag of 64 MiB", readMpeg, id3v2Tag(mpegAudio(900)).replace(6, 4, syncsafe(64 << 20)));
        row("a FLAC comment of 8 MiB", readFlac, "fLaC\x04\x7F\xFF\xFF" + little<quint32>(1));
        row("a WAVE format of 4 GiB", readWave, riffChunk("RIFF", "WAVEfmt \xFF\xFF\xFF\xFF"));
        row("AIFF sound of 2 GiB", readAiff, formChunk("FORM", "AIFFSSND" + twoGiB));
        row("an item of 2 GiB", readMp4, atom("moov", atom("ilst", twoGiB + "\251namdata")));
        row("an atom whose end wraps around", readMp4, wide + big(~quint64(0) - 7));
        row("an atom of 2^63 bytes", readMp4, wide + big(quint64(1) << 63));
    }

    /// Every length of a small file, which takes in each structure's boundary and each place within one.
    void boundsAreKept()
    {
        QFETCH(Reader, reader);
        QFETCH(QByteArray, bytes);
        for (qsizetype length = 0; length <= bytes.size(); ++length) {
            RecordingDevice device(bytes.first(length));
            ProbeResult result;
            const bool ok = reader(device, result);
            const QByteArray where = QByteArray::number(length);
            QVERIFY2(u"Title"_s.startsWith(result.tags.title), where.constData());
            QVERIFY2(result.stream.durationMs >= 0 && result.stream.bitrateKbps >= 0, where.constData());
            QVERIFY2(result.audioOffset >= 0 && result.audioLength >= 0, where.constData());
            QVERIFY2(device.largestRequest <= length && device.reads <= 16, where.constData());
            // A last chunk may lack its pad byte, so one byte is granted.
            QVERIFY2(!ok || !result.audioRangeValid || result.audioOffset + result.audioLength <= length + 1,
                     where.constData());
            if (length == bytes.size())
                QVERIFY(ok == bytes.contains("Title") && ok == !result.tags.title.isEmpty());
        }
    }

    void nestedAndEmptyBlocksEnd()
    {
        QByteArray atoms;
        for (quint32 left = 100000; left > 0; --left)
            atoms += big(left * 8 + 13) + "moov";
        RecordingDevice device(atoms + atom("mdat", "media"));
        ProbeResult result;
        QVERIFY(readMp4(device, result));
        QCOMPARE(result.audioLength, 5);
        QVERIFY(device.reads <= 100001); // linear, however deep
        RecordingDevice zeros("fLaC", fiveGiB); // as an interrupted copy leaves a file
        QVERIFY(!readFlac(zeros, result) && zeros.reads < 1500000);
    }

    void beyondFourGiB()
    {
        RecordingDevice m4a(movie(movieHeader(1000, 10000000), {}) + big<quint32>(1) + "mdat" + big(fiveGiB + 16),
                            fiveGiB);
        ProbeResult result;
        QVERIFY(readMp4(m4a, result));
        QCOMPARE(result.audioLength, fiveGiB);
        QCOMPARE(result.stream.bitrateKbps, 4294);
        RecordingDevice mp3(mpegAudio(262144), fiveGiB);
        result = {};
        QVERIFY(readMpeg(mp3, result));
        QCOMPARE(result.audioLength, fiveGiB + 262144);
        QCOMPARE(result.stream.durationMs, result.audioLength * 8 / 128);
    }
};

QTEST_GUILESS_MAIN(TestHostileFiles)
#include "tst_hostilefiles.moc"
