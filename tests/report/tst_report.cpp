// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metadata.h"
#include "reporttext.h"
#include "reportwriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

using namespace epr;
using namespace Qt::StringLiterals;

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
    info.durationMs = durationMs;
    info.bitrateKbps = 320;
    info.sampleRate = 44100;
    info.channels = 2;
    info.fullHash = u"f"_s;
    return info;
}

/// Three tracks for one group, the second of them to keep, and one more.
QList<TrackInfo> someTracks()
{
    QList<TrackInfo> tracks { track(u"x/"_s + hostile + u".mp3"_s, 61999), track(u"kept.mp3"_s, 3600000),
                              track(u"plain name.mp3"_s, 0), track(u"single.mp3"_s, 1) };
    tracks[0].artist = tracks[0].title = tracks[0].album = hostile;
    tracks[2].albumArtist = u"Various"_s;
    tracks[3].title = u"one\r\ntwo"_s;
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

/// RFC 4180: fields in quotes may hold commas, line breaks and doubled quotes.
QList<QStringList> parseCsv(const QString &text)
{
    QList<QStringList> rows { { QString() } };
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == u'"' && quoted && text.mid(i + 1, 1) == u'"')
            rows.last().last().append(text.at(++i));
        else if (c == u'"')
            quoted = !quoted;
        else if (c == u',' && !quoted)
            rows.last().append(QString());
        else if (c == u'\n' && !quoted)
            rows.append(QStringList { QString() });
        else
            rows.last().last().append(c);
    }
    return rows;
}

/// The texts between the tags of an HTML page.
QStringList htmlTexts(const QString &html)
{
    static const QRegularExpression tag(u"<[!/a-z][^<>]*>\\n?"_s);
    QString page = html;
    QStringList texts = page.replace(u'|', u'/').replace(tag, u"|"_s).split(u'|', Qt::SkipEmptyParts);
    for (QString &text : texts) {
        text.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s).replace(u"&quot;"_s, u"\""_s);
        text.replace(u"&amp;"_s, u"&"_s);
    }
    return texts;
}

/// Lets no file grow beyond the size: what a full disk does to a writer. 0 lifts the limit.
void limitFileSize([[maybe_unused]] quint64 bytes)
{
#ifdef Q_OS_UNIX
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit { bytes == 0 ? RLIM_INFINITY : bytes, RLIM_INFINITY };
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
#endif
}

} // namespace

class TestReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }
    void csvReadsBack();
    void htmlReadsBack();
    void jsonIsOneDocument();
    void playlistHoldsThePathsToRemove();
    void failureLeavesTheOldFile_data();
    void failureLeavesTheOldFile();
    void memoryDoesNotGrowWithTheGroups();

