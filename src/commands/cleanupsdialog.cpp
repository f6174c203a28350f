// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupsdialog.h"

#include "cleanuphistory.h"
#include "displaytext.h"
#include "notices.h"
#include "runwithprogress.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

CleanupsDialog::CleanupsDialog(const QString &recordFile, QWidget *parent)
    : QDialog(parent)
    , m_recordFile(recordFile)
    , m_store(recordFile)
    , m_runs(new RunsModel(this))
    , m_files(new RunFilesModel(m_store, this))
    , m_search(new QLineEdit(this))
    , m_runList(makeList(m_runs, tr("Clean-ups")))
    , m_fileList(makeList(m_files, tr("Files of the clean-up")))
    , m_summary(plainLabel())
    , m_restoreAll(new QPushButton(tr("&Bring Back All")))
    , m_restoreSelected(new QPushButton(tr("Bring Back &Selected")))
    , m_purge(new QPushButton(tr("Remove for &Good...")))
    , m_emptyFolders(new QPushButton(tr("&Empty Folders...")))
{
    setWindowTitle(tr("Clean-ups"));
    if (const Result<> opened = m_store.open(); !opened)
        m_summary->setText(opened.error());
    m_search->setPlaceholderText(tr("Date, state, file name or folder..."));
    m_search->setAccessibleName(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_fileList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_restoreAll->setObjectName(u"restoreAllButton"_s);
    m_restoreSelected->setObjectName(u"restoreSelectedButton"_s);
    m_purge->setObjectName(u"purgeButton"_s);
    m_emptyFolders->setObjectName(u"emptyFoldersButton"_s);
    m_emptyFolders->setToolTip(tr("Look for folders that this clean-up left empty, and remove them."));
    layOutWidgets();
    constexpr std::chrono::milliseconds pause { 300 }; // of somebody who has typed a word
    m_typing.setSingleShot(true);
    m_typing.setInterval(pause);
    connect(&m_typing, &QTimer::timeout, this, &CleanupsDialog::search);
    connect(m_search, &QLineEdit::textChanged, &m_typing, qOverload<>(&QTimer::start));
    connect(m_runList->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &CleanupsDialog::showFiles);
    connect(m_fileList->selectionModel(), &QItemSelectionModel::selectionChanged, this, &CleanupsDialog::refresh);
    connect(m_restoreAll, &QAbstractButton::clicked, this, [this] { Q_EMIT restoreRequested(*current(), {}); });
    connect(m_restoreSelected, &QAbstractButton::clicked, this, &CleanupsDialog::restoreSelected);
    connect(m_purge, &QAbstractButton::clicked, this, [this] { Q_EMIT purgeRequested(*current()); });
    connect(m_emptyFolders, &QAbstractButton::clicked, this, [this] { Q_EMIT emptyFoldersRequested(*current()); });
}

void CleanupsDialog::setRuns(const QList<CleanupRun> &runs)
{
    m_all = runs;
    search();
}

QTreeView *CleanupsDialog::makeList(QAbstractTableModel *model, const QString &name)
{
    auto *list = new QTreeView(this);
    list->setModel(model);
    list->setAccessibleName(name);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setTextElideMode(Qt::ElideMiddle);
    return list;
}

QWidget *CleanupsDialog::createFileArea()
{
    auto *buttons = new QHBoxLayout;
    for (QAbstractButton *button : { m_restoreAll, m_restoreSelected, m_purge, m_emptyFolders }) {
        qobject_cast<QPushButton *>(button)->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto *area = new QWidget;
    auto *layout = new QVBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_summary);
    layout->addWidget(m_fileList, 1);
    layout->addLayout(buttons);
    return area;
}

void CleanupsDialog::layOutWidgets()
{
    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(m_runList);
    splitter->addWidget(createFileArea());
    splitter->setChildrenCollapsible(false);
    auto *close = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(splitter, 1);
    layout->addWidget(close);
    m_runList->setTextElideMode(Qt::ElideRight);
    resize(150 * fontMetrics().averageCharWidth(), 34 * fontMetrics().lineSpacing());
    const int unit = fontMetrics().averageCharWidth();
    for (const auto &[list, widths] : { std::pair(m_runList, QList<int> { 24, 9, 13, 14, 36, 12 }),
                                        std::pair(m_fileList, QList<int> { 34, 44, 12, 24 }) }) {
        for (int column = 0; column < widths.size(); ++column)
            list->header()->resizeSection(column, widths.at(column) * unit);
    }
}

// A million files take a second, so the window is painted meanwhile.
void CleanupsDialog::search()
{
    m_typing.stop();
    const QString text = QDir::fromNativeSeparators(m_search->text().trimmed());
    const qint64 chosen = current() ? current()->id : 0;
    QList<CleanupRun> found = m_all;
    if (!text.isEmpty()) {
        QSet<qint64> ids;
        runWaiting([&] {
            CleanupStore store(m_recordFile);
            if (store.open())
                ids = store.runsWith(text).value_or(QSet<qint64>());
        });
        found.removeIf([&](const CleanupRun &run) {
            const QString own = dateTimeText(QDateTime::fromMSecsSinceEpoch(run.id)) + u'\n' + runStateText(run);
            return !ids.contains(run.id) && !own.contains(text, Qt::CaseInsensitive);
        });
    }
    m_runs->setRuns(found);
    const auto row = std::ranges::find(std::as_const(found), chosen, &CleanupRun::id);
    const auto position = row == found.cend() ? 0 : row - found.cbegin();
    m_runList->setCurrentIndex(m_runs->index(static_cast<int>(position), 0));
    showFiles();
}

// A run that was found by its date shows all of its files.
void CleanupsDialog::showFiles()
{
    const CleanupRun *run = current();
    if (!run) {
        m_files->clear();
    } else {
        m_files->show(*run, QDir::fromNativeSeparators(m_search->text().trimmed()));
        m_files->fetchMore({});
        if (m_files->rowCount() == 0)
            m_files->show(*run, {});
    }
    refresh();
}

void CleanupsDialog::refresh()
{
    const CleanupRun *run = current();
    const bool canRestore = run && isInQuarantine(*run);
    m_restoreAll->setEnabled(canRestore);
    m_purge->setEnabled(canRestore);
    const qsizetype selected = m_fileList->selectionModel()->selectedRows().size();
    m_restoreSelected->setEnabled(canRestore && selected > 0);
    m_restoreSelected->setText(selected > 0 ? tr("Bring Back &Selected (%1)").arg(countText(selected))
                                            : tr("Bring Back &Selected"));
    m_emptyFolders->setEnabled(run && !run->roots.isEmpty() && run->removed() > 0);
    if (run)
        m_summary->setText(tr("%1 of %2 clean-ups shown. This one: %3.")
                               .arg(countText(m_runs->rowCount()), countText(m_all.size()), runStateText(*run)));
    else if (m_store.isOpen())
        m_summary->setText(m_all.isEmpty() ? tr("No clean-up has been recorded yet.")
                                           : tr("No clean-up has this in its date, its state or its files."));
}

void CleanupsDialog::restoreSelected()
{
    QSet<QString> paths;
    for (const QModelIndex &row : m_fileList->selectionModel()->selectedRows()) {
        if (m_files->file(row.row()).fate == FileFate::Removed)
            paths.insert(m_files->file(row.row()).path);
    }
    if (paths.isEmpty())
        showInformation(this, tr("Nothing to bring back"), tr("None of the selected files is in the quarantine."));
    else
        Q_EMIT restoreRequested(*current(), paths);
}

const CleanupRun *CleanupsDialog::current() const
{
    const QModelIndex index = m_runList->currentIndex();
    return index.isValid() ? &m_runs->runs().at(index.row()) : nullptr;
}

} // namespace epr
