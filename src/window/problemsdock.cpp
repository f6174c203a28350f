// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "problemsdock.h"

#include "displaytext.h"
#include "notices.h"
#include "problemsmodel.h"

#include <QAction>
#include <QHeaderView>
#include <QSortFilterProxyModel>
#include <QTableView>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QTableView *createList(QAbstractItemModel *model)
{
    auto *view = new QTableView;
    view->setObjectName(u"problemList"_s);
    view->setModel(model);
    view->setShowGrid(false);
    view->setWordWrap(false);
    view->setTabKeyNavigation(false);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 4);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setTextElideMode(Qt::ElideMiddle);
    view->setSortingEnabled(true);
    view->sortByColumn(-1, Qt::AscendingOrder); // as they happened, until a heading is clicked
    view->setContextMenuPolicy(Qt::ActionsContextMenu);
    view->setMinimumHeight(3 * view->fontMetrics().lineSpacing()); // no more than the log beside it
    view->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    view->horizontalHeader()->setHighlightSections(false);
    view->horizontalHeader()->setStretchLastSection(true);
    const int width = view->fontMetrics().averageCharWidth();
    view->horizontalHeader()->resizeSection(ProblemsModel::FileColumn, 34 * width);
    view->horizontalHeader()->resizeSection(ProblemsModel::FolderColumn, 34 * width);
    view->horizontalHeader()->resizeSection(ProblemsModel::AttemptColumn, 27 * width);
    view->horizontalHeader()->resizeSection(ProblemsModel::ReasonColumn, 70 * width);
    return view;
}

} // namespace

ProblemsDock::ProblemsDock(QWidget *parent)
    : QDockWidget(parent)
    , goToRow(make(tr("Go to Its Row"), Qt::Key_Return))
    , openFolder(make(tr("Open Folder")))
    , tryAgain(make(tr("Try Again")))
    , copy(make(tr("Copy"), QKeySequence::Copy))
    , exportAll(make(tr("Export...")))
    , m_model(new ProblemsModel(this))
    , m_sorted(new QSortFilterProxyModel(this))
{
    setObjectName(u"problemsDock"_s);
    m_sorted->setSourceModel(m_model);
    m_sorted->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_sorted->setSortRole(ProblemsModel::SortRole);
    m_view = createList(m_sorted);
    m_view->setAccessibleName(tr("Problems"));
    m_view->addActions({ goToRow, openFolder, tryAgain, copy, exportAll });
    m_hint = new EmptyHint(m_view);
    m_hint->setText(tr("Files that could not be read, compared or removed are listed here."));
    setWidget(m_view);
    connect(m_view, &QTableView::doubleClicked, goToRow, &QAction::trigger);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, &ProblemsDock::currentChanged);
    connect(m_sorted, &QAbstractItemModel::modelReset, this, &ProblemsDock::refresh);
    connect(m_sorted, &QAbstractItemModel::rowsInserted, this, &ProblemsDock::refresh);
    refresh();
}

const FileProblem *ProblemsDock::current() const
{
    const QModelIndex row = m_sorted->mapToSource(m_view->currentIndex());
    return row.isValid() ? &m_model->problems().at(row.row()) : nullptr;
}

QList<FileProblem> ProblemsDock::selected() const
{
    QModelIndexList rows = m_view->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QList<FileProblem> problems;
    for (const QModelIndex &row : std::as_const(rows))
        problems.append(m_model->problems().at(m_sorted->mapToSource(row).row()));
    return problems;
}

QAction *ProblemsDock::make(const QString &text, const QKeySequence &key)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    return action;
}

void ProblemsDock::refresh()
{
    const qsizetype count = m_model->problems().size();
    setWindowTitle(count > 0 ? tr("Problems (%1)").arg(countText(count)) : tr("Problems"));
    m_hint->setVisible(count == 0);
    exportAll->setEnabled(count > 0);
    Q_EMIT currentChanged();
}

} // namespace epr
