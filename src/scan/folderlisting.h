// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QSet>

#include <functional>
#include <utility>

namespace epr {

/// What a walk takes in, as far as it can be told of a name that Qt cannot use.
struct WantedNames {
    QSet<QString> extensions; ///< lower case
    bool includeHidden = false;
    bool followSymlinks = false;
    qint64 minBytes = 0;
    std::function<bool(const QString &path)> isExcluded;
};

/// Reads folders once more beside the walk, for what Qt's listing keeps to itself: that a folder could not be opened or
/// listed to its end, and what is wanted but left out for its name: files and folders whose names are not valid UTF-8,
/// on Windows files whose names are taken for devices.
class FolderListing final {
public:
    explicit FolderListing(WantedNames wanted);

    /// Fails with the system's reason.
    Result<> read(const QString &folder);

    /// What was left out of what was read, each once.
    int unusableNames() const { return static_cast<int>(m_unusable.size()); }

private:
    bool isWantedFile(const QString &name, qint64 size, const QString &folder) const;
#ifdef Q_OS_WIN
    void addIfDevice(const QString &name, const QString &folder);
#else
    void addUndecodable(int folderDescriptor, const QByteArray &name, const QString &folder);
#endif

    WantedNames m_wanted;
    QSet<std::pair<quint64, quint64>> m_unusable; ///< device and inode: overlapping roots reach an entry twice
};

/// Why a listed entry cannot be looked at, which is its folder's fault; succeeds for one that is there or has vanished.
Result<> reachEntry(const QString &path);

} // namespace epr
