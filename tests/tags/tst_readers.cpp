// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "mpegframeheader.h"
#include "probe.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace epr;
using namespace epr::test;

namespace {

/// The tags that are set, in the order of the record.
QString describeTags(const ProbeResult &r)
{
    QStringList values { r.title, r.artist, r.album, r.albumArtist, r.genre, r.year, r.comment };
    if (r.trackNo != 0)
        values << QString::number(r.trackNo);
    values.removeAll(QString());
    return values.join(u';');
}

/// "10000ms 128 44100x2 @100+50": kbit/s, Hz times channels, and the payload when it is valid. A failure has a
/// question mark in front.
QString describeAudio(bool ok, const ProbeResult &r)
{
    const QString range = r.audioRangeValid ? u" @%1+%2"_s.arg(r.audioOffset).arg(r.audioLength) : QString();
    return (ok ? QString() : u"? "_s) + u"%1ms %2 "_s.arg(r.durationMs).arg(r.bitrateKbps)
        + u"%1x%2"_s.arg(r.sampleRate).arg(r.channels) + range;
}

void row(const char *suffix, const char *name, const QByteArray &bytes, const char *expected)
{
    QTest::addRow("%s: %s", suffix, name)
        << QString::fromLatin1(suffix) << bytes << QString::fromUtf8(expected) << false;
}

void tags(const char *suffix, const char *name, const QByteArray &bytes, const char *expected)
{
    QTest::addRow("%s: %s", suffix, name)
        << QString::fromLatin1(suffix) << bytes << QString::fromUtf8(expected) << true;
}

const QByteArray twoFrames = mpegAudio(2 * mpegFrameSize);

void addMpegRows()
{
    const QByteArray tag = id3v2Tag(id3v2Text("TIT2", "Song"));
    const auto xing = [](quint32 flags, quint32 first, quint32 second = 0) {
        return "Xing" + big(flags) + big(first) + big(second);
    };
    const QByteArray v1 = id3v1Tag("Song", "Artist", 1, 17);
    QByteArray falseSync(1000, 'j');
    falseSync.replace(500, 4, QByteArray("\xFF\xFB\x90\x00", 4));
    const QByteArray mono22k = QByteArray("\xFF\xF3\x80\xC0", 4) + QByteArray(9, '\0') + xing(3, 100, 20000);
    row("mp3", "a constant bit rate gives the duration", mpegAudio(1280000), "80000ms 128 44100x2 @0+1280000");
    row("mp3", "a tag and junk with a false sync are skipped", tag + falseSync + twoFrames,
        "52ms 128 44100x2 @1025+834");
    row("mp3", "a tag footer counts, though it could pass for a frame",
        id3v2Tag(QByteArray(20, '\0'), 4, 0x10) + QByteArray("\xFF\xFB\0\0footer", 10) + twoFrames,
        "52ms 128 44100x2 @40+834");
    row("mp3", "a tag of 3 MiB", id3v2Tag(QByteArray(3 << 20, '\0')) + twoFrames, "52ms 128 44100x2 @3145738+834");
    row("mp3", "a Xing frame is no payload and its frame count gives the duration",
        mpegVbrFrame(36, xing(1, 1000)) + mpegAudio(417000), "26122ms 127 44100x2 @417+417000");
    row("mp3", "a Xing byte count gives the bit rate", mpegVbrFrame(36, xing(3, 1000, 653050)) + twoFrames,
        "26122ms 200 44100x2 @417+834");
    row("mp3", "an Info frame without counts leaves a constant bit rate",
        mpegVbrFrame(36, "Info" + big<quint32>(2) + big<quint32>(1000)) + mpegAudio(16000),
        "1000ms 128 44100x2 @417+16000");
    row("mp3", "a VBRI frame is understood",
        mpegVbrFrame(36, "VBRI" + QByteArray(6, '\0') + big<quint32>(653050) + big<quint32>(1000)) + twoFrames,
        "26122ms 200 44100x2 @417+834");
    row("mp3", "MPEG 2 mono has its Xing header nearer", mono22k.leftJustified(208, '\0') + twoFrames,
        "2612ms 61 22050x1 @208+834");
    row("mp3", "APE tag with its flags in place", tag + twoFrames + apeTag(20) + v1, "52ms 128 44100x2 @25+834");
    row("mp3", "APE tag with its flags in the count's place", twoFrames + apeTag(16), "52ms 128 44100x2 @0+834");
    row("mp3", "a tag that leaves no payload fails", tag, "? 0ms 0 0x0");
    row("mp3", "an APE tag larger than the file fails", twoFrames + apeTag(16).last(32).replace(12, 4, "\1\1\1\1"),
        "? 0ms 0 0x0");
    row("mp3", "a frame at the end of the first 256 KiB is found", QByteArray(262144 - 4, 'j') + twoFrames,
        "52ms 128 44100x2 @262140+834");
    row("mp3", "no frame in the first 256 KiB fails", QByteArray(262144 - 3, 'j') + twoFrames, "? 0ms 0 0x0 @0+262975");
}

void addFlacRows()
{
    const QByteArray info = flacStreamInfo(44100, 2, 441000);
    const QByteArray tail = flacBlock(1, "padding", true) + QByteArray(20000, 'a');
    row("flac", "the payload runs to the end, tags and all",
        "fLaC" + flacBlock(0, info) + flacBlock(6, QByteArray(500, 'p')) + tail + id3v1Tag("x", "y", 1, 1),
        "10000ms 16 44100x2 @557+20128");
    row("flac", "fields of the largest size",
        "fLaC" + flacBlock(0, flacStreamInfo(0xFFFFF, 8, 0xFFFFFFFFF).first(18)) + tail,
        "65536062ms 0 1048575x8 @37+20000");
    row("flac", "a short STREAMINFO tells nothing", "fLaC" + flacBlock(0, info.left(17)) + tail, "0ms 0 0x0 @36+20000");
    row("flac", "a last block past the end leaves no payload",
        "fLaC" + flacBlock(0, info) + flacBlock(1, "padding", true).left(8), "10000ms 0 44100x2");
    row("flac", "without a last block it fails", "fLaC" + flacBlock(0, info), "? 0ms 0 44100x2");
    row("flac", "an ID3 tag in front fails", id3v2Tag("x") + "fLaC" + tail, "? 0ms 0 0x0");
}

void addOggRows()
{
    const QByteArray comment = "\x03vorbis" + vorbisComment({ "TITLE=Song" });
    const QByteArray vorbis = oggPages({ vorbisIdentification(2, 44100) }, 0);
    const QByteArray end = oggPages({ "audio" }, 441000);
    row("ogg", "Vorbis counts granules at its sample rate",
        vorbis + oggPages({ comment, QByteArray(20000, 'a') }, 441000), "10000ms 16 44100x2");
    row("ogg", "without an identification header it is just Ogg", end, "0ms 0 0x0");
    row("ogg", "a sample rate of 2^31 is unknown", oggPages({ vorbisIdentification(1, 0x80000000) }, 0) + end,
        "0ms 0 0x1");
    row("ogg", "a last granule position of zero", vorbis + end + oggPages({ "audio" }, 0), "0ms 0 44100x2");
    row("ogg", "a last granule position of all ones", vorbis + oggPages({ "audio" }, ~quint64(0)), "0ms 0 44100x2");
    row("ogg", "a WAVE file fails", waveFile(waveFormat(2, 44100, 176400)), "? 0ms 0 0x0");

    row("opus", "granules at 48 kHz, the encoder's rate reported",
        oggPages({ opusIdentification(2, 44100), "OpusTags" + vorbisComment({}), "audio" }, 480000),
        "10000ms 0 44100x2");
}

void addWaveRows()
{
    const QByteArray format = waveFormat(2, 44100, 176400);
    const QByteArray data = riffChunk("data", QByteArray(88200, 's'));
    row("wav", "an odd chunk is padded", waveFile(format + riffChunk("odd ", "123") + data),
        "500ms 1411 44100x2 @56+88200");
    row("wav", "data that ends with the file too early", waveFile(format + data).chopped(44100),
        "250ms 1411 44100x2 @44+44100");
    row("wav", "data of the largest size, as a pipe leaves it",
        waveFile(format + "data\xFF\xFF\xFF\xFF" + QByteArray(17640, 's')), "100ms 1411 44100x2 @44+17640");
    row("wav", "another overrunning chunk ends the walk", waveFile(format + "junk\xFF\xFF\xFF\xFF" + data),
        "? 0ms 1411 44100x2");
    row("wav", "no format, no duration", waveFile(data), "0ms 0 0x0 @20+88200");
    row("wav", "a sample rate of 2^31 is unknown", waveFile(waveFormat(1, 0x80000000, 0xFFFFFFFF) + data),
        "0ms 34359738 0x1 @44+88200");
}

void addAiffRows()
{
    const QByteArray common = aiffCommon(2, 441000, 16, 0x400E, 0xAC44000000000000);
    const QByteArray sound = formChunk("SSND", QByteArray(8, '\0') + QByteArray(1000, 's'));
    row("aiff", "44.1 kHz, the sound after an odd chunk", aiffFile(common + formChunk("odd ", "123") + sound),
        "10000ms 1411 44100x2 @66+1000");
    row("aiff", "a bit rate beyond 32 bits is unknown",
        aiffFile(aiffCommon(60000, 441000, 60000, 0x400E, 0xAC44000000000000)), "10000ms 0 44100x60000");
    row("aiff", "a rate of 2^31 fails", aiffFile(aiffCommon(2, 9, 16, 0x401E, 0x8000000000000000)), "? 0ms 0 0x2");
    row("aiff", "a rate with the largest exponent fails", aiffFile(aiffCommon(2, 9, 16, 0x7FFF, 1)), "? 0ms 0 0x2");
    row("aiff", "a rate below one fails", aiffFile(aiffCommon(2, 9, 16, 16446 - 64, 16000)), "? 0ms 0 0x2");
    row("aiff", "a rate that is not normalised and has a sign",
        aiffFile(aiffCommon(1, 8000, 8, 0x8000 | (16446 + 3), 1000)), "1000ms 64 8000x1");
    row("aiff", "without a common chunk it fails", aiffFile(sound), "? 0ms 0 0x0 @28+1000");
}

void addMp4Rows()
{
    const QByteArray header = movieHeader(1000, 10000);
    const QByteArray wideHeader =
        atom("mvhd", "\1" + QByteArray(19, '\0') + big<quint32>(44100) + big<quint64>(441000));
    const QByteArray media = atom("mdat", QByteArray(20000, 'm'));
    row("m4a", "moov first", movie(header, {}) + media, "10000ms 16 0x2 @152+20000");
    row("m4a", "moov last", media + movie(header, {}), "10000ms 16 0x2 @8+20000");
    row("m4a", "a movie header of version 1", atom("moov", wideHeader), "10000ms 0 0x2");
    row("m4a", "a duration of all ones is unknown", atom("moov", wideHeader.first(32) + QByteArray(8, '\xFF')) + media,
        "0ms 0 0x2 @56+20000");
    row("m4a", "the last media data counts", media + wideAtom("mdat", "123"), "0ms 0 0x2 @20024+3");
    row("m4a", "media data of size 0 runs to the end", atom("free", "x") + big<quint32>(0) + "mdat12345",
        "0ms 0 0x2 @17+5");
    row("m4a", "an atom past its parent's end ends that parent alone", atom("moov", big<quint32>(9) + "trak") + media,
        "0ms 0 0x2 @24+20000");
    row("m4a", "neither duration nor payload fails", movie({}, listItem("\251nam", "x")), "? 0ms 0 0x2");
}

void addTagRows()
{
    const auto id3 = [](const QByteArray &frames, int version = 3, int flags = 0) {
        return id3v2Tag(frames, version, flags) + twoFrames;
    };
    const auto genre = [&](const QByteArray &text) { return id3(id3v2Text("TCON", text)); };
    const auto comment = [&](const QByteArray &encoding, const QByteArray &text) {
        return id3(id3v2Frame("COMM", encoding + "eng" + text));
    };
    const QByteArray unitZero(2, '\0');
    tags("mp3", "ID3v2.2",
         id3(id3v2Text("TT2", "T", 2) + id3v2Text("TP1", "A", 2) + id3v2Text("TAL", "L", 2) + id3v2Text("TP2", "B", 2)
                 + id3v2Text("TCO", "17", 2) + id3v2Frame("COM", QByteArray("\0engd\0C", 7), 2)
                 + id3v2Text("TRK", "7", 2) + id3v2Text("TYE", "1987", 2),
             2),
         "T;A;L;B;Rock;1987;C;7");
    tags("mp3", "ID3v2.3",
         id3(id3v2Text("TIT2", " S\xE5ng ") + id3v2Text("TPE1", "A") + id3v2Text("TALB", "L") + id3v2Text("TPE2", "B")
             + id3v2Text("TRCK", "3/12") + id3v2Text("TYER", "1987")),
         "Sång;A;L;B;1987;3");
    tags("mp3", "ID3v2.4 counts seven bits to a byte",
         id3(id3v2Frame("APIC", QByteArray(300, 'p'), 4) + id3v2Text("TDRC", "2004-05-01", 4), 4), "2004");
    tags("mp3", "a later frame overwrites, an empty one does not",
         id3(id3v2Text("TIT2", "1") + id3v2Text("tit2", "2") + id3v2Text("TIT2", " ")), "2");
    tags("mp3", "UTF-16 keeps a last Latin letter",
         id3(id3v2Frame("TIT2", "\1\xFF\xFE" + QByteArray("S\0o\0\0\0\0", 7))), "So");
    tags("mp3", "UTF-16 with its mark in the other order",
         id3(id3v2Frame("TIT2", "\1\xFE\xFF" + QByteArray("\0S\1\0", 4))), "SĀ");
    tags("mp3", "UTF-16 big-endian ends at a NUL", id3(id3v2Frame("TIT2", "\2" + QByteArray("\0S\0\0\0T", 6))), "S");
    tags("mp3", "UTF-8", id3(id3v2Frame("TIT2", "\3S\xC3\xA5ng")), "Sång");
    tags("mp3", "a bracketed genre number", genre("(83)"), "Swing");
    tags("mp3", "a genre number with a text", genre("(0)Rap"), "Blues");
    tags("mp3", "a genre number beyond the list", genre("84"), "84");
    tags("mp3", "a bracketed number beyond the list", genre("(255)"), "(255)");
    tags("mp3", "a genre that is no number", genre("(RX)"), "(RX)");
    tags("mp3", "a wide comment with an empty descriptor",
         comment("\1", "\xFF\xFE" + unitZero + "\xFF\xFE" + QByteArray("H\0i\0", 4)), "Hi");
    tags("mp3", "a wide comment whose descriptor's end is found at an odd place",
         comment("\1", QByteArray("\xFF\xFE\x41\0\0\0", 6) + "\xFF\xFE" + QByteArray("H\0i\0", 4)),
         "\uFF00\u48FE\u6900");
    tags("mp3", "a big-endian comment", comment("\2", unitZero + QByteArray("\0H", 2)), "H");
    tags("mp3", "a comment without a descriptor's end", comment("\3", "C"), "C");
    tags("mp3", "an extended header of version 4 counts itself",
         id3(syncsafe(3) + unitZero + id3v2Text("TIT2", "T", 4), 4, 0x40), "T");
    tags("mp3", "an extended header of version 3 does not",
         id3(big<quint32>(6) + QByteArray(6, '\0') + id3v2Text("TIT2", "T"), 3, 0x40), "T");
    tags("mp3", "padding ends the tag", id3(id3v2Text("TIT2", "1") + QByteArray(20, '\0') + id3v2Text("TIT2", "2")),
         "1");
    tags("mp3", "ID3v1 fills what is empty", id3(id3v2Text("TIT2", "Long")) + id3v1Tag("Lo", " A ", 5, 17),
         "Long;A;Album;Rock;1999;5");
    tags("mp3", "ID3v1 with a comment up to its end has no track",
         twoFrames + id3v1Tag("T", "A", 5, 17).replace(125, 1, "c"), "T;A;Album;Rock;1999");
    tags("mp3", "ID3v1 with nothing in it", twoFrames + id3v1Tag("", "", 0, 255), "Album;1999");
    tags("mp3", "a file of 128 bytes has no ID3v1 tag", id3v1Tag("T", "A", 1, 1).replace(64, 64, mpegAudio(64)), "");

    const auto flac = [](const QByteArrayList &comments) {
        return "fLaC" + flacBlock(4, vorbisComment(comments), true) + "a";
    };
    tags("flac", "every key, in any case",
         flac({ "title=T=1", "Artist=A", "ALBUM=L", "ALBUMARTIST=B", "GENRE=17", "DATE=2004-05-01", "COMMENT=C",
                "TRACKNUMBER=3/12" }),
         "T=1;A;L;B;17;2004;C;3");
    tags("flac", "what is no comment or empty is skipped",
         flac({ "TITLE=1", "=2", "TITLE", "TITLE= ", "ALBUM ARTIST=x", "TRACKNUMBER=-3", "DESCRIPTION=D" }), "1;D");
    tags("flac", "a value ends at a NUL", flac({ QByteArray("TITLE=1\0x", 9) }), "1");

    // The picture spans pages; a page of another stream stands between them.
    const QByteArray art = "\x03vorbis" + vorbisComment({ "PICTURE=" + QByteArray(140000, 'p'), "TITLE=T" });
    const QByteArray pages = oggPages({ vorbisIdentification(2, 44100), art }, 0, 1, 200);
    const qsizetype second = pages.indexOf("OggS", 4);
    tags("ogg", "a packet that continues on later pages is read whole", pages, "T");
    tags("ogg", "a page of another stream does not disturb it",
         pages.first(second) + oggPages({ "other" }, 0, 2) + pages.sliced(second), "T");
    const QByteArray other = oggPages({ "\x03vorbis" + vorbisComment({ "TITLE=New" }) }, 0);
    tags("ogg", "a packet that is not continued is dropped", pages.first(second) + other, "New");
    tags("ogg", "a page without segments does not end it",
         pages.first(second) + oggPages({}, 0).replace(5, 1, "\1") + pages.sliced(second), "T");
    tags("ogg", "only the first three packets are headers", pages + oggPages({ "setup" }, 0) + other, "T");

    const auto info = [](const QByteArray &items) {
        return waveFile(riffChunk("LIST", "INFO" + items) + riffChunk("data", "1234"));
    };
    tags("wav", "every INFO item",
         info(riffChunk("INAM", "T\xE5") + riffChunk("IART", "A") + riffChunk("IPRD", "L") + riffChunk("IGNR", "G")
              + riffChunk("ICRD", "2004-05") + riffChunk("ICMT", "C") + riffChunk("ITRK", "3")),
         "Tå;A;L;G;2004;C;3");
    tags("wav", "a track with a total is no number", info(riffChunk("INAM", "T") + riffChunk("ITRK", "3/12")), "T");
    tags("wav", "an item past the list's end", info(riffChunk("INAM", "T") + "IART" + little<quint32>(99) + "x"), "T");

    tags("aiff", "name and author",
         aiffFile(aiffCommon(1, 8000, 8, 0x400B, 0xFA00000000000000) + formChunk("NAME", "T\xE5 ")
                  + formChunk("AUTH", "A")),
         "Tå;A");
    tags("aiff", "a size that counts a missing pad byte",
         aiffFile(aiffCommon(1, 8000, 8, 0x400B, 0xFA00000000000000) + "NAME" + big<quint32>(2) + "T").chopped(1), "T");

    const auto mp4 = [](const QByteArray &items) { return movie(movieHeader(1, 1), items); };
    tags("m4a", "every item",
         mp4(listItem("\251nam", "T\xC3\xA5") + listItem("\251ART", "A") + listItem("\251alb", "Long album")
             + listItem("aART", "B") + listItem("covr", QByteArray(9000, 'p')) + listItem("\251gen", "G")
             + listItem("\251day", "2004-05-01") + listItem("\251cmt", "C")
             + listItem("trkn", QByteArray("\0\0\0\3", 4))),
         "Tå;A;Long album;B;G;2004;C;3");
    tags("m4a", "a genre number counts from 1", mp4(listItem("gnre", big<quint16>(18))), "Rock");
    tags("m4a", "genre number 0 changes nothing", mp4(listItem("\251gen", "G") + listItem("gnre", unitZero)), "G");
    tags("m4a", "a data atom's own size bounds the value",
         mp4(listItem("\251nam", "Title").replace(8, 4, big<quint32>(17))), "T");
    tags("m4a", "a data atom shorter than its header", mp4(listItem("\251nam", "T").replace(8, 4, big<quint32>(3))),
         "");
}

} // namespace

