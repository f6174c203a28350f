// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace epr {

struct ReviewTotals;

/// How far a review is, in words and as a bar. Hidden before the first group is done.
class ReviewProgress final : public QWidget {
    Q_OBJECT

public:
    explicit ReviewProgress(QWidget *parent = nullptr);

    void show(const ReviewTotals &totals);

private:
    QLabel *m_text;
    QProgressBar *m_bar;
};

} // namespace epr
