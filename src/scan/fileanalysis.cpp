// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fileanalysis.h"

#include "hashing.h"
#include "probe.h"
#include "proberesult.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace epr {

namespace {

void copyTags(const ProbeResult &probe, TrackInfo &track)
{
    track.tags = probe.tags;
    track.stream = probe.stream;
}

// A payload that cannot be delimited counts as the whole file, which then matches byte-identical copies only.
void takeDigests(const ProbeResult &probe, const ScanOptions &options, const std::atomic<qint32> *stop,
                 TrackInfo &track, QString *error)
{
    const bool delimited = probe.audioRangeValid && probe.audioLength >= 1;
    const FileDigests digests = hashFile(track.path,
                                         { .whole = options.detectIdentical || (options.detectSameAudio && !delimited),
                                           .payload = options.detectSameAudio && delimited,
                                           .payloadOffset = probe.audioOffset,
                                           .payloadLength = probe.audioLength,
                                           .stop = stop },
                                         error);
    if (options.detectIdentical)
        track.fullHash = digests.whole;
    if (options.detectSameAudio)
        track.audioHash = delimited ? digests.payload : digests.whole;
}

// A file that is written to while it is read may have given tags of one state and digests of another. Nothing may be
// proposed for removal on such grounds, so everything that says what the file sounds like goes.
void checkUnchanged(TrackInfo &track)
{
    const QFileInfo now(track.path);
    const bool exists = now.exists();
    if (exists && now.size() == track.size && now.lastModified() == track.mtime)
        return;
    track.fullHash.clear();
    track.audioHash.clear();
    dropFingerprint(track);
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
    track.size = file.size();
    track.mtime = file.lastModified();
    return track;
}

TrackInfo analyseFile(TrackInfo track, const ScanOptions &options, const std::atomic<qint32> *stop)
{
    const TrackInfo measured = track;
    ProbeResult probe;
    QString error;
    if (probeFile(track.path, probe, &error))
        copyTags(probe, track);
    QString hashError;
    takeDigests(probe, options, stop, track, &hashError);
    if (stop && stop->load() != 0 && !hashError.isEmpty())
        return measured; // given up, not failed
    track.error = error.isEmpty() ? hashError : error;
    checkUnchanged(track);
    track.analysed = track.error.isEmpty();
    return track;
}

void dropFingerprint(TrackInfo &track)
{
    track.fingerprint = {};
}

bool hasWantedDigests(const TrackInfo &track, const ScanOptions &options)
{
    return (!options.detectIdentical || !track.fullHash.isEmpty())
        && (!options.detectSameAudio || !track.audioHash.isEmpty());
}

} // namespace epr
