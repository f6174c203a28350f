// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "command.h"

#include <QStringList>

namespace epr {

class Review;

/// Lets the operator choose a file and a format, writes a report of the review as it stands, and offers to open it.
class ExportCommand final : public Command {
    Q_OBJECT

public:
    ExportCommand(const Review &review, QWidget *window);

    void exportReport(const QStringList &roots); ///< those of the scan that the review is about

private:
    const Review &m_review;
};

} // namespace epr
