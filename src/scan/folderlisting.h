// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QSet>

#include <functional>
#include <utility>

namespace epr {

/// What a walk takes in, as far as it can be told from the bytes of a name that is not valid UTF-8.
struct WantedNames {
    QSet<QString> extensions; ///< lower case
    bool includeHidden = false;
    bool followSymlinks = false;
    qint64 minBytes = 0;
    std::function<bool(const QString &path)> isExcluded;
};

/// Reads folders once more beside the walk, for what Qt's listing keeps to itself: that a folder could not be opened or
/// listed to its end, and wanted files and folders whose names are not valid UTF-8.
class FolderListing final {
public:
    explicit FolderListing(WantedNames wanted);

    /// Fails with the system's reason.
    Result<> read(const QString &folder);

    /// Files and folders in what was read, each once; always 0 where file names are UTF-16.
    int undecodableNames() const { return static_cast<int>(m_undecodable.size()); }

private:
    void addUndecodable(int folderDescriptor, const QByteArray &name, const QString &folder);

    WantedNames m_wanted;
    QSet<std::pair<quint64, quint64>> m_undecodable; ///< device and inode: overlapping roots reach an entry twice
};

/// Why a listed entry cannot be looked at, which is its folder's fault; succeeds for one that is there or has vanished.
Result<> reachEntry(const QString &path);

} // namespace epr
