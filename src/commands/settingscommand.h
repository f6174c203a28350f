// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "command.h"
#include "records.h"

#include <optional>

namespace epr {

/// The settings dialog, and the analysis cache that it looks after.
class SettingsCommand final : public Command {
    Q_OBJECT

public:
    using Command::Command;

    /// The edited options, or nothing when the dialog was cancelled; the update settings are then already stored.
    std::optional<ScanOptions> edit(const ScanOptions &options);

    bool clearAnalysisCache(); ///< true when it is empty
};

} // namespace epr
