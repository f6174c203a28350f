// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include "audiofile.h"
#include "hashing.h"
#include "probe.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_LINUX
#include <chrono>
#include <sys/stat.h>
#endif

namespace epr {

namespace {

// False for what is not there.
#ifdef Q_OS_LINUX
// Qt has the time as local time only, and for each one the C library looks at the time zone's file again, behind a
// lock: half of what checking a large library would cost.
bool measure(TrackInfo &track)
{
    struct stat status = {};
    if (stat(QFile::encodeName(track.path).constData(), &status) != 0)
        return false;
    const std::chrono::milliseconds sinceEpoch = std::chrono::seconds(status.st_mtim.tv_sec)
        + std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::nanoseconds(status.st_mtim.tv_nsec));
    track.size = status.st_size;
    if (sinceEpoch.count() != 0) // which Qt takes for unknown
        track.mtime = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count(), Qt::UTC);
    return true;
}
#else
bool measure(TrackInfo &track)
{
    const QFileInfo file(track.path);
    track.size = file.size();
    track.mtime = file.lastModified().toUTC();
    return file.exists();
}
#endif

void takeDigests(AudioFile &file, const ProbeResult &probe, const ScanOptions &options,
                 const std::function<bool()> &isStopped, TrackInfo &track, QString *error)
{
    const HashRequest request { .whole = options.detectIdentical,
                                .payload = options.detectSameAudio,
                                .payloadOffset = probe.audioOffset,
                                .payloadLength = probe.audioRangeValid ? probe.audioLength : 0,
                                .isStopped = isStopped };
    const FileDigests digests = file.isOpen() ? hashContent(file, request, error) : FileDigests();
    if (options.detectIdentical)
        track.fullHash = digests.whole;
    if (options.detectSameAudio)
        track.audioHash = digests.payload;
}

// A file that is written to while it is read may have given tags of one state and digests of another. Nothing may be
// proposed for removal on such grounds, so everything that says what the file sounds like goes.
void checkUnchanged(TrackInfo &track)
{
    TrackInfo now;
    now.path = track.path;
    const bool exists = measure(now);
    if (exists && now.size == track.size && now.mtime == track.mtime)
        return;
    track.fullHash.clear();
    track.audioHash.clear();
    track.fingerprint = {};
    track.error = exists ? QCoreApplication::translate("epr::ScanController", "The file changed during the scan")
                         : QCoreApplication::translate("epr::ScanController", "The file vanished during the scan");
}

} // namespace

TrackInfo measureFile(const QString &path)
{
    const QFileInfo file(path);
    TrackInfo track;
    track.path = path;
    track.fileName = file.fileName();
    track.suffix = file.suffix().toLower();
    measure(track);
    return track;
}

TrackInfo analyseFile(TrackInfo track, const ScanOptions &options, const std::atomic<qint32> *stop)
{
    const TrackInfo measured = track;
    const auto isStopped = [stop] { return stop && stop->load(std::memory_order_relaxed) != 0; };
    ProbeResult probe;
    QString error;
    AudioFile file(track.path, stop);
    if (probeFile(file, probe, &error)) {
        track.tags = probe.tags;
        track.stream = probe.stream;
    }
    if (isStopped())
        return measured;
    QString hashError;
    takeDigests(file, probe, options, isStopped, track, &hashError);
    if (isStopped() && !hashError.isEmpty())
        return measured; // given up, not failed
    track.error = error.isEmpty() ? hashError : error;
    checkUnchanged(track);
    track.analysed = track.error.isEmpty();
    return track;
}

bool hasWantedDigests(const TrackInfo &track, const ScanOptions &options)
{
    return (!options.detectIdentical || !track.fullHash.isEmpty())
        && (!options.detectSameAudio || !track.audioHash.isEmpty());
}

} // namespace epr
