// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultscolumns.h"

#include "displaytext.h"
#include "resultsmodel.h"

#include <QApplication>
#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <QStyle>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct Share {
    ResultsModel::Column column;
    int percent;
};

// File names come with indentation and a check box before them, folders are the longest texts.
constexpr std::array<Share, 4> shares { {
    { ResultsModel::FileColumn, 36 },
    { ResultsModel::ArtistColumn, 17 },
    { ResultsModel::TitleColumn, 21 },
    { ResultsModel::FolderColumn, 26 },
} };

QString widestQuality()
{
    TrackInfo track;
    track.stream.bitrateKbps = 1411;
    track.stream.sampleRate = 44100;
    track.stream.channels = 2;
    return qualityText(track);
}

// The widest texts to be expected, in the language of the program. A match label is not among them: it may run on over
// the empty cells of its row.
QString sampleText(ResultsModel::Column column)
{
    switch (column) {
    case ResultsModel::MatchColumn:
        return ResultsModel::tr("duplicate");
    case ResultsModel::DurationColumn:
        return u"10:00:00"_s;
    case ResultsModel::QualityColumn:
        return widestQuality();
    case ResultsModel::SizeColumn:
        return u"888.88 MB"_s;
    case ResultsModel::ModifiedColumn:
        return QLocale().toString(QDateTime({ 2000, 11, 28 }, { 22, 0 }), ResultsModel::tr("d MMM yyyy h:mm ap"));
    default:
        return {};
    }
}

int sampleWidth(const QHeaderView *header, ResultsModel::Column column)
{
    const int margin = 2 * (header->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, header) + 3);
    return std::max(header->fontMetrics().horizontalAdvance(sampleText(column)) + margin,
                    header->sectionSizeHint(column));
}

} // namespace

void fitResultsColumns(QHeaderView *header, int width)
{
    int rest = width;
    for (int section = 0; section < ResultsModel::ColumnCount; ++section) {
        const auto column = static_cast<ResultsModel::Column>(section);
        if (sampleText(column).isEmpty())
            continue;
        const int needed = sampleWidth(header, column);
        header->resizeSection(section, needed);
        rest -= needed;
    }
    const int leastRest = 60 * header->fontMetrics().averageCharWidth();
    rest = std::max(rest, leastRest);
    for (const Share &share : shares)
        header->resizeSection(share.column, rest * share.percent / 100);
}

} // namespace epr
