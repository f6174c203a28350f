// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What looking up an unchanged library in the analysis cache costs, against the walk that finds its files.
//
//   bench_cache [FILES]      100,000 unless given

#include "analysiscache.h"
#include "discovery.h"
#include "fileanalysis.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

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
        if (!file.open(QIODevice::WriteOnly))
            qFatal("Cannot write the library");
    }
}

TrackInfo analysedTrack(const QString &path)
{
    TrackInfo track = measureFile(path);
    track.title = track.artist = track.album = u"Some text as tags have it"_s;
    track.fullHash = track.audioHash = QString(64, u'a');
    track.fingerprint = track.fingerprintMask = QList<quint32>(fingerprintWords, 0x12345678);
    track.fingerprintAlt = track.fingerprintAltMask = track.fingerprint;
    track.analysed = true;
    return track;
}

void fillCache(AnalysisCache &cache, const QStringList &paths)
{
    cache.beginTransaction();
    for (const QString &path : paths)
        cache.store(analysedTrack(path), 0);
    cache.commitTransaction();
}

int countHits(AnalysisCache &cache, const QStringList &paths)
{
    int hits = 0;
    for (const QString &path : paths) {
        TrackInfo track = measureFile(path);
        hits += cache.lookup(track, 0) ? 1 : 0;
    }
    return hits;
}

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u"data"_s)));
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int files = arguments.size() > 1 ? arguments.at(1).toInt() : 100000;

    QTextStream out(stdout);
    makeLibrary(folder.filePath(u"library"_s), files);
    ScanOptions options;
    options.minBytes = 0;
    options.roots = QStringList { folder.filePath(u"library"_s) };

    QElapsedTimer clock;
    clock.start();
    const QStringList paths = discover(options, 0);
    const qint64 walkMs = clock.restart();

    AnalysisCache cache;
    if (!cache.open())
        qFatal("Cannot open the cache");
    fillCache(cache, paths);
    const qint64 storeMs = clock.restart();
    const int hits = countHits(cache, paths);
    const qint64 checkMs = clock.elapsed();

    out << paths.size() << " files, " << cache.fileSize() / 1048576 << " MiB of cache, " << hits << " hits\n"
        << "walk " << walkMs << " ms, check " << checkMs << " ms, ratio "
        << static_cast<double>(checkMs) / static_cast<double>(walkMs) << "; storing all " << storeMs << " ms\n";
    return hits == files ? 0 : 1;
}
