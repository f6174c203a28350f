// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filterbar.h"

#include "review.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

using Kind = FilterTerm::Kind;

constexpr qint64 mebibyte = 1 << 20;

QList<FilterTerm> numbered(Kind kind, std::initializer_list<qint64> numbers)
{
    QList<FilterTerm> terms;
    for (const qint64 number : numbers)
        terms << FilterTerm { kind, number };
    return terms;
}

QList<FilterTerm> formats(const Review &review)
{
    QList<FilterTerm> terms;
    for (const QString &suffix : formatsAtHand(review))
        terms << FilterTerm { Kind::Format, 0, suffix };
    return terms;
}

// A folder or a format may be called as a key would be marked in a menu.
QString asActionText(QString text)
{
    return text.replace(u'&', u"&&"_s);
}

} // namespace

FilterBar::FilterBar(const Review &review, QWidget *parent)
    : QWidget(parent)
    , m_review(review)
    , m_menu(new QMenu(tr("Filter By"), this))
    , m_button(new QToolButton(this))
    , m_chips(new QToolBar(this))
{
    m_menu->menuAction()->setStatusTip(tr("Show only groups with copies of a kind."));
    m_button->setObjectName(u"filterButton"_s);
    m_button->setText(tr("Filter By"));
    m_button->setToolTip(m_menu->menuAction()->statusTip());
    m_button->setFocusPolicy(Qt::StrongFocus);
    m_button->setPopupMode(QToolButton::InstantPopup);
    m_button->setMenu(m_menu);
    m_chips->setObjectName(u"filterChips"_s);
    m_chips->setAccessibleName(tr("Filters that are on"));
    m_chips->setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(m_menu, &QMenu::aboutToShow, this, &FilterBar::fillMenu);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_button);
    layout->addWidget(m_chips, 1);
    refreshChips();
    fillMenu();
}

void FilterBar::clear()
{
    m_criteria = {};
    apply();
}

void FilterBar::setOnly(const FilterTerm &term)
{
    m_criteria.terms.removeIf([&term](const FilterTerm &other) { return other.kind == term.kind; });
    m_criteria.terms << term;
    apply();
}

// Anew each time: what is at hand changes with the results.
void FilterBar::fillMenu()
{
    qDeleteAll(m_menu->findChildren<QMenu *>()); // clear() takes only their actions away
    m_menu->clear();
    addTerms(m_menu->addMenu(tr("Match")), numbered(Kind::Match, { 0, 1, 2, 3 }));
    addTerms(m_menu->addMenu(tr("State")), numbered(Kind::State, { 0, 1 }));
    addTerms(m_menu->addMenu(tr("Ticks")), numbered(Kind::Ticks, { 1, 0 }));
    addTerms(m_menu->addMenu(tr("Format")), formats(m_review));
    connect(m_menu->addAction(tr("Folder...")), &QAction::triggered, this, &FilterBar::chooseFolder);
    QMenu *sizes = m_menu->addMenu(tr("Reclaimable"));
    addTerms(sizes, numbered(Kind::AtLeast, { 10 * mebibyte, 100 * mebibyte, 1024 * mebibyte }));
    connect(sizes->addAction(tr("Other...")), &QAction::triggered, this, &FilterBar::chooseSize);
    addTerms(m_menu->addMenu(tr("Problem")), numbered(Kind::Problem, { 0, 1, 2, 3, 4, 5 }));
    addTerms(m_menu, { { Kind::Identical } });
    m_menu->addSeparator();
    QAction *copiesOnly = m_menu->addAction(tr("Matching Copies Only"));
    copiesOnly->setCheckable(true);
    copiesOnly->setChecked(m_criteria.copiesOnly);
    copiesOnly->setStatusTip(tr("Of each group show the copies that match, and the kept one."));
    connect(copiesOnly, &QAction::triggered, this, [this](bool on) {
        m_criteria.copiesOnly = on;
        apply();
    });
    QAction *again = m_menu->addAction(tr("Apply Again"));
    again->setStatusTip(tr("Look for the filter once more, after what was decided since."));
    connect(again, &QAction::triggered, this, &FilterBar::applied);
    connect(m_menu->addAction(tr("Clear Filters")), &QAction::triggered, this, &FilterBar::clear);
}

