// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanoptions.h"

#include <functional>
#include <optional>

class QWidget;

namespace epr {

using LogFn = std::function<void(const QString &message)>;

/// Lets the operator edit the settings. The edited options, or nothing when the dialog was cancelled; the update
/// settings are then already stored.
[[nodiscard]] std::optional<ScanOptions> editSettings(const ScanOptions &options, const LogFn &log, QWidget *parent);

/// Empties the analysis cache and logs how that went; true when it is empty.
bool clearAnalysisCache(const LogFn &log);

} // namespace epr
