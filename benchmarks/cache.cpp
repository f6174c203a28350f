// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What checking an unchanged library against the analysis cache costs, against the walk that finds its files. Both are
// called as a scan calls them, and take turns; the median of five rounds counts, of wall and of processor time. A ratio
// is that of one round. Then echoprune-scan, which lies beside this program, scans the unchanged library from start to
// end, without comparing by sound, against a find that looks at every file.
//
//   bench_cache [FILES [ROWS]]      100,000 files unless given; ROWS more than FILES adds rows of files that are gone

#include "analysiscache.h"
#include "application.h"
#include "libraryfiles.h"
#include "scanstages.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <sys/resource.h>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr int filesPerFolder = 100;
constexpr int fingerprintWords = 480;

void makeLibrary(const QString &root, int files)
{
    for (int i = 0; i < files; ++i) {
        const QString folder = root + u"/%1"_s.arg(i / filesPerFolder);
        if (i % filesPerFolder == 0)
            QDir().mkpath(folder);
        QFile file(folder + u"/A track with an ordinary name %1.mp3"_s.arg(i));
        if (!file.open(QIODevice::WriteOnly) || !file.resize(ScanOptions().minBytes)) // which takes no room on the disk
            qFatal("Cannot write the library");
    }
}

TrackInfo analysedTrack(const QString &path, int number)
{
    TrackInfo track = measureFile(path);
    track.tags.title = track.tags.artist = track.tags.album = u"Some text as tags have it"_s;
    track.fullHash = track.audioHash = QString::number(number).rightJustified(64, u'a');
    track.fingerprint.words = track.fingerprint.mask = QList<quint32>(fingerprintWords, 0x12345678);
    track.fingerprint.alternative = track.fingerprint.alternativeMask = track.fingerprint.words;
    track.stream = { .durationMs = 180000, .bitrateKbps = 192, .sampleRate = 44100, .channels = 2 };
    track.analysed = true;
    return track;
}

void fillCache(AnalysisCache &cache, const QStringList &paths)
{
    cache.beginTransaction();
    for (int number = 0; const QString &path : paths)
        cache.store(analysedTrack(path, number++), FingerprintEngine::BuiltIn);
    cache.commitTransaction();
}

// The records are kept, as the matching that follows needs them.
QList<TrackInfo> check(const QStringList &paths)
{
    const std::atomic<qint32> cancelFlag = 0;
    ScanOptions options;
    options.fingerprintEngine = FingerprintEngine::BuiltIn;
    return checkCache(paths, options, { cancelFlag }).tracks;
}

QStringList walk(const ScanOptions &options)
{
    const std::atomic<qint32> cancelFlag = 0;
    DiscoveryProblems problems;
    return discover(
        options, cancelFlag, [](int, const QString &) {}, &problems);
}

// In seconds; processor time is that of all threads together.
struct Cost {
    double wall = 0;
    double processor = 0;
};

template <typename Task> Cost costOf(Task task)
{
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t processorStart = std::clock();
    task();
    return { std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
             static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC };
}

struct Round {
    Cost walk;
    Cost check;
    Cost measuring; // the part of the check that asks the file system
};

double memoryMiB(const QByteArray &field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(field))
            return line.mid(field.size()).simplified().split(' ').value(0).toDouble() / 1024;
    }
    return 0;
}

// The kernel then counts the peak afresh.
void forgetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("Cannot reset the peak");
}

// In the first round only: later ones reuse memory that the process already holds.
void reportMemory(const QStringList &paths, QTextStream &out)
{
    forgetPeak();
    const double before = memoryMiB("VmRSS:");
    const double anonymousBefore = memoryMiB("RssAnon:");
    const QList<TrackInfo> tracks = check(paths);
    out << "check adds " << memoryMiB("VmHWM:") - before << " MiB at its peak, "
        << memoryMiB("RssAnon:") - anonymousBefore << " MiB of it anonymous, records included\n";
}

// The records are thrown away after the clock has stopped: a scan goes on to use them.
Round timedRound(const QStringList &paths, const ScanOptions &options)
{
    Round round;
    round.walk = costOf([&] { Q_UNUSED(walk(options)) });
    QList<TrackInfo> tracks;
    round.check = costOf([&] { tracks = check(paths); });
    tracks.clear();
    round.measuring = costOf([&] {
        for (const QString &path : paths)
            Q_UNUSED(measureFile(path).mtime.toSecsSinceEpoch())
    });
    return round;
}

