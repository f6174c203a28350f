// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "review.h"

namespace epr {

/// A file to be removed.
struct RemovalItem {
    QString path;
    MatchType type = MatchType::Unmatched; ///< how it belongs to the copy that stays
    qint64 size = 0; ///< bytes
};

/// The ticked copies of a review, or those of these tracks, without their sizes, which the disk knows.
QList<RemovalItem> removalItems(const Review &review, const OnlyTracks &only = {});

/// What holds a folder.
struct Volume {
    QString root; ///< where it begins; empty = unknown
    qint64 freeBytes = -1; ///< for this user; -1 = unknown

    bool operator==(const Volume &) const = default;
};

/// Asks the system, which may take long where a drive does not answer. The folder need not exist yet.
Volume volumeOf(const QString &folder);

/// What a removal would take away, for a look before it.
struct RemovalPreview {
    struct Share {
        QString name;
        qint64 files = 0;
        qint64 bytes = 0;

        bool operator==(const Share &) const = default;
    };

    QList<Share> types; ///< the most certain first
    QList<Share> folders; ///< the largest first
    QList<Share> volumes; ///< the same
    qint64 bytesToCopy = 0; ///< that a quarantine would take up on a drive where they are not yet
    qint64 freeBytes = -1; ///< on the drive of the quarantine; -1 = unknown

    bool lacksRoom() const { return freeBytes >= 0 && bytesToCopy > freeBytes; }
};

/// The volumes are those of the items' folders; files of an unknown one count as being elsewhere than the quarantine.
RemovalPreview previewRemoval(const QList<RemovalItem> &items, const QHash<QString, Volume> &volumes,
                              const Volume &quarantine);

} // namespace epr
