// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSet>
#include <QStringList>

#include <functional>
#include <utility>

namespace epr {

/// What the walk would take in, as far as it can be told from the bytes of a name that is not valid UTF-8.
struct WantedNames {
    QSet<QString> extensions; ///< lower case
    bool includeHidden = false;
    bool followSymlinks = false;
    qint64 minBytes = 0;
    std::function<bool(const QString &path)> isExcluded;
};

/// Counts wanted files and folders whose names are not valid UTF-8. The toolkit leaves such entries out of every
/// listing, so the folders have to be read once more, by their bytes; only entries with a bad name are measured.
class UndecodableNames final {
public:
    explicit UndecodableNames(WantedNames wanted);

    [[nodiscard]] int count() const { return static_cast<int>(m_seen.size()); }

    void addFolder(const QString &folder);

private:
    void addEntry(int folderDescriptor, const QByteArray &name, const QString &folder);

    WantedNames m_wanted;
    QSet<std::pair<quint64, quint64>> m_seen; ///< device and inode: overlapping roots reach an entry more than once
};

} // namespace epr
