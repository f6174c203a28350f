// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What writing the reports of a large result costs, in time and in memory beyond what the scan's lists take.
//
//   bench_report [GROUPS] [FOLDER]      50,000 unless given; with a folder the reports stay there to be looked at

#include "reportwriter.h"
#include "syntheticlibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr std::array artists { "The Paper Lanterns", "Céline Marchand", "Орлова & хор", "Guns <and> Gardens",
                               "שירה כהן" };
constexpr std::array titles { "Slow Train Home", "Été indien (live at the harbour)", "Белые ночи",
                              "R&B \"Interlude\" No. 4", "שיר של בוקר" };

TrackInfo someTrack(epr::bench::Random &random, const QString &artist, const QString &title, bool lossless)
{
    TrackInfo track;
    track.tags.artist = artist;
    track.tags.title = title;
    track.tags.album = u"Collected recordings, vol. %1"_s.arg(random.below(30));
    track.suffix = lossless ? u"flac"_s : u"mp3"_s;
    track.fileName = u"%1 - %2 [%3].%4"_s.arg(artist, title, QString::number(random.below(100000)), track.suffix);
    track.path = u"/srv/music/library/%1/%2/%3"_s.arg(artist, track.tags.album, track.fileName);
    track.stream.durationMs = 90000 + random.below(240000);
    track.stream.bitrateKbps = lossless ? 931 : 320;
    track.stream.sampleRate = 44100;
    track.stream.channels = 2;
    track.size = track.stream.durationMs * track.stream.bitrateKbps / 8;
    track.mtime = QDateTime::fromSecsSinceEpoch(1500000000 + random.below(100000000));
    track.fullHash = track.audioHash = QString(64, u'a');
    return track;
}

struct Results {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

Results makeResults(int groupCount)
{
    Results results;
    epr::bench::Random random(1);
    for (int number = 0; number < groupCount; ++number) {
        MatchGroup group { number + 1, static_cast<MatchType>(number % 4), {}, -1, 0.9, 0 };
        group.keep = static_cast<qint32>(results.tracks.size());
        const QString artist = QString::fromUtf8(artists[static_cast<std::size_t>(random.below(artists.size()))]);
        const QString title = QString::fromUtf8(titles[static_cast<std::size_t>(random.below(titles.size()))]);
        for (int copy = 2 + random.below(3); copy > 0; --copy) {
            group.members << static_cast<qint32>(results.tracks.size());
            results.tracks << someTrack(random, artist, title, group.members.size() == 1);
            group.reclaimableBytes += group.members.size() > 1 ? results.tracks.last().size : 0;
        }
        results.groups << group;
    }
    return results;
}

/// Peak of the resident memory so far, 0 where the system does not tell.
qint64 peakKiB()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').at(1).toLongLong();
    }
    return 0;
}

/// Makes the peak start again from what is resident now.
void resetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int groupCount = arguments.size() > 1 ? arguments.at(1).toInt() : 50000;
    const QTemporaryDir temporary;
    const QDir folder(arguments.size() > 2 ? arguments.at(2) : temporary.path());

    const Results results = makeResults(groupCount);
    std::printf("%d groups, %lld files\n", groupCount, static_cast<long long>(results.tracks.size()));
    for (const ReportFormat format :
         { ReportFormat::Csv, ReportFormat::Html, ReportFormat::Json, ReportFormat::Playlist }) {
        const QString path = folder.filePath(u"report."_s + reportFormatExtension(format));
        resetPeak();
        const qint64 before = peakKiB();
        QElapsedTimer clock;
        clock.start();
        QString error;
        if (!writeReport(path, format, results.tracks, results.groups, { u"/srv/music/library"_s }, &error))
            qFatal("%s", qPrintable(error));
        std::printf("%-5s %5lld ms %7.1f MiB written, peak grew by %lld KiB\n",
                    qPrintable(reportFormatExtension(format)), static_cast<long long>(clock.elapsed()),
                    static_cast<double>(QFileInfo(path).size()) / 1048576, static_cast<long long>(peakKiB() - before));
    }
    return 0;
}
