// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "measureahead.h"

#include "fileanalysis.h"

#include <QtConcurrentRun>

namespace epr {

namespace {

QList<TrackInfo> measureFiles(const QStringList &paths)
{
    QList<TrackInfo> tracks;
    tracks.reserve(paths.size());
    for (const QString &path : paths)
        tracks.append(measureFile(path));
    return tracks;
}

} // namespace

MeasureAhead::MeasureAhead(const QStringList &paths, QThreadPool *pool)
    : m_paths(paths)
    , m_pool(pool)
{
    measure(0);
}

MeasureAhead::~MeasureAhead()
{
    m_slice.waitForFinished();
}

QList<TrackInfo> MeasureAhead::take()
{
    const QList<TrackInfo> tracks = m_slice.result(); // taken out, the future would never count as finished
    m_position += tracks.size();
    measure(m_position);
    return tracks;
}

void MeasureAhead::measure(qsizetype from)
{
    if (from < m_paths.size())
        m_slice = QtConcurrent::run(m_pool, measureFiles, m_paths.mid(from, sliceSize));
}

} // namespace epr
