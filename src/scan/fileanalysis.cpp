// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "libraryfiles.h"

#include "audiofile.h"
#include "hashing.h"
#include "probe.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

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
    track.keys = {};
    track.error = exists ? QCoreApplication::translate("epr::ScanController", "The file changed during the scan")
                         : QCoreApplication::translate("epr::ScanController", "The file vanished during the scan");
}

// What is found out about one file in one opening. Each reading is false when it was given up, and the record is then
// of no use.
class FileAnalysis final {
public:
    FileAnalysis(const TrackInfo &measured, const ScanOptions &options, const std::atomic<qint32> *stop)
        : m_track(measured)
        , m_options(options)
        , m_isStopped([stop] { return stop && stop->load(std::memory_order_relaxed) != 0; })
        , m_file(measured.path, stop)
    {
    }

    [[nodiscard]] bool readTags();
    [[nodiscard]] bool readKeys();
    [[nodiscard]] bool readDigests();
    TrackInfo result(); ///< looks whether the file is still as it was measured

private:
    TrackInfo m_track;
    const ScanOptions &m_options;
    const std::function<bool()> m_isStopped;
    AudioFile m_file;
    ProbeResult m_probe;
    QString m_probeError;
    QString m_hashError;
};

bool FileAnalysis::readTags()
{
    if (probeFile(m_file, m_probe, &m_probeError)) {
        m_track.tags = m_probe.tags;
        m_track.stream = m_probe.stream;
    }
    return !m_isStopped();
}

// A payload that is not delimited counts as the whole file, as for its digest, and one that reaches beyond the end of
// the file ends there.
bool FileAnalysis::readKeys()
{
    m_track.keys = {};
    if (!m_file.isOpen() || m_probe.audioOffset < 0)
        return !m_isStopped();
    const qint64 size = m_file.size();
    m_track.keys.whole = rangeKey(m_file, 0, size);
    const qint64 behind = std::max<qint64>(size - m_probe.audioOffset, 0);
    m_track.keys.audio = m_probe.audioRangeValid && m_probe.audioLength >= 1
        ? rangeKey(m_file, m_probe.audioOffset, std::min(m_probe.audioLength, behind))
        : m_track.keys.whole;
    return !m_isStopped();
}

bool FileAnalysis::readDigests()
{
    const HashRequest request { .whole = m_options.detectIdentical,
                                .payload = m_options.detectSameAudio,
                                .payloadOffset = m_probe.audioOffset,
                                .payloadLength = m_probe.audioRangeValid ? m_probe.audioLength : 0,
                                .isStopped = m_isStopped };
    const FileDigests digests = m_file.isOpen() ? hashContent(m_file, request, &m_hashError) : FileDigests();
    if (m_options.detectIdentical)
        m_track.fullHash = digests.whole;
    if (m_options.detectSameAudio)
        m_track.audioHash = digests.payload;
    if (!hasWantedDigests(m_track, m_options))
        m_track.keys = {};
    return m_hashError.isEmpty() || !m_isStopped(); // given up, not failed
}

TrackInfo FileAnalysis::result()
{
    m_track.error = m_probeError.isEmpty() ? m_hashError : m_probeError;
    checkUnchanged(m_track);
    m_track.analysed = m_track.error.isEmpty();
    return m_track;
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

TrackInfo analyseFile(const TrackInfo &track, const ScanOptions &options, const std::atomic<qint32> *stop)
{
    FileAnalysis analysis(track, options, stop);
    return analysis.readTags() && analysis.readDigests() ? analysis.result() : track;
}

void analyseFile(TrackInfo &track, const ScanOptions &options, const std::atomic<qint32> *stop,
                 const std::function<bool()> &needsDigests)
{
    const TrackInfo measured = track;
    FileAnalysis analysis(measured, options, stop);
    if (!analysis.readTags() || !analysis.readKeys())
        return;
    track = analysis.result();
    if (!track.keys.isKnown() || needsDigests())
        track = analysis.readDigests() ? analysis.result() : measured;
}

// All the rest stays, as the duration that only decoding found out.
TrackInfo completeDigests(TrackInfo track, const ScanOptions &options, const std::atomic<qint32> *stop)
{
    TrackInfo read = analyseFile(track, options, stop);
    const bool isComplete = hasWantedDigests(read, options);
    if (!isComplete && stop && stop->load() != 0)
        return track;
    track.flags |= TrackDigestsAreNew;
    track.fullHash = read.fullHash;
    track.audioHash = read.audioHash;
    track.fingerprint = std::move(read.fingerprint);
    if (!read.error.isEmpty())
        track.error = read.error;
    if (!isComplete) {
        track.keys = {};
        track.analysed = false;
    }
    return track;
}

ContentKeys readKeys(const TrackInfo &track, const std::atomic<qint32> *stop)
{
    const ScanOptions noDigests;
    FileAnalysis analysis(track, noDigests, stop);
    return analysis.readTags() && analysis.readKeys() ? analysis.result().keys : ContentKeys();
}

bool hasWantedDigests(const TrackInfo &track, const ScanOptions &options)
{
    return (!options.detectIdentical || !track.fullHash.isEmpty())
        && (!options.detectSameAudio || !track.audioHash.isEmpty());
}

} // namespace epr
