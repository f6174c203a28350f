// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "../cleanup/sandbox.h"
#include "reporttext.h"
#include "reportwriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
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

} // namespace

class TestReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }
    void csvReadsBack()
    {
        const QList<QStringList> rows = parseCsv(write(ReportFormat::Csv, someGroups(1)));
        QCOMPARE(rows.size(), 5);
        const QString name = someTracks().at(0).fileName;
        QCOMPARE(rows.at(1),
                 QStringList({ u"1"_s, u"Same audio, different tags"_s, u"0.98"_s, u"duplicate"_s, name, u"/music/x"_s,
                               hostile, hostile, hostile, u"1:01"_s, u"320"_s, u"44100"_s, u"2"_s, u"MP3"_s,
                               u"4415029"_s, u"2024-02-29T23:59:58"_s }));
        QCOMPARE(rows.at(0).join(u','),
                 u"Group,Match type,Confidence,Keep,File,Folder,Artist,Title,Album,Duration,"
                 "Bitrate (kbps),Sample rate,Channels,Format,Size (bytes),Modified"_s);
        QCOMPARE(rows.at(2).mid(3, 2), QStringList({ u"KEEP"_s, u"kept.mp3"_s }));
        QCOMPARE(rows.at(3).at(9), u"-"_s);
        QCOMPARE(rows.at(4), QStringList { QString() });
    }

    void htmlReadsBack()
    {
        const QString html = write(ReportFormat::Html, someGroups(1));
        QVERIFY(html.contains(u" &middot; scanned /music, /&lt;b&gt;<"_s));
        const QStringList texts = htmlTexts(html);
        const QString quality = u"|320 kbps, 44.1 kHz, stereo|4.21 MB"_s;
        const TrackInfo first = someTracks().at(0);
        const QString expected = u"|Size|remove|"_s + first.fileName + u'|' + first.path + u'|' + hostile
            + u" &ndash; "_s + hostile + u"|1:01"_s + quality
            + u"|KEEP|kept.mp3|/music/kept.mp3|(unknown artist) &ndash; kept|60:00"_s + quality
            + u"|remove|plain name.mp3|/music/plain name.mp3|Various &ndash; plain name|-"_s + quality;
        QVERIFY2(texts.join(u'|').contains(expected), qPrintable(html));
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
            QCOMPARE(files.at(1)["keep"_L1], QJsonValue(true));
            for (const QString &key : { u"album"_s, u"artist"_s, u"title"_s })
                QCOMPARE(files.at(0)[key].toString(), hostile);
            QCOMPARE(files.at(0)["keep"_L1], QJsonValue(false));
        }
    }

    void playlistHoldsThePathsToRemove()
    {
        const QList<MatchGroup> groups { someGroups(1).first(), { 2, MatchType::IdenticalFile, { 3, 1 }, 1, 1, 1 } };
        QStringList lines = write(ReportFormat::Playlist, groups).split(u'\n');
        QVERIFY(lines.takeAt(1).startsWith(u"# Echoprune 1.0.0 - proposed duplicates, "_s));
        const QString broken = QString(someTracks().at(0).path).replace(u'\n', u' ');
        QCOMPARE(lines,
                 QStringList({ u"#EXTM3U"_s, u"# Left out, its path contains a line break: "_s + broken,
                               u"#EXTINF:0,Various - plain name"_s, u"/music/plain name.mp3"_s,
                               u"#EXTINF:0,(unknown artist) - one  two"_s, u"/music/single.mp3"_s, QString() }));
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
            QVERIFY(!written && !error.isEmpty());
            QCOMPARE(contentOf(path()), old);
            QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        }
    }

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

QTEST_GUILESS_MAIN(TestReport)
#include "tst_report.moc"
