// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settingscommand.h"

#include <QStringList>

namespace epr {

/// Tells the operator if a quarantine folder just chosen is inside a folder to scan.
void warnIfScanned(const QString &quarantineRoot, const QStringList &folders, QWidget *parent);

/// Before a scan that would find the copies in the quarantine and offer them as duplicates of their originals: logs
/// that and asks whether to go on. A quarantine folder without a file in it is not worth a question.
[[nodiscard]] bool confirmScanOfQuarantine(const QString &quarantineRoot, const QStringList &folders, const LogFn &log,
                                           QWidget *parent);

} // namespace epr