template <typename Figure> double median(const QList<Round> &rounds, Figure figure)
{
    QList<double> figures;
    for (const Round &round : rounds)
        figures.append(figure(round));
    std::sort(figures.begin(), figures.end());
    return figures.at(figures.size() / 2);
}

void reportTimes(const QList<Round> &rounds, double Cost::*time, QTextStream &out)
{
    out << "walk " << median(rounds, [time](const Round &round) { return round.walk.*time; }) << " s, check "
        << median(rounds, [time](const Round &round) { return round.check.*time; }) << " s (measuring the files alone "
        << median(rounds, [time](const Round &round) { return round.measuring.*time; }) << " s), ratio "
        << median(rounds, [time](const Round &round) { return round.check.*time / (round.walk.*time); }) << '\n';
}

struct ProcessCost {
    Cost time;
    double writtenBytes = 0;
};

// fpcalc is not found there, so that the scan asks for what the cache holds.
ProcessCost costOfProcess(const QString &program, const QStringList &arguments)
{
    const auto used = [] {
        rusage usage = {};
        getrusage(RUSAGE_CHILDREN, &usage);
        const auto seconds = [](const timeval &time) {
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        };
        return std::pair(seconds(usage.ru_utime) + seconds(usage.ru_stime),
                         512.0 * static_cast<double>(usage.ru_oublock));
    };
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, QDir::tempPath()); // an empty one means the usual places
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(QProcess::nullDevice());
    const auto [processor, written] = used();
    const double wall = costOf([&] {
                            process.start(program, arguments);
                            process.waitForFinished(-1);
                        }).wall;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        qFatal("%ls has failed", qUtf16Printable(program));
    const auto [processorAfter, writtenAfter] = used();
    return { { wall, processorAfter - processor }, writtenAfter - written };
}

void reportWholeScans(const QString &library, double cacheBytes, QTextStream &out)
{
    const QString scan = QDir(QCoreApplication::applicationDirPath()).filePath(u"echoprune-scan"_s);
    for (int round = 0; round < 3; ++round) {
        const ProcessCost find =
            costOfProcess(u"/usr/bin/find"_s, { library, u"-type"_s, u"f"_s, u"-printf"_s, u"%s %T@\n"_s });
        const ProcessCost whole = costOfProcess(scan, { u"--no-acoustic"_s, library });
        out << "whole second scan: wall " << whole.time.wall << " s, ratio to find " << whole.time.wall / find.time.wall
            << ", processor " << whole.time.processor << " s, ratio " << whole.time.processor / find.time.processor
            << ", written " << whole.writtenBytes / cacheBytes << " of the cache\n"
            << Qt::flush;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u"data"_s)));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath(u"config"_s)));
    const QCoreApplication application(argc, argv);
    metadata::applyToApplication();
    const QStringList arguments = QCoreApplication::arguments();
    const int files = arguments.size() > 1 ? arguments.at(1).toInt() : 100000;
    const int rows = arguments.size() > 2 ? arguments.at(2).toInt() : files;

    QTextStream out(stdout);
    makeLibrary(folder.filePath(u"library"_s), files);
    ScanOptions options;
    options.minBytes = 0;
    options.roots = QStringList { folder.filePath(u"library"_s) };

    const QStringList paths = walk(options);
    QStringList cached = paths;
    for (int i = files; i < rows; ++i)
        cached.append(folder.filePath(u"gone/A track with an ordinary name %1.mp3"_s.arg(i)));
    AnalysisCache cache;
    if (!cache.open())
        qFatal("Cannot open the cache");
    const double storeS = costOf([&] { fillCache(cache, cached); }).processor;
    if (!cache.open()) // afresh, as a scan finds it
        qFatal("Cannot open the cache");

    out << paths.size() << " files, " << cache.count() << " rows, " << cache.fileSize() / 1048576
        << " MiB of cache; storing all rows " << storeS << " s\n";
    reportMemory(paths, out);
    QList<Round> rounds;
    for (int i = 0; i < 5; ++i)
        rounds.append(timedRound(paths, options));
    out << "wall time: ";
    reportTimes(rounds, &Cost::wall, out);
    out << "processor time: ";
    reportTimes(rounds, &Cost::processor, out);
    const QList<TrackInfo> tracks = check(paths);
    const auto hits = std::count_if(tracks.cbegin(), tracks.cend(),
                                    [](const TrackInfo &track) { return (track.flags & TrackFromCache) != 0; });
    out << hits << " hits\n";
    const auto cacheBytes = static_cast<double>(cache.fileSize());
    cache.close();
    reportWholeScans(options.roots.first(), cacheBytes, out);
    return hits == files ? 0 : 1;
}
