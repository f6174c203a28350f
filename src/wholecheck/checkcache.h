// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QSqlDatabase>
#include <QVariantList>

#include <optional>

namespace epr {

/// What checks over the whole length have found, in two tables of their own in the file of the analysis cache. Rows
/// hold as long as the files' sizes and times are the same. A file that cannot be used, or no longer, is none: nothing
/// is found, and nothing stored. For one thread.
class CheckCache final {
public:
    explicit CheckCache(const QString &filePath); ///< empty = none
    ~CheckCache();
    Q_DISABLE_COPY_MOVE(CheckCache)

    [[nodiscard]] std::optional<SoundMeasures> measures(const TrackInfo &track);
    /// Of these two, in whatever order they were stored; without track indexes.
    [[nodiscard]] std::optional<PairCheck> pair(const TrackInfo &first, const TrackInfo &second);

    void begin(); ///< of many rows to store
    void store(const TrackInfo &track, const SoundMeasures &measures);
    void store(const TrackInfo &first, const TrackInfo &second, const PairCheck &pair);
    void commit();

private:
    QByteArray run(const QString &statement, const QVariantList &values);

    QString m_connection;
    QSqlDatabase m_db;
    bool m_isUsable = false;
};

} // namespace epr
