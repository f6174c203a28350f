// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <atomic>
#include <functional>

namespace epr {

/// Whether one of the wildcard patterns covers the whole path, regardless of letter case. A star or question mark does
/// not cross a folder separator.
bool isExcluded(const QString &path, const QStringList &patterns);

/// Called with the number of files accepted so far and the folder of the latest one; the folder is empty at the end.
using DiscoveryProgressFn = std::function<void(int count, const QString &folder)>;

/// Walks the roots and returns the absolute paths of the audio files that pass the filters of the options, each file
/// once, under the path by which it was first reached. Opens no file. A raised cancel flag ends the walk with what was
/// found so far. undecodableNames receives the number of wanted files and folders whose names are not valid UTF-8 and
/// so cannot be reached; always 0 where file names are UTF-16.
QStringList discover(const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                     const DiscoveryProgressFn &progress = {}, int *undecodableNames = nullptr);

} // namespace epr
