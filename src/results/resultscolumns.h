// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "grouporder.h"

#include <QLatin1StringView>
#include <QString>

namespace epr {

/// What is known of a column of the results, whatever its cells say.
struct ColumnFacts {
    const char *heading; ///< to be translated
    QLatin1StringView name; ///< in the settings: does not change with the language
    GroupKey key; ///< what a click on its heading sorts groups by
    bool isNumeric = false; ///< aligned to the right
    bool isMostFirst = false; ///< the first click puts the largest first
    bool isOptional = false; ///< hidden until the operator asks for it
};

const ColumnFacts &columnFacts(int column); ///< a ResultsModel::Column
QString columnHeading(int column);

} // namespace epr
