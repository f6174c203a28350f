// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// CPU time of the built-in analysis against that of ffmpeg's decoding of the same minute of MP3, and the wall time of
// the pool on two threads against one.

#include "analyser.h"
#include "decoding.h"
#include "fingerprintpool.h"
#include "records.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr int seconds = 60;
constexpr int runs = 7;

/// CPU seconds of the tools that have ended, as far as the system tells.
double childCpu()
{
#ifdef Q_OS_UNIX
    rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto inSeconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime);
#else
    return 0.0;
#endif
}

double ownCpu()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// The least of several runs: what else the machine does can only add.
template <typename Clock, typename Work> double least(Clock clock, Work work)
{
    double best = std::numeric_limits<double>::max();
    for (int run = 0; run < runs; ++run) {
        const double begin = clock();
        work();
        best = std::min(best, clock() - begin);
    }
    return best;
}

/// Stereo noise at the CD rate, 128 kbit/s: the least work for a decoder among the usual kinds of MP3.
QString makeMp3(const QTemporaryDir &dir)
{
    const QString path = dir.filePath(u"noise.mp3"_s);
    const QString source = u"anoisesrc=color=pink:seed=%1:amplitude=0.5:d=%2:r=44100"_s;
    QProcess::execute(ffmpegPath(),
                      { u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                        source.arg(1).arg(2 * seconds), u"-f"_s, u"lavfi"_s, u"-i"_s, source.arg(2).arg(2 * seconds),
                        u"-filter_complex"_s, u"amerge"_s, u"-ac"_s, u"2"_s, u"-b:a"_s, u"128k"_s, path });
    return path;
}

QList<float> decoded(const QString &path, int rate)
{
    QList<float> samples;
    qint64 durationMs = 0;
    QString error;
    if (!decodeWithFfmpeg(path, rate, seconds, samples, durationMs, error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        std::exit(1);
    }
    return samples;
}

double analysisCpu(const QList<float> &samples, int rate)
{
    return least(ownCpu, [&] {
        Analyser analyser;
        analyser.reset(rate);
        analyser.feed(samples.constData(), samples.size());
        if (analyser.main().words().isEmpty())
            std::exit(1);
    });
}

double poolSeconds(const QString &path, int threads)
{
    const QList<FingerprintJob> jobs(24, { 0, path });
    FingerprintPool pool(threads, seconds, false);
    QElapsedTimer clock;
    clock.start();
    pool.run(jobs);
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    registerMetaTypes();
    const QTemporaryDir dir;
    const QString path = makeMp3(dir);
    const double decoding = least(childCpu, [&] { decoded(path, analysisRate); });
    std::printf("ffmpeg decodes %d s of MP3 to 11025 Hz: %.1f ms CPU\n", seconds, decoding * 1e3);
    for (const int rate : { 11025, 44100, 48000 }) {
        const double analysis = analysisCpu(decoded(path, rate), rate);
        std::printf("analysis of it at %5d Hz: %.1f ms CPU, ratio %.2f\n", rate, analysis * 1e3, analysis / decoding);
    }
    const double one = poolSeconds(path, 1);
    const double two = poolSeconds(path, 2);
    std::printf("pool: 24 files in %.2f s on one thread, %.2f s on two, ratio %.2f\n", one, two, one / two);
    return 0;
}
