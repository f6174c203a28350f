// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace epr {

class Review;

/// Lets the operator choose a file and a format, writes a report of the results as they stand, and offers to open it.
/// The roots are those of the scan that the results come from. `log` is told about a report that was written.
void exportReport(const Review &review, const QStringList &roots,
                  const std::function<void(const QString &message)> &log, QWidget *parent);

} // namespace epr
