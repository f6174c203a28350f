// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "textfile.h"

#include "audiobuilder.h"
#include "rows.h"
#include "temporarylibrary.h"

#include <QStringEncoder>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

QByteArray playlist(QStringConverter::Encoding encoding, QStringConverter::Flag flag = QStringConverter::Flag::Default)
{
    QStringEncoder encoder(encoding, flag);
    return encoder(u"#EXTM3U\r\n#EXTINF:180,Müller\r\nMüller.mp3\r\n"_s);
}

} // namespace

class TestTextFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsTextFromSound_data()
    {
        using Flag = QStringConverter::Flag;
        const Rows<QByteArray, bool> row("content", "expected");
        row("playlist", playlist(QStringConverter::Utf8), true);
        row("playlist in Latin-1", playlist(QStringConverter::Latin1), true);
        row("playlist with a byte order mark", playlist(QStringConverter::Utf8, Flag::WriteBom), true);
        row("playlist in UTF-16 with a mark", playlist(QStringConverter::Utf16LE, Flag::WriteBom), true);
        row("playlist in UTF-16", playlist(QStringConverter::Utf16LE), true);
        row("playlist in UTF-16, big-endian", playlist(QStringConverter::Utf16BE), true);
        row("playlist, then zeros", playlist(QStringConverter::Utf8) + QByteArray(9000, '\0'), true);
        row("manifest in one line", "<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\">" + QByteArray(9000, ' '), true);
        row("cut within a letter", "\n\n \t" + QByteArray(4091, 'a') + "\xC3\xBC", true);
        const QByteArray tag = id3v2Tag(text("TIT2", "Song"));
        row("playlist behind tags", tag + id3v2Tag({}, 4) + playlist(QStringConverter::Utf8), true);
        row("empty", {}, false);
        row("nothing but a tag", tag, false);
        row("tag that overruns", tag.chopped(1), false);
        row("WAVE, of letters", waveOf('a'), false);
        row("FLAC", "fLaC" + flacBlock(0, flacStreamInfo(44100, 2, 441000), true) + QByteArray(9000, 'a'), false);
        row("MP3", mpegAudio(9000), false);
        row("MP3 behind the answer of a web server", "ICY 200 OK\r\nicy-br:128\r\n\r\n" + mpegAudio(9000), false);
        row("MPEG frame without control characters", QByteArray("\xFF\xFB\x90\x64 and\n"), false);
        row("MPEG frame like a byte order mark", QByteArray("\xFF\xFE\x90\x64", 4) + QByteArray(9000, '\0'), false);
        row("Ogg", oggPages({ vorbisIdentification(2, 44100) }, 0), false);
        row("silence", QByteArray(9000, '\0'), false);
    }

    void tellsTextFromSound()
    {
        QFETCH(const QByteArray, content);
        QFETCH(const bool, expected);
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"song.mp3"_s), content);
        QCOMPARE(looksLikeText(folder.filePath(u"song.mp3"_s)), expected);
    }
};

QTEST_GUILESS_MAIN(TestTextFile)
#include "tst_textfile.moc"