private:
    QString path() const { return m_dir->filePath(u"report"_s); }
    QString write(ReportFormat format, const QList<MatchGroup> &groups) const
    {
        QString error;
        const bool written = writeReport(path(), format, someTracks(), groups, { u"/music"_s, u"/<b>"_s }, &error);
        // A path without a drive means the current one where there are drives.
        return written ? contentOf(path()).replace(QFileInfo(u"/x"_s).absolutePath(), u"/"_s) : error;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestReport::csvReadsBack()
{
    const QString text = write(ReportFormat::Csv, someGroups(1));
    const QList<QStringList> rows = parseCsv(text);
    QCOMPARE(rows.size(), 5);
    const QString name = someTracks().at(0).fileName;
    QCOMPARE(rows.at(1),
             QStringList({ u"1"_s, u"Same audio, different tags"_s, u"0.98"_s, u"duplicate"_s, name, u"/music/x"_s,
                           hostile, hostile, hostile, u"1:01"_s, u"320"_s, u"44100"_s, u"2"_s, u"MP3"_s, u"4415029"_s,
                           u"2024-02-29T23:59:58"_s }));
    QVERIFY(
        text.startsWith(u"Group,Match type,Confidence,Keep,File,Folder,Artist,Title,Album,Duration,Bitrate (kbps),"
                        "Sample rate,Channels,Format,Size (bytes),Modified\n1,\"Same audio, different tags\",0.98,"_s));
    QVERIFY(
        text.contains(u"\n1,\"Same audio, different tags\",0.98,KEEP,\"kept.mp3\",\"/music\",\"\",\"\",\"\",\"60:00\","
                      "320,44100,2,\"MP3\",4415029,\"2024-02-29T23:59:58\"\n"_s));
    QCOMPARE(rows.at(3).at(9), u"-"_s);
    QCOMPARE(rows.at(4), QStringList { QString() });
}

void TestReport::htmlReadsBack()
{
    const QString html = write(ReportFormat::Html, someGroups(1));
    QVERIFY(html.startsWith("<!DOCTYPE html>\n<html lang=\"en-AU\"><head><meta charset=\"utf-8\">\n<title>"_L1));
    QStringList texts = htmlTexts(html);
    QCOMPARE(texts.takeFirst(), u"Echoprune duplicate report"_s);
    QVERIFY(texts.takeFirst().startsWith(u"body{font-family:'Segoe UI',"_s));
    static const QRegularExpression meta(
        u"^Generated \\d\\d \\w{3} \\d{4} \\d\\d:\\d\\d:\\d\\d [+-]\\d{4} &middot; scanned /music, /<b>$"_s);
    QVERIFY(meta.match(texts.value(3)).hasMatch());
    texts.removeAt(3);
    const QString quality = u"|320 kbps, 44.1 kHz, stereo|4.21 MB"_s;
    const TrackInfo first = someTracks().at(0);
    const QString expected =
        u"Echo|prune| duplicate report|4|Files scanned|1|Duplicate groups|2|Redundant files|8.42 MB|"
        "Reclaimable|Group 1 &middot; Same audio, different tags |&middot; 8.42 MB reclaimable|"
        "Action|File|Artist / Title|Duration|Quality|Size|remove|"_s
        + first.fileName + u'|' + first.path + u'|' + hostile + u" &ndash; "_s + hostile + u"|1:01"_s + quality
        + u"|KEEP|kept.mp3|/music/kept.mp3|(unknown artist) &ndash; kept|60:00"_s + quality
        + u"|remove|plain name.mp3|/music/plain name.mp3|Various &ndash; plain name|-"_s + quality
        + u"|Echoprune 1.0.0 &middot; "_s + metadata::rightsNotice();
    QCOMPARE(texts.join(u'|'), expected);
    QVERIFY(
        html.contains(u"<tr><td class=\"dupe\">remove</td><td>plain name.mp3<div class=\"path\">/music/plain name.mp3"
                      "</div></td><td>Various &ndash; plain name</td><td>-</td><td>"_s));
}

// The report is put together from pieces; that must not show.
void TestReport::jsonIsOneDocument()
{
    for (const int count : { 0, 1, 3 }) {
        const QByteArray text = write(ReportFormat::Json, someGroups(count)).toUtf8();
        QJsonObject json = QJsonDocument::fromJson(text).object();
        QCOMPARE(text, QJsonDocument(json).toJson(QJsonDocument::Indented));
        QVERIFY(QDateTime::fromString(json.take("generated"_L1).toString(), Qt::ISODate).isValid());
        const QJsonArray groups = json.take("duplicateGroups"_L1).toArray();
        QCOMPARE(groups.size(), count);
        const QString expected =
            u"{\"application\":\"Echoprune\",\"duplicateFiles\":%1,\"filesScanned\":4,\"groups\":%2,"
            "\"reclaimableBytes\":%3,\"roots\":[\"/music\",\"/<b>\"],\"version\":\"1.0.0\"}"_s;
        QCOMPARE(QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Compact)),
                 expected.arg(2 * count).arg(count).arg(8830058 * count));
        if (groups.isEmpty())
            continue;
        QJsonObject group = groups.last().toObject();
        const QJsonArray files = group.take("files"_L1).toArray();
        QCOMPARE(QJsonDocument(group).toJson(QJsonDocument::Compact),
                 "{\"confidence\":0.985,\"id\":1,\"matchType\":\"Same audio, different tags\","
                 "\"reclaimableBytes\":8830058}");
        QCOMPARE(QJsonDocument(files.at(1).toObject()).toJson(QJsonDocument::Compact),
                 "{\"album\":\"\",\"artist\":\"\",\"audioSha256\":\"\",\"bitrateKbps\":320,\"channels\":2,"
                 "\"durationMs\":3600000,\"keep\":true,\"path\":\"/music/kept.mp3\",\"sampleRate\":44100,"
                 "\"sha256\":\"f\",\"sizeBytes\":4415029,\"title\":\"\"}");
        for (const QString &key : { u"album"_s, u"artist"_s, u"title"_s })
            QCOMPARE(files.at(0)[key].toString(), hostile);
        QCOMPARE(files.at(0)["keep"_L1], QJsonValue(false));
    }
}