void FilterBar::addTerms(QMenu *menu, const QList<FilterTerm> &terms)
{
    for (const FilterTerm &term : terms) {
        QAction *action = menu->addAction(asActionText(termText(term)));
        action->setCheckable(true);
        action->setChecked(m_criteria.terms.contains(term));
        connect(action, &QAction::triggered, this, [this, term] { toggle(term); });
    }
    menu->setEnabled(!menu->isEmpty());
}

// Of two sizes the larger one would say nothing.
void FilterBar::toggle(const FilterTerm &term)
{
    if (m_criteria.terms.removeAll(term) > 0)
        return apply();
    if (term.kind == Kind::AtLeast)
        return setOnly(term);
    m_criteria.terms << term;
    apply();
}

void FilterBar::chooseFolder()
{
    const QStringList folders = foldersAtHand(m_review);
    QStringList names;
    for (const QString &folder : folders)
        names << termText({ Kind::Folder, 0, folder });
    QInputDialog dialog(this);
    dialog.setOption(QInputDialog::UseListViewForComboBoxItems);
    dialog.setWindowTitle(tr("Filter by folder"));
    dialog.setLabelText(tr("Show groups with copies in this folder or below it:"));
    dialog.setComboBoxItems(names);
    constexpr int charactersOfPath = 70;
    dialog.resize(charactersOfPath * fontMetrics().averageCharWidth(), dialog.sizeHint().height());
    if (!folders.isEmpty() && dialog.exec() == QDialog::Accepted)
        setOnly({ Kind::Folder, 0, folders.value(names.indexOf(dialog.textValue())) });
}

void FilterBar::chooseSize()
{
    bool isChosen = false;
    constexpr int usual = 50;
    constexpr int most = 1 << 20;
    const int size = QInputDialog::getInt(this, tr("Filter by size"), tr("Show groups that free at least (MB):"), usual,
                                          1, most, 1, &isChosen);
    if (isChosen)
        setOnly({ Kind::AtLeast, size * mebibyte });
}

void FilterBar::apply()
{
    refreshChips();
    Q_EMIT applied();
}

void FilterBar::refreshChips()
{
    if (m_chips->isAncestorOf(window()->focusWidget()))
        m_button->setFocus(Qt::OtherFocusReason); // the chip goes
    m_chips->clear();
    for (const FilterTerm &term : m_criteria.terms)
        addChip(termText(term), [this, term] { toggle(term); });
    if (m_criteria.copiesOnly) {
        addChip(tr("Matching copies only"), [this] {
            m_criteria.copiesOnly = false;
            apply();
        });
    }
    if (m_criteria.terms.size() > 1) {
        QAction *clear = m_chips->addAction(tr("Clear"));
        connect(clear, &QAction::triggered, this, &FilterBar::clear, Qt::QueuedConnection);
        m_chips->widgetForAction(clear)->setFocusPolicy(Qt::StrongFocus);
    }
    m_chips->setVisible(!m_chips->actions().isEmpty());
    m_chips->layout()->setContentsMargins(0, 0, 0, 0); // lest the line grow; a change of style sets them anew
}

// Taken off behind the click: the button that was clicked goes with it.
void FilterBar::addChip(const QString &text, const std::function<void()> &takeOff)
{
    constexpr int longestText = 24; // characters
    const QString shown =
        fontMetrics().elidedText(text, Qt::ElideMiddle, longestText * fontMetrics().averageCharWidth());
    QAction *chip = m_chips->addAction(asActionText(shown) + u"  \u00d7"_s);
    chip->setToolTip(tr("Take this filter off: %1").arg(text));
    connect(chip, &QAction::triggered, this, takeOff, Qt::QueuedConnection);
    QWidget *button = m_chips->widgetForAction(chip);
    button->setAccessibleName(chip->toolTip());
    button->setFocusPolicy(Qt::StrongFocus);
}

} // namespace epr
