// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "folderpanel.h"

#include "displaytext.h"
#include "notices.h"
#include "systempaths.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QShortcut>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QStringList foldersIn(const QMimeData *data)
{
    QStringList folders;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir())
            folders << url.toLocalFile();
    }
    return folders;
}

QPushButton *buttonFor(QAction *action, const QString &text, QWidget *parent)
{
    auto *button = new QPushButton(text, parent);
    button->setToolTip(action->toolTip());
    button->setEnabled(action->isEnabled());
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    QObject::connect(action, &QAction::enabledChanged, button, &QPushButton::setEnabled);
    return button;
}

constexpr int pathRole = Qt::UserRole;
constexpr int identityRole = Qt::UserRole + 1; ///< when added: a drive that has gone since would take long to answer

QString pathOf(const QListWidgetItem &folder)
{
    return folder.data(pathRole).toString();
}

} // namespace

FolderPanel::FolderPanel(QAction *add, QAction *remove, QWidget *parent)
    : QGroupBox(tr("Folders to scan"), parent)
{
    setAcceptDrops(true);
    createList(remove);
    layOutWidgets(add, remove);
}

QStringList FolderPanel::folders() const
{
    QStringList folders;
    for (int row = 0; row < m_list->count(); ++row)
        folders << pathOf(*m_list->item(row));
    return folders;
}

bool FolderPanel::hasSelection() const
{
    return !m_list->selectedItems().isEmpty();
}

bool FolderPanel::addFolder(const QString &path)
{
    const QString absolute = QDir(asSystemReads(path)).absolutePath();
    if (path.isEmpty() || !QFileInfo(absolute).isDir())
        return false;
    const FolderIdentity identity = folderIdentity(absolute);
    for (int row = 0; row < m_list->count(); ++row) {
        const QListWidgetItem &folder = *m_list->item(row);
        if (pathOf(folder) == absolute || folder.data(identityRole).value<FolderIdentity>().isSameAs(identity))
            return false;
    }
    auto *item = new QListWidgetItem(nativePath(absolute));
    item->setData(pathRole, absolute);
    item->setData(identityRole, QVariant::fromValue(identity));
    item->setToolTip(plainToolTip(item->text()));
    m_list->addItem(item);
    m_hint->hide();
    return true;
}

void FolderPanel::removeSelected()
{
    qDeleteAll(m_list->selectedItems());
    m_hint->setVisible(m_list->count() == 0);
}

// Not as the focus proxy of the panel, with which Tab would pass over the list.
void FolderPanel::focusAddButton()
{
    m_addButton->setFocus(Qt::OtherFocusReason);
}

QSize FolderPanel::sizeHint() const
{
    return { QGroupBox::sizeHint().width(), minimumSizeHint().height() };
}

void FolderPanel::dragEnterEvent(QDragEnterEvent *event)
{
    if (!foldersIn(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void FolderPanel::dropEvent(QDropEvent *event)
{
    const QStringList dropped = foldersIn(event->mimeData());
    for (const QString &folder : dropped)
        addFolder(folder);
    event->acceptProposedAction();
}

void FolderPanel::createList(QAction *remove)
{
    m_list = new QListWidget(this);
    m_list->setObjectName(u"folderList"_s);
    m_list->setAccessibleName(title());
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    constexpr int leastLines = 3;
    m_list->setMinimumHeight(leastLines * m_list->fontMetrics().lineSpacing() + 2 * m_list->frameWidth());
    m_hint = new EmptyHint(m_list);
    m_hint->setText(tr("Drop folders with music here."));
    auto *deleteKey = new QShortcut(QKeySequence::Delete, m_list);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, remove, &QAction::trigger);
    connect(m_list, &QListWidget::itemSelectionChanged, this, &FolderPanel::selectionChanged);
    connect(m_list->model(), &QAbstractItemModel::rowsInserted, this, &FolderPanel::foldersChanged);
    connect(m_list->model(), &QAbstractItemModel::rowsRemoved, this, &FolderPanel::foldersChanged);
}

void FolderPanel::layOutWidgets(QAction *add, QAction *remove)
{
    auto *buttons = new QVBoxLayout;
    m_addButton = buttonFor(add, tr("Add..."), this);
    buttons->addWidget(m_addButton);
    buttons->addWidget(buttonFor(remove, tr("Remove"), this));
    buttons->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 4);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
}

} // namespace epr
