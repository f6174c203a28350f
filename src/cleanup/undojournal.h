// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "undomanifest.h"

#include <QFile>

namespace epr {

/// What a quarantine run is about to do, line by line, while the manifest proper can still not be written.
///
/// Every intended move is on the disk before it is tried, so a run that dies at any instant leaves a list of all it may
/// have moved. Intentions are written many at a time: one wait for the disk serves them all.
class UndoJournal final {
public:
    [[nodiscard]] static QString pathFor(const QString &manifestPath);

    /// The moves that were intended and not given up later, in order. A line cut off by the end of the run is left out:
    /// nothing that it speaks of was tried.
    [[nodiscard]] static QList<ManifestEntry> read(const QString &path);

    /// Of the last call that failed.
    [[nodiscard]] QString errorString() const { return m_error; }

    /// Fails if the file exists.
    [[nodiscard]] bool create(const QString &path);

    [[nodiscard]] bool appendIntended(const QList<ManifestEntry> &moves);

    /// In place of a move that found its new name taken.
    [[nodiscard]] bool appendReplaced(const QString &givenUpDestination, const ManifestEntry &move);

    void remove();

private:
    [[nodiscard]] bool append(const QByteArray &lines);

    QFile m_file;
    QString m_error;
};

} // namespace epr
