// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <atomic>
#include <functional>

namespace epr {

// Which files a library has, and what each of them is.

/// Whether one of the wildcard patterns covers the whole path, regardless of letter case. A star or question mark does
/// not cross a folder separator.
bool isExcluded(const QString &path, const QStringList &patterns);

/// Called with the number of files accepted so far and the folder of the latest one; the folder is empty at the end.
using DiscoveryProgressFn = std::function<void(int count, const QString &folder)>;

/// What a walk could not look at, so that files may be missing from its list.
struct DiscoveryProblems {
    struct UnreadableFolder {
        QString path;
        QString reason; ///< the system's
    };

    QStringList missingRoots; ///< not there, or not folders
    QList<UnreadableFolder> unreadableFolders; ///< could not be opened, listed to the end or entered; each once
    int unusableNames = 0; ///< wanted files and folders: names that are not valid UTF-8, on Windows devices' names
};

/// Walks the roots and returns the absolute paths of the audio files that pass the filters of the options, each file
/// once, under the path by which it was first reached. Opens no file. A raised cancel flag ends the walk with what was
/// found so far. Folders that an exclude pattern covers, and those in which a file system keeps its own things, are no
/// problem when they cannot be read.
QStringList discover(const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                     const DiscoveryProgressFn &progress = {}, DiscoveryProblems *problems = nullptr);

/// A record with what the file system says about the path: name, suffix, size and modification time. A path that
/// cannot be measured has size 0 and no modification time.
TrackInfo measureFile(const QString &path);

/// Reads tags, stream properties and the digests that the options ask for into a measured record; digests and
/// fingerprints that the record brings along stay. On failure the record's error says why; analysed is set only when
/// everything succeeded and the file stayed as it was measured. When *stop becomes non-zero, a long file is given up
/// and its record comes back as it was. Re-entrant: many threads analyse different files at once.
TrackInfo analyseFile(const TrackInfo &track, const ScanOptions &options, const std::atomic<qint32> *stop = nullptr);

/// The same in place, for a file that may need no digests: when the rest is in the record, the function says whether
/// they are to be taken. It is not asked when the record has no content keys; then they are.
void analyseFile(TrackInfo &track, const ScanOptions &options, const std::atomic<qint32> *stop,
                 const std::function<bool()> &needsDigests);

/// Takes the digests that an analysis left out; the rest of the record stays, but for the error when that fails.
TrackInfo completeDigests(TrackInfo track, const ScanOptions &options, const std::atomic<qint32> *stop);

/// The content keys of a measured file. Not known when it cannot be read, has changed, or *stop becomes non-zero.
ContentKeys readKeys(const TrackInfo &track, const std::atomic<qint32> *stop);

/// Whether digests are only taken where content keys allow a copy.
inline bool usesKeys(const ScanOptions &options)
{
    return options.onlyPossibleCopies && (options.detectIdentical || options.detectSameAudio);
}

/// Whether the record holds every digest that the options ask for.
bool hasWantedDigests(const TrackInfo &track, const ScanOptions &options);

} // namespace epr
