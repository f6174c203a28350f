// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "probe.h"
#include "temporarylibrary.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace epr;
using namespace epr::test;

namespace {

/// The tags that are set, in the order of the record.
QString describeTags(const ProbeResult &r)
{
    QStringList values { r.tags.title, r.tags.artist, r.tags.album,  r.tags.albumArtist,
                         r.tags.genre, r.tags.year,   r.tags.comment };
    if (r.tags.trackNo != 0)
        values << QString::number(r.tags.trackNo);
    values.removeAll(QString());
    return values.join(u';');
}

/// "10000ms 128 44100x2 @100+50": kbit/s, Hz times channels, and the payload when it is valid. A failure has a
/// question mark in front, a duration that is a guess says so.
QString describeAudio(bool ok, const ProbeResult &r)
{
    const QString range = r.audioRangeValid ? u" @%1+%2"_s.arg(r.audioOffset).arg(r.audioLength) : QString();
    const QString guess = r.stream.durationIsGuess ? u" guess"_s : QString();
    return (ok ? QString() : u"? "_s) + u"%1ms %2 "_s.arg(r.stream.durationMs).arg(r.stream.bitrateKbps)
        + u"%1x%2"_s.arg(r.stream.sampleRate).arg(r.stream.channels) + range + guess;
}

void row(const char *suffix, const char *name, const QByteArray &bytes, const QByteArray &expected, bool isTags = false)
{
    QTest::addRow("%s: %s", suffix, name)
        << QString::fromLatin1(suffix) << bytes << QString::fromUtf8(expected) << isTags;
}

void tags(const char *suffix, const char *name, const QByteArray &bytes, const QByteArray &expected)
{
    row(suffix, name, bytes, expected, true);
}

const QByteArray twoFrames = mpegAudio(834);

void addMpegRows()
{
    const auto xing = [](quint32 frames, quint32 bytes) { return "Xing" + big(3) + big(frames) + big(bytes); };
    const auto vbrFrame = [](const QByteArray &header) { return mpegAudio(417).replace(36, header.size(), header); };
    QByteArray falseSync(1000, 'j');
    falseSync.replace(500, 4, QByteArray("\xFF\xFB\x90\x00", 4));
    const auto two = [](quint32 header, int size) { return big(header).leftJustified(size, '\0').repeated(2); };
    row("mp3", "MPEG 1 Layer II", two(0xFFFDA4C0, 576), "48ms 192 48000x1 @0+1152");
    row("mp3", "MPEG 1 Layer III, padded", two(0xFFFB9240, 418), "52ms 128 44100x2 @0+836");
    row("mp3", "MPEG 2.5 Layer III", two(0xFFE318C0, 72), "144ms 8 8000x1 @0+144");
    row("mp3", "a tag and a false sync", id3v2Tag(text("TIT2", "Song")) + falseSync + twoFrames,
        "52ms 128 44100x2 @1025+834");
    QByteArray falseSyncAtStep(9000, 'j'); // which only more than the first 8 KiB can tell from a frame
    falseSyncAtStep.replace(8180, 4, QByteArray("\xFF\xFB\x90\x00", 4));
    row("mp3", "a false sync where the first search ends", falseSyncAtStep + twoFrames, "52ms 128 44100x2 @9000+834");
    row("mp3", "Xing counts", vbrFrame(xing(1000, 653050)) + twoFrames, "26122ms 200 44100x2 @417+834");
    row("mp3", "VBRI counts",
        vbrFrame("VBRI" + QByteArray(6, '\0') + big<quint32>(653050) + big<quint32>(1000)) + twoFrames,
        "26122ms 200 44100x2 @417+834");
    const QByteArray otherRate = big<quint32>(0xFFFBB000).leftJustified(626, '\0').repeated(99);
    row("mp3", "another bit rate after 30 frames", mpegAudio(12510) + otherRate, "4655ms 128 44100x2 @0+74484 guess");
    row("mp3", "another bit rate after the first frame", mpegAudio(417) + otherRate,
        "3899ms 128 44100x2 @0+62391 guess");
    row("mp3", "other rates behind a count", vbrFrame(xing(1000, 653050)) + twoFrames + otherRate,
        "26122ms 200 44100x2 @417+62808");
    row("mp3", "APE tag", twoFrames + apeTag(20) + id3v1Tag("T", "A", 1, 1), "52ms 128 44100x2 @0+834");
    row("mp3", "huge APE tag", twoFrames + apeTag(16).last(32).replace(12, 4, "\1\1\1\1"), "? 0ms 0 0x0");
    row("mp3", "no frame in 256 KiB", QByteArray(262144 - 3, 'j') + twoFrames, "? 0ms 0 0x0 @0+262975");
}

void addXiphRows()
{
    const QByteArray info = flacStreamInfo(44100, 2, 441000);
    const QByteArray tail = flacBlock(1, "padding", true) + QByteArray(20000, 'a');
    row("flac", "payload to the end",
        "fLaC" + flacBlock(0, info) + flacBlock(6, QByteArray(500, 'p')) + tail + id3v1Tag("x", "y", 1, 1),
        "10000ms 16 44100x2 @557+20128");

    const QByteArray vorbis = oggPages({ vorbisIdentification(2, 44100) }, 0);
    row("ogg", "no last granule", vorbis + oggPages({ "audio" }, ~quint64(0)), "0ms 0 44100x2");
}

void addChunkRows()
{
    const QByteArray data = riffChunk("data", QByteArray(88200, 's'));
    row("wav", "odd chunk", riffChunk("RIFF", "WAVE" + waveFormat() + riffChunk("odd ", "123") + data),
        "500ms 1411 44100x2 @56+88200");
    row("wav", "size left by a pipe",
        riffChunk("RIFF", "WAVE" + waveFormat() + "data\xFF\xFF\xFF\xFF" + QByteArray(17640, 's')),
        "100ms 1411 44100x2 @44+17640");

    row("wav", "second format, a byte too short",
        riffChunk("RIFF", "WAVE" + waveFormat() + data + waveFormat()).chopped(1), "500ms 1411 44100x2 @44+88200");

    const QByteArray common = aiffCommon(2, 441000, 16, 0x400E, 0xAC44ull << 48);
    const QByteArray sound = formChunk("SSND", QByteArray(8, '\0') + QByteArray(1000, 's'));
    row("aiff", "odd chunk", formChunk("FORM", "AIFF" + common + formChunk("odd ", "123") + sound),
        "10000ms 1411 44100x2 @66+1000");
    row("aiff", "largest exponent", formChunk("FORM", "AIFF" + aiffCommon(2, 9, 16, 0x7FFF, 1)), "? 0ms 0 0x2");
}

void addMp4Rows()
{
    const QByteArray wideHeader =
        atom("mvhd", "\1" + QByteArray(19, '\0') + big<quint32>(44100) + big<quint64>(441000));
    row("m4a", "64-bit movie header", atom("moov", wideHeader), "10000ms 0 0x2");
    row("m4a", "size 0", atom("free", "x") + big<quint32>(0) + "mdat12345", "0ms 0 0x2 @17+5");
}

void addId3Rows()
{
    const auto id3 = [](const QByteArray &frames, char version = 3, char flags = 0) {
        return id3v2Tag(frames, version, flags) + twoFrames;
    };
    tags("mp3", "ID3v2.2",
         id3(text("TT2", "T", 2) + frame("COM", QByteArray("\0engd\0C", 7), 2) + text("TRK", "7", 2), 2), "T;C;7");
    tags("mp3", "ID3v2.3",
         id3(text("TIT2", " S\xE5ng ") + text("TPE1", "A") + text("TALB", "L") + text("TPE2", "B")
             + text("TCON", "(83)") + text("TRCK", "3/12") + text("TYER", "1987")),
         "Sång;A;L;B;Swing;1987;3");
    tags("mp3", "ID3v2.4", id3(frame("APIC", QByteArray(300, 'p'), 4) + text("TDRC", "2004-05-01", 4), 4), "2004");
    tags("mp3", "later frame", id3(text("TIT2", "1") + text("tit2", "2") + text("TIT2", " ")), "2");
    tags("mp3", "UTF-16", id3(frame("TIT2", "\1\xFF\xFE" + QByteArray("S\0o\0\0\0\0", 7))), "So");
    tags("mp3", "extended header 4", id3(syncsafe(3) + QByteArray(2, '\0') + text("TIT2", "T", 4), 4, 0x40), "T");
    tags("mp3", "extended header 3", id3(big<quint32>(6) + QByteArray(6, '\0') + text("TIT2", "T"), 3, 0x40), "T");
    tags("mp3", "padding", id3(text("TIT2", "1") + QByteArray(20, '\0') + text("TIT2", "2")), "1");
    tags("mp3", "ID3v1 fills gaps", id3(text("TIT2", "Long")) + id3v1Tag("Lo", " A ", 5, 17),
         "Long;A;Album;Rock;1999;5");
}

// Texts that are cut within their last letter, and what follows them.
void addLongRows()
{
    constexpr qsizetype limit = 1 << 20; // bytes
    const QByteArray bytes = QByteArray(limit - 1, 'a') + "\xC3\xBC" + QByteArray(100000, 'b');
    const QByteArray units =
        "\xFF\xFE" + QByteArray("a\0", 2).repeated(limit / 2 - 2) + QByteArray("\x3D\xD8\x00\xDE", 4);
    const auto id3 = [](const QByteArray &longFrame) { return id3v2Tag(longFrame + text("TPE1", "A")) + twoFrames; };
    const QByteArray start(limit - 1, 'a');
    tags("mp3", "long UTF-8", id3(frame("TIT2", '\3' + bytes)), start + ";A");
    tags("mp3", "long UTF-16", id3(frame("TIT2", '\1' + units)), start.first(limit / 2 - 2) + ";A");
    tags("mp3", "long Latin-1", id3(frame("COMM", QByteArray(5, '\0') + bytes)), "A;" + start + "\xC3\x83");
    const QByteArray comments = vorbisComment({ "TITLE=" + bytes, "ARTIST=A" });
    tags("flac", "long", "fLaC" + flacBlock(4, comments, true) + "a", start + ";A");
}

void addTagRows()
{
    const auto flac = [](const QByteArrayList &comments) {
        return "fLaC" + flacBlock(4, vorbisComment(comments), true) + "a";
    };
    tags("flac", "every key",
         flac({ "title=T=1", "Artist=A", "ALBUM=L", "ALBUMARTIST=B", "GENRE=17", "DATE=2004-05-01", "COMMENT=C",
                "TRACKNUMBER=3/12" }),
         "T=1;A;L;B;17;2004;C;3");
    tags("flac", "no comments",
         flac({ "TITLE=1", "=2", "TITLE", "TITLE= ", "ALBUM ARTIST=x", "TRACKNUMBER=-3", "DESCRIPTION=D" }), "1;D");

    tags("flac", "keys that are as long in upper case only",
         flac({ "ALBUMART\u0131\u017FT=B", "DE\u017FCR\u0131PT\u0131ON=D" }), "B;D");

    // The picture spans pages; a page of another stream stands between them.
    const QByteArray art = "\x03vorbis" + vorbisComment({ "PICTURE=" + QByteArray(140000, 'p'), "TITLE=T" });
    const QByteArray pages = oggPages({ vorbisIdentification(2, 44100), art }, 0);
    const qsizetype second = pages.indexOf("OggS", 4);
    tags("ogg", "joined packet", pages, "T");
    tags("ogg", "another stream", pages.first(second) + oggPages({ "other" }, 0, 2) + pages.sliced(second), "T");
    const QByteArray other = oggPages({ "\x03vorbis" + vorbisComment({ "TITLE=New" }) }, 0);
    tags("ogg", "packet cut off", pages.first(second) + other, "New");
    tags("ogg", "no segments", pages.first(second) + pages.first(26).replace(5, 1, "\1") + '\0' + pages.sliced(second),
         "T");

    const auto info = [](const QByteArray &items) {
        return riffChunk("RIFF", "WAVE" + riffChunk("LIST", "INFO" + items) + riffChunk("data", "1234"));
    };
    tags("wav", "every item",
         info(riffChunk("INAM", "T\xE5") + riffChunk("IART", "A") + riffChunk("IPRD", "L") + riffChunk("IGNR", "G")
              + riffChunk("ICRD", "2004-05") + riffChunk("ICMT", "C") + riffChunk("ITRK", "3")),
         "Tå;A;L;G;2004;C;3");

    const auto mp4 = [](const QByteArray &items) { return movie(movieHeader(1, 1), items); };
    tags("m4a", "every item",
         mp4(listItem("\251nam", "T\xC3\xA5") + listItem("\251ART", "A") + listItem("\251alb", "Long album")
             + listItem("aART", "B") + listItem("covr", QByteArray(9000, 'p')) + listItem("\251gen", "G")
             + listItem("\251day", "2004-05-01") + listItem("\251cmt", "C")
             + listItem("trkn", QByteArray("\0\0\0\3", 4))),
         "Tå;A;Long album;B;G;2004;C;3");
    tags("m4a", "genre", mp4(listItem("gnre", big<quint16>(18))), "Rock");
}

} // namespace

class TestReaders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("isTags");
        addMpegRows();
        addXiphRows();
        addChunkRows();
        addMp4Rows();
        addId3Rows();
        addLongRows();
        addTagRows();
        row("TXT", "an extension without a reader", "OggS", "0ms 0 0x0");
    }

    void reads()
    {
        QFETCH(QString, suffix);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isTags);
        const QString path = m_folder.filePath(u"file."_s + suffix);
        writeFile(path, bytes);
        ProbeResult result;
        QString error;
        const bool ok = probeFile(path, result, &error);
        QTEST(isTags ? describeTags(result) : describeAudio(ok, result), "expected");
        QVERIFY(ok ? error.isEmpty() : !isTags && error.startsWith("Unrecognised or damaged "_L1));
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestReaders)
#include "tst_readers.moc"
