// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filtercriteria.h"

#include <QWidget>

#include <functional>

class QAction;
class QMenu;
class QToolBar;
class QToolButton;

namespace epr {

/// A button whose menu holds all that the results can be filtered by, and beside it what is on, each with a cross that
/// takes it off.
class FilterBar final : public QWidget {
    Q_OBJECT

public:
    explicit FilterBar(const Review &review, QWidget *parent = nullptr);

    const FilterCriteria &criteria() const { return m_criteria; }
    QMenu *menu() const { return m_menu; }
    void clear();
    void setOnly(const FilterTerm &term); ///< in place of others of its kind

Q_SIGNALS:
    void applied(); ///< what is asked changed, or is to be looked for again

private:
    void fillMenu();
    void addTerms(QMenu *menu, const QList<FilterTerm> &terms);
    void toggle(const FilterTerm &term);
    void chooseFolder();
    void chooseSize();
    void apply();
    void refreshChips();
    void addChip(const QString &text, const std::function<void()> &takeOff);

    const Review &m_review;
    FilterCriteria m_criteria;
    QMenu *m_menu;
    QToolButton *m_button;
    QToolBar *m_chips;
};

} // namespace epr
