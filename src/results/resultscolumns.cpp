// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultscolumns.h"

#include "resultsmodel.h"

#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr bool yes = true;
constexpr bool no = false;

// In the order of the enumerators.
constexpr std::array<ColumnFacts, ResultsModel::ColumnCount> facts { {
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "File"), "file"_L1, GroupKey::File },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Match"), "match"_L1, GroupKey::Match },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Artist"), "artist"_L1, GroupKey::Artist },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Title"), "title"_L1, GroupKey::Title },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Duration"), "duration"_L1, GroupKey::Duration, yes, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Quality"), "quality"_L1, GroupKey::Quality, no, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Size"), "size"_L1, GroupKey::Reclaimable, yes, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Modified"), "modified"_L1, GroupKey::Modified, no, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Format"), "format"_L1, GroupKey::Format, no, no, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Loudness"), "loudness"_L1, GroupKey::Loudness, yes, yes, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "True Peak"), "truePeak"_L1, GroupKey::TruePeak, yes, yes, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Bandwidth"), "bandwidth"_L1, GroupKey::Bandwidth, yes, yes, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Check"), "check"_L1, GroupKey::Check, no, no, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Relation"), "relation"_L1, GroupKey::Kept, no, no, yes },
    { QT_TRANSLATE_NOOP("epr::ResultsModel", "Folder"), "folder"_L1, GroupKey::Folder },
} };

} // namespace

const ColumnFacts &columnFacts(int column)
{
    return facts[static_cast<std::size_t>(column)];
}

QString columnHeading(int column)
{
    return ResultsModel::tr(columnFacts(column).heading);
}

} // namespace epr
