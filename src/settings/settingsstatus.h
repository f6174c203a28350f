// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

struct CacheStatus {
    bool available = false; ///< the cache could be opened
    qint64 entries = 0;
    qint64 bytes = 0; ///< size of its file
};

/// What the settings dialog reports but does not edit. The caller asks the tools and the cache, so that the dialog
/// needs neither.
struct SettingsStatus {
    QString fpcalcPath; ///< empty = the tool was not found
    CacheStatus cache;
};

} // namespace epr
