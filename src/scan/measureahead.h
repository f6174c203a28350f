// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

#include <QFuture>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QThreadPool;
QT_END_NAMESPACE

namespace epr {

/// Measures files in slices, on a pool and one slice ahead of whoever takes them, so that the file system is asked
/// while the caller looks up the slice before.
class MeasureAhead final {
public:
    static constexpr qsizetype sliceSize = 512;

    /// The pool must outlive the object.
    MeasureAhead(const QStringList &paths, QThreadPool *pool);
    ~MeasureAhead(); ///< waits for the slice that is under way
    Q_DISABLE_COPY_MOVE(MeasureAhead)

    [[nodiscard]] qsizetype position() const { return m_position; } ///< index of the first file of the next slice
    [[nodiscard]] bool atEnd() const { return m_position >= m_paths.size(); }

    [[nodiscard]] QList<TrackInfo> take(); ///< the next slice, in the order of the paths; never at the end

private:
    void measure(qsizetype from);

    QStringList m_paths;
    QThreadPool *m_pool;
    qsizetype m_position = 0;
    QFuture<QList<TrackInfo>> m_slice;
};

} // namespace epr