void TestReport::playlistHoldsThePathsToRemove()
{
    const QList<MatchGroup> groups { someGroups(1).first(), { 2, MatchType::IdenticalFile, { 3, 1 }, 1, 1, 1 } };
    QStringList lines = write(ReportFormat::Playlist, groups).split(u'\n');
    static const QRegularExpression head(
        u"^# Echoprune 1\\.0\\.0 - proposed duplicates, \\d\\d \\w{3} \\d{4} \\d\\d:\\d\\d:\\d\\d [+-]\\d{4}$"_s);
    QVERIFY(head.match(lines.takeAt(1)).hasMatch());
    const QString broken = QString(someTracks().at(0).path).replace(u'\n', u' ');
    QCOMPARE(lines,
             QStringList({ u"#EXTM3U"_s, u"# Left out, its path contains a line break: "_s + broken,
                           u"#EXTINF:0,Various - plain name"_s, u"/music/plain name.mp3"_s,
                           u"#EXTINF:0,(unknown artist) - one  two"_s, u"/music/single.mp3"_s, QString() }));
}

void TestReport::failureLeavesTheOldFile_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("existed");
    QTest::addColumn<int>("groups");
    QTest::newRow("no folder") << u"missing/report"_s << false << 0;
    QTest::newRow("a folder of that name") << u"."_s << false << 0;
#ifdef Q_OS_UNIX
    QTest::newRow("full disk") << u"report"_s << true << 1000;
    QTest::newRow("full disk, nothing there before") << u"report"_s << false << 1000;
    QTest::newRow("full disk, everything still in a buffer") << u"report"_s << true << 1;
    QTest::newRow("a pipe of that name") << u"pipe"_s << false << 0;
#endif
}

void TestReport::failureLeavesTheOldFile()
{
    QFETCH(QString, target);
    QFETCH(bool, existed);
    QFETCH(int, groups);
    const QString old = existed ? write(ReportFormat::Csv, {}) : QString();
#ifdef Q_OS_UNIX
    QCOMPARE(mkfifo(QFile::encodeName(m_dir->filePath(u"pipe"_s)).constData(), 0600), 0);
#endif
    QString error;
    limitFileSize(300);
    const bool written = writeReport(QDir::cleanPath(m_dir->filePath(target)), ReportFormat::Csv, someTracks(),
                                     someGroups(groups), {}, &error);
    limitFileSize(0);
    QVERIFY(!written);
    QVERIFY(!error.isEmpty());
    QCOMPARE(contentOf(path()), old);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), existed ? 1 : 0);
}

void TestReport::memoryDoesNotGrowWithTheGroups()
{
#if defined(Q_OS_LINUX) && !defined(__SANITIZE_ADDRESS__) // which holds on to freed memory
    const auto peakKilobytes = [] {
        QFile status(u"/proc/self/status"_s);
        const QByteArray lines = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
        return lines.mid(lines.indexOf("VmHWM:") + 6).trimmed().split(' ').value(0).toLongLong();
    };
    const QList<MatchGroup> groups = someGroups(50000);
    const qint64 before = peakKilobytes();
    QVERIFY(before > 0);
    for (const ReportFormat format : { ReportFormat::Json, ReportFormat::Html }) {
        QString error;
        QVERIFY(writeReport(path(), format, someTracks(), groups, {}, &error));
        QVERIFY(QFileInfo(path()).size() > 50000000);
    }
    const qint64 grown = peakKilobytes() - before;
    QVERIFY2(grown < 30000, qPrintable(QString::number(grown)));
#endif
}

QTEST_GUILESS_MAIN(TestReport)
#include "tst_report.moc"
