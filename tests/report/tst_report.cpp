// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportwriter.h"
#include "sandbox.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QProcess>
#include <QTest>

using namespace epr;
using namespace epr::test;

namespace {

/// Everything that the formats have to escape, and text that runs from right to left.
const QString hostile = u"a \"b\", <i>&amp; c<!i>\n'd' \u05e9\u05dc\u05d5\u05dd \u202e 雨🎵"_s;

TrackInfo track(const QString &name, qint64 durationMs)
{
    TrackInfo info;
    info.path = u"/music/"_s + name;
    info.fileName = QFileInfo(info.path).fileName();
    info.suffix = u"mp3"_s;
    info.size = 4415029;
    info.mtime = QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58));
    info.stream.durationMs = durationMs;
    info.stream.bitrateKbps = 320;
    info.stream.sampleRate = 44100;
    info.stream.channels = 2;
    info.fullHash = u"digest of "_s + name;
    return info;
}

/// Three tracks for one group, the second of them to keep, and one more.
QList<TrackInfo> someTracks()
{
    QList<TrackInfo> tracks { track(u"x/"_s + hostile + u".mp3"_s, 61999), track(u"kept.mp3"_s, 3600000),
                              track(u"plain name.mp3"_s, 0), track(u"single.mp3"_s, 1) };
    tracks[0].tags.artist = tracks[0].tags.title = tracks[0].tags.album = hostile;
    tracks[2].tags.albumArtist = u"Various"_s;
    tracks[3].tags.title = u"one\r\ntwo"_s;
    tracks[3].stream.durationIsGuess = true;
    return tracks;
}

QList<MatchGroup> someGroups(qsizetype count)
{
    return QList<MatchGroup>(count, { 1, MatchType::SameAudio, { 0, 1, 2 }, 1, 0.985, 8830058 });
}

/// What a reader of the text file sees on every platform.
QString contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? QString::fromUtf8(file.readAll()) : QString();
}

/// What Python's own parsers make of a file: a list of rows, or of the texts between the tags.
QJsonArray pythonReads(const QString &path, ReportFormat format)
{
    const QString program = u"import csv, html.parser as h, json, sys\nf = open(sys.argv[1], encoding='utf-8')\nt = "
                            u"[]\np = h.HTMLParser()\n"
                            "p.handle_data = t.append\nif sys.argv[2] == 'csv': t = list(csv.reader(f, strict=True))\n"
                            "else: p.feed(f.read())\njson.dump(t, sys.stdout)"_s;
    QProcess python;
    python.start(u"python3"_s, { u"-c"_s, program, path, reportFormatExtension(format) });
    return python.waitForFinished() ? QJsonDocument::fromJson(python.readAll()).array() : QJsonArray();
}

} // namespace

class TestReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void tablesReadBack()
    {
        if (QStandardPaths::findExecutable(u"python3"_s).isEmpty())
            QSKIP("needs Python");
        write(ReportFormat::Csv, someGroups(1));
        const QJsonArray rows = pythonReads(path(), ReportFormat::Csv);
        QCOMPARE(rows.size(), 4);
        const TrackInfo first = someTracks().at(0);
        QCOMPARE(
            rows.at(1).toVariant().toStringList(),
            QStringList({ u"1"_s, u"Same audio, different tags"_s, u"0.98"_s, u"duplicate"_s, first.fileName,
                          native(QFileInfo(u"/music/x"_s).absoluteFilePath()), hostile, hostile, hostile, u"1:01"_s,
                          u"320"_s, u"44100"_s, u"2"_s, u"MP3"_s, u"4415029"_s, u"2024-02-29T23:59:58"_s }));
        QCOMPARE(rows.at(0).toVariant().toStringList().join(u','),
                 u"Group,Match type,Confidence,Keep,File,Folder,Artist,Title,Album,Duration,"
                 "Bitrate (kbps),Sample rate,Channels,Format,Size (bytes),Modified"_s);
        QCOMPARE(rows.at(2)[3], u"KEEP"_s);
        QCOMPARE(rows.at(3)[9], u"-"_s);

        const QString html = write(ReportFormat::Html, someGroups(1));
        const QStringList texts = QVariant(pythonReads(path(), ReportFormat::Html).toVariantList()).toStringList();
        const QString quality = u"|320 kbps, 44.1 kHz, stereo|4.21 MB|\n"_s;
        const QString expected = u"|Size|\n|remove|"_s + first.fileName + u'|' + native(first.path) + u'|' + hostile
            + u" \u2013 "_s + hostile + u"|1:01"_s + quality + u"|KEEP|kept.mp3|"_s + native(u"/music/kept.mp3"_s)
            + u"|(unknown artist) \u2013 kept|60:00"_s + quality + u"|remove|plain name.mp3|"_s
            + native(u"/music/plain name.mp3"_s) + u"|Various \u2013 plain name|-"_s + quality;
        QVERIFY2(texts.join(u'|').contains(expected), qPrintable(html));
        QVERIFY(texts.join(u'|').contains(u" \u00b7 scanned "_s + native(u"/music, /<b>|"_s)));
    }

    // The report is put together from pieces; that must not show.
    void jsonIsOneDocument()
    {
        for (const int count : { 0, 3 }) {
            const QByteArray text = write(ReportFormat::Json, someGroups(count)).toUtf8();
            QJsonObject json = QJsonDocument::fromJson(text).object();
            QCOMPARE(text, QJsonDocument(json).toJson(QJsonDocument::Indented));
            const QJsonArray groups = json.take("duplicateGroups"_L1).toArray();
            QCOMPARE(groups.size(), count);
            QCOMPARE(json["reclaimableBytes"_L1].toInteger(), 8830058 * count);
            if (groups.isEmpty())
                continue;
            const QJsonArray files = groups.last()["files"_L1].toArray();
            QVERIFY(files.at(1)["keep"_L1].toBool() && !files.at(0)["keep"_L1].toBool(true));
            for (const QString &key : { u"album"_s, u"artist"_s, u"title"_s })
                QCOMPARE(files.at(0)[key].toString(), hostile);
        }
    }

    void missingPartsAreToldAndNotProposed()
    {
        QList<MatchGroup> groups = someGroups(1);
        groups[0].spans = { { 1, { 0, 0, 100000, true } },
                            { 0, { 0, 0, 58000, true } },
                            { 2, { 500, 500, 98000, true } } };
        const QStringList rows = write(ReportFormat::Csv, groups).split(u'\n');
        QVERIFY(rows.first().endsWith(u",Modified,Missing"_s) && rows.at(rows.size() - 2).endsWith(u",\"\""_s));
        QVERIFY(rows.join(u'|').contains(u",\"ends 42 s earlier\"|"_s));
        const QJsonDocument json = QJsonDocument::fromJson(write(ReportFormat::Json, groups).toUtf8());
        const QJsonValue files = json["duplicateGroups"_L1][0]["files"_L1];
        QCOMPARE(files[0]["missingAtEndMs"_L1].toInteger(), 42000);
        QVERIFY(files[2]["missingAtEndMs"_L1].isUndefined());
        QVERIFY(write(ReportFormat::Html, groups).contains(u"<td>ends 42 s earlier</td>"_s));
        QCOMPARE(write(ReportFormat::Playlist, groups).count(u"#EXTINF"_s), 1);
        groups[0].spans.clear();
        QVERIFY(!write(ReportFormat::Csv, groups).contains(u"Missing"_s));
    }

    void relationsAreTold()
    {
        QList<MatchGroup> groups = someGroups(1);
        groups[0].links = { { 0, 1, MatchType::SameRecording, 0.051 }, { 1, 2, MatchType::SameSong } };
        const QJsonValue files = QJsonDocument::fromJson(write(ReportFormat::Json, groups).toUtf8())
                                     .object()["duplicateGroups"_L1][0]["files"_L1];
        QCOMPARE(files[0]["relationToKept"_L1],
                 QJsonObject({ { u"kind"_s, u"sameRecording"_s }, { u"percentAlike"_s, 94 } }));
        QVERIFY(files[1]["relationToKept"_L1].isUndefined());
        const QString html = write(ReportFormat::Html, groups);
        QVERIFY(html.contains(u"<th>Size</th><th>Relation</th></tr>"_s));
        QVERIFY(html.contains(u"</td><td>same artist and title</td></tr>"_s));
        QVERIFY(!write(ReportFormat::Csv, groups).contains(u"alike"_s));
    }

    void guessesAndEditsAreMarked()
    {
        QList<MatchGroup> groups { someGroups(1).first(), { 2, MatchType::SameSong, { 3, 1 }, 1, 1, 1 } };
        groups[1].edits.insert(3, 2);
        const QStringList rows = write(ReportFormat::Csv, groups).split(u'\n');
        QVERIFY(rows.first().endsWith(u",Modified,Remark,Duration is a guess"_s));
        QCOMPARE(rows.filter(u",\"may be an edit of plain name.mp3\",\"yes\""_s).size(), 1);
        QCOMPARE(write(ReportFormat::Html, groups).count(u">may be an edit of plain name.mp3<"_s), 1);
        QCOMPARE(write(ReportFormat::Json, groups).count(u"\"mayBeEditOf\": \"/music/plain name.mp3\""_s), 1);
        QCOMPARE(write(ReportFormat::Html, groups).count(u"<td>~0:00</td>"_s), 1);
        QCOMPARE(write(ReportFormat::Json, groups).count(u"\"durationIsGuess\": true"_s), 1);
    }

    void checksAreToldAndNotProposed()
    {
        QList<MatchGroup> groups = someGroups(1);
        GroupCheck &check = groups[0].check;
        check.measures[0].loudness = -9.3;
        check.measures[1].loudness = -14;
        check.measures[2].error = u"<gone>"_s;
        check.pairs = { { 1, 0, true, 0, { { SoundDifference::Kind::Silent, true, 0, 0, 20000, 21000 } } } };
        const QString csv = write(ReportFormat::Csv, groups);
        QVERIFY(csv.section(u'\n', 0, 0).endsWith(u",Modified,Check,Loudness (LUFS)"_s));
        QVERIFY(csv.contains(u",\"silent 0:20-0:21; 4.7 dB louder than the kept copy\",-9.3\n"_s));
        const QJsonDocument json = QJsonDocument::fromJson(write(ReportFormat::Json, groups).toUtf8());
        const QJsonValue files = json["duplicateGroups"_L1][0]["files"_L1];
        QCOMPARE(files[0]["check"_L1]["differences"_L1][0]["kind"_L1], u"silent"_s);
        QCOMPARE(files[0]["check"_L1]["differences"_L1][0]["endMs"_L1].toInteger(), 21000);
        QVERIFY(files[1]["check"_L1]["truePeakDbtp"_L1].isNull());
        QCOMPARE(files[2]["check"_L1]["error"_L1], u"<gone>"_s);
        const QString html = write(ReportFormat::Html, groups);
        QVERIFY(html.contains(u"<td><div class=\"path\">silent 0:20-0:21</div>"_s));
        QVERIFY(html.contains(u"remove<div class=\"path\">could not be checked: &lt;gone&gt;</div>"_s));
        QCOMPARE(write(ReportFormat::Playlist, groups).count(u"#EXTINF"_s), 1);
    }

    void oddGroupsAreReportedAsFarAsTheyGo()
    {
        const QList<MatchGroup> groups { {}, { .members = { 2, -1, 4, 1 }, .keep = 9 } };
        for (const ReportFormat format : { ReportFormat::Csv, ReportFormat::Html, ReportFormat::Json })
            QVERIFY(write(format, groups).contains(u"kept.mp3"_s));
        QVERIFY(write(ReportFormat::Playlist, groups).endsWith(native(u"/music/kept.mp3\n"_s)));
        QVERIFY(write(ReportFormat::Html, groups).contains(u"<b>3</b><span>Redundant"_s));
    }

    void playlistHoldsThePathsToRemove()
    {
        const QList<MatchGroup> groups { someGroups(1).first(), { 2, MatchType::IdenticalFile, { 3, 1 }, 1, 1, 1 } };
        QStringList lines = write(ReportFormat::Playlist, groups).split(u'\n');
        QVERIFY(lines.takeAt(1).startsWith(u"# Echoprune 1.0.0 - proposed duplicates, "_s));
        const QString broken = native(someTracks().at(0).path).replace(u'\n', u' ');
        QCOMPARE(
            lines,
            QStringList({ u"#EXTM3U"_s, u"# Left out, its path contains a line break: "_s + broken,
                          u"#EXTINF:0,Various - plain name"_s, native(u"/music/plain name.mp3"_s),
                          u"#EXTINF:0,(unknown artist) - one  two"_s, native(u"/music/single.mp3"_s), QString() }));
    }

    void failureLeavesTheOldFile()
    {
        const QString old = write(ReportFormat::Csv, {});
        QVERIFY(old.startsWith(u"Group,"_s));
        // A small report fails only when the last buffer is written.
        for (const int groups : { isUnix ? 1000 : 0, isUnix ? 1 : 0, 0 }) {
            const QString target = groups > 0 ? path() : path() + u"/inside a file"_s;
            QString error;
            limitFileSize(300);
            const bool written = writeReport(target, ReportFormat::Csv, someTracks(), someGroups(groups), {}, &error);
            limitFileSize(-1);
            QVERIFY2(!written && !error.isEmpty() && error != u"Unknown error"_s, qPrintable(error));
            QCOMPARE(contentOf(path()), old);
            QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        }
    }

    void reportThatIsOpenElsewhereSaysSo()
    {
        if (isUnix)
            QSKIP("This system replaces files that are open");
        const QString old = write(ReportFormat::Csv, {});
        QFile holder(path());
        QVERIFY(holder.open(QIODevice::ReadOnly));
        QString error;
        QVERIFY(!canWriteReport(path(), &error));
        QCOMPARE(error, u"Sharing violation: the file is in use by another program"_s);
        QCOMPARE(write(ReportFormat::Csv, someGroups(1)), error);
        QCOMPARE(contentOf(path()), old);
    }

private:
    QString path() const { return m_dir.filePath(u"report"_s); }
    QString write(ReportFormat format, const QList<MatchGroup> &groups) const
    {
        QString error;
        const bool written = writeReport(path(), format, someTracks(), groups, { u"/music"_s, u"/<b>"_s }, &error);
        // A path without a drive means the current one where there are drives.
        return written ? contentOf(path()).replace(QFileInfo(u"/x"_s).absolutePath(), u"/"_s) : error;
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestReport)
#include "tst_report.moc"
