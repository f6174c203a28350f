// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"

#include <QDockWidget>

class QSortFilterProxyModel;
class QTableView;

namespace epr {

class EmptyHint;
class ProblemsModel;

/// The list of what failed, beside the log. How many there are stands in its title.
class ProblemsDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit ProblemsDock(QWidget *parent);

    ProblemsModel *model() const { return m_model; }

    const FileProblem *current() const; ///< null = none
    QList<FileProblem> selected() const; ///< in the order on the screen

    QAction *const goToRow; ///< what the commands do is its owner's business
    QAction *const openFolder;
    QAction *const tryAgain;
    QAction *const copy;
    QAction *const exportAll;

Q_SIGNALS:
    void currentChanged();

private:
    QAction *make(const QString &text, const QKeySequence &key = {});
    void refresh();

    ProblemsModel *m_model;
    QSortFilterProxyModel *m_sorted;
    QTableView *m_view;
    EmptyHint *m_hint;
};

} // namespace epr