class TestReaders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void frameHeader_data();
    void frameHeader();

private:
    QTemporaryDir m_folder;
};

void TestReaders::reads_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("isTags");
    addMpegRows();
    addFlacRows();
    addOggRows();
    addWaveRows();
    addAiffRows();
    addMp4Rows();
    addTagRows();
    row("TXT", "an extension without a reader", "OggS", "0ms 0 0x0");
}

void TestReaders::reads()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isTags);
    QFile file(m_folder.filePath(u"file."_s + suffix));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    ProbeResult result;
    const bool ok = probeFile(file.fileName(), result);
    QTEST(isTags ? describeTags(result) : describeAudio(ok, result), "expected");
    QVERIFY(ok || !isTags);
}

void TestReaders::frameHeader_data()
{
    QTest::addColumn<quint32>("word");
    QTest::addColumn<QList<int>>("expected"); // layer, kbit/s, Hz, channels, bytes, samples, side bytes; or nothing
    const auto header = [](const char *name, quint32 word, const QList<int> &expected = {}) {
        QTest::newRow(name) << word << expected;
    };
    header("MPEG 1 Layer I, padded by a slot of four bytes", 0xFFFF6600, { 1, 192, 48000, 2, 196, 384, 32 });
    header("MPEG 1 Layer II", 0xFFFDA4C0, { 2, 192, 48000, 1, 576, 1152, 17 });
    header("MPEG 1 Layer III, padded", 0xFFFB9240, { 3, 128, 44100, 2, 418, 1152, 32 });
    header("MPEG 2 Layer I", 0xFFF7E000, { 1, 256, 22050, 2, 556, 384, 17 });
    header("MPEG 2 Layer III", 0xFFF380C0, { 3, 64, 22050, 1, 208, 576, 9 });
    header("MPEG 2.5 Layer III", 0xFFE318C0, { 3, 8, 8000, 1, 72, 576, 9 });
    header("free format", 0xFFFB0000, { 3, 0, 44100, 2, 0, 1152, 32 });
    header("reserved version", 0xFFEB9000);
    header("reserved layer", 0xFFF99000);
    header("bad bit rate", 0xFFFBF000);
    header("reserved sample rate", 0xFFFB9C00);
    header("ten bits of sync", 0xFFDB9000);
}

void TestReaders::frameHeader()
{
    QFETCH(quint32, word);
    const MpegFrameHeader h = parseMpegFrameHeader(big(word));
    const QList<int> found { h.layer,       h.bitrateKbps,     h.sampleRate,    h.channels,
                             h.frameLength, h.samplesPerFrame, h.sideInfoLength };
    QTEST(h.valid ? found : QList<int>(), "expected");
}

QTEST_GUILESS_MAIN(TestReaders)
#include "tst_readers.moc"
