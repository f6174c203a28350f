// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journalfile.h"

#include <QSet>

namespace epr {

/// What a run is about to make beside the files that it moves, so that clearTraces() can tell it from everything else
/// should the program be killed before it has gone again. The notes lie beside the undo manifests and go with this
/// object.
///
/// A note that cannot be written keeps nobody from moving a file: what may be left is in the way, but no music.
class TraceNotes final {
public:
    /// The user's CleanupLock must be held as long as this object lives.
    TraceNotes();
    ~TraceNotes();
    Q_DISABLE_COPY_MOVE(TraceNotes)

    /// A path for a new temporary file in a folder. Waits for the disk at the first one of each folder.
    [[nodiscard]] QString temporaryFile(const QString &folder);

    /// An empty file is about to be made at a place that the file at from is then renamed to.
    void notePlaceholder(const QString &from, const QString &to);

    /// What was made may not have gone: leaves the notes for clearTraces().
    void keep() { m_isKept = true; }

private:
    void note(const QJsonObject &line);

    const QString m_token; ///< in the names of this run's temporary files and nobody else's
    JournalFile m_file;
    QSet<QString> m_folders; ///< that were noted
    qint64 m_temporaryFiles = 0;
    bool m_isKept = false;
};

} // namespace epr
