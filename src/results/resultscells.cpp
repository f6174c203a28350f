// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultscells.h"

#include "checktext.h"
#include "copyrelation.h"
#include "displaytext.h"
#include "look.h"
#include "notices.h"
#include "resultsmodel.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr QRgb keepGreen = qRgb(20, 108, 46);

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
// the empty cells of its row. Where copies lack a part, the first words of that have room, and a tool tip has them all.
QString sampleText(ResultsModel::Column column, const QAbstractItemModel *model)
{
    const auto *const results = qobject_cast<const ResultsModel *>(model);
    switch (column) {
    case ResultsModel::MatchColumn:
        return results && results->hasRemarks()
            ? QCoreApplication::translate("epr::MatchType", "starts %1 later").arg(u"8:88"_s) + u",..."_s
            : ResultsModel::tr("duplicate");
    case ResultsModel::DurationColumn:
        return u"10:00:00"_s;
    case ResultsModel::QualityColumn:
        return widestQuality();
    case ResultsModel::SizeColumn:
        return u"888.88 MB"_s;
    case ResultsModel::ModifiedColumn:
        return dateTimeText(QDateTime({ 2000, 11, 28 }, { 22, 0 }));
    case ResultsModel::FormatColumn:
        return u"FLAC"_s;
    case ResultsModel::LoudnessColumn:
        return loudnessText(-18.8);
    case ResultsModel::TruePeakColumn:
        return truePeakText(-18.8);
    case ResultsModel::BandwidthColumn:
        return bandwidthText(22000);
    case ResultsModel::CheckColumn:
        return u"silent 10:00-10:10, silent 10:00-10:10"_s;
    case ResultsModel::RelationColumn:
        return relationText({ .type = MatchType::SameRecording, .errorRate = 0.12 }, {});
    default:
        return {};
    }
}

int sampleWidth(const QHeaderView *header, ResultsModel::Column column)
{
    const int margin = 2 * (header->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, header) + 3);
    return std::max(header->fontMetrics().horizontalAdvance(sampleText(column, header->model())) + margin,
                    header->sectionSizeHint(column));
}

constexpr int signGap = 3; // between the decks and the signs behind them

int signWidth(const QFont &font)
{
    return QFontMetrics(font).ascent();
}

struct Sign {
    void (*paint)(QPainter &painter, const QRectF &square, const QColor &colour);
    QColor colour;
};

/// From the last to the first.
QList<Sign> signsOf(const QModelIndex &index, const QPalette &palette)
{
    QList<Sign> signs;
    if (index.data(ResultsModel::LockRole).toBool())
        signs.append({ paintLock, palette.color(QPalette::Text) });
    if (index.data(ResultsModel::DamageRole).toBool())
        signs.append({ paintWarning, warningColour(palette) });
    return signs;
}

QFont deckFont(QFont font)
{
    font.setBold(true);
    return font;
}

} // namespace

QColor matchColour(MatchType type, const QPalette &palette)
{
    switch (type) {
    case MatchType::IdenticalFile:
        return readableTone(keepGreen, palette);
    case MatchType::SameAudio:
        return readableTone(qRgb(28, 90, 138), palette);
    case MatchType::SameRecording:
        return readableTone(qRgb(179, 90, 15), palette);
    default:
        return warningColour(palette);
    }
}

QColor keeperColour(const QPalette &palette)
{
    return readableTone(keepGreen, palette);
}

void fitResultsColumns(QHeaderView *header, int width)
{
    int rest = width;
    for (int section = 0; section < ResultsModel::ColumnCount; ++section) {
        const auto column = static_cast<ResultsModel::Column>(section);
        if (sampleText(column, header->model()).isEmpty() || header->isSectionHidden(section))
            continue;
        const int needed = sampleWidth(header, column);
        header->resizeSection(section, needed);
        rest -= needed;
    }
    const int leastRest = 60 * header->fontMetrics().averageCharWidth();
    rest = std::max(rest, leastRest);
    int percent = 0;
    for (const Share &share : shares)
        percent += header->isSectionHidden(share.column) ? 0 : share.percent;
    for (const Share &share : shares) {
        if (!header->isSectionHidden(share.column))
            header->resizeSection(share.column, rest * share.percent / percent);
    }
}

// A little air between the lines: a result is read row by row.
QSize ResultsDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 4);
}

// The decks as a plate of inverse colours, which stands out on a selected row too, and signs.
void ResultsDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const QString decks = index.data(ResultsModel::DecksRole).toString();
    const QList<Sign> signs = signsOf(index, option.palette);
    if (decks.isEmpty() && signs.isEmpty())
        return;
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    QRect plate = cell.widget->style()->subElementRect(QStyle::SE_ItemViewItemDecoration, &cell, cell.widget);
    const bool isSelected = cell.state.testFlag(QStyle::State_Selected);
    for (const Sign &sign : signs) {
        const int width = signWidth(cell.font);
        const QRectF square(plate.right() + 1 - width, plate.center().y() - width / 2.0, width, width);
        sign.paint(*painter, square, isSelected ? cell.palette.color(QPalette::HighlightedText) : sign.colour);
        plate.setRight(plate.right() - width - signGap);
    }
    if (decks.isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(cell.palette.brush(isSelected ? QPalette::HighlightedText : QPalette::Text));
    constexpr int radius = 3;
    painter->drawRoundedRect(plate, radius, radius);
    painter->setPen(cell.palette.color(isSelected ? QPalette::Highlight : QPalette::Base));
    painter->setFont(deckFont(cell.font));
    painter->drawText(plate, Qt::AlignCenter, decks);
    painter->restore();
}

bool ResultsDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    const bool hasOwnTip = index.data(Qt::ToolTipRole).isValid();
    if (event->type() != QEvent::ToolTip || hasOwnTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QRect cell = view->visualRect(index);
    const bool isCut = sizeHint(option, index).width() > cell.width();
    QToolTip::showText(event->globalPos(), isCut ? plainToolTip(index.data().toString()) : QString(), view->viewport(),
                       cell);
    return isCut;
}

void ResultsDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == ResultsModel::FolderColumn)
        option->textElideMode = Qt::ElideMiddle;
    const QString decks = index.data(ResultsModel::DecksRole).toString();
    const auto signs = static_cast<int>(signsOf(index, option->palette).size());
    if (decks.isEmpty() && signs == 0)
        return;
    constexpr int margin = 5;
    const QFontMetrics metrics(deckFont(option->font));
    const int plateWidth = decks.isEmpty() ? 0 : metrics.horizontalAdvance(decks) + 2 * margin;
    const int gaps = signs - (plateWidth > 0 ? 0 : 1);
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->decorationSize = { plateWidth + signs * signWidth(option->font) + gaps * signGap, metrics.height() };
}

} // namespace epr
