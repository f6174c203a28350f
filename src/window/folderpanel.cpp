// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "folderpanel.h"

#include "displaytext.h"
#include "look.h"
#include "notices.h"
#include "systempaths.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>

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

constexpr int scannedRole = Qt::UserRole + 2;
constexpr int protectedRole = Qt::UserRole + 3;

QString pathOf(const QListWidgetItem &folder)
{
    return folder.data(pathRole).toString();
}

bool isScanned(const QListWidgetItem &folder)
{
    return folder.data(scannedRole).toBool();
}

bool isProtected(const QListWidgetItem &folder)
{
    return folder.data(protectedRole).toBool();
}

/// A padlock in the colour of the text, as high as that.
QIcon lockIcon(const QWidget &widget)
{
    const int height = widget.fontMetrics().ascent();
    QPixmap pixmap(QSize(height, height) * widget.devicePixelRatio());
    pixmap.setDevicePixelRatio(widget.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintLock(painter, QRectF(0, 0, height, height), widget.palette().color(QPalette::Text));
    return pixmap;
}

void showProtection(QListWidgetItem &folder)
{
    const QString path = nativePath(pathOf(folder));
    if (!isProtected(folder)) {
        folder.setText(path);
        folder.setIcon({});
        folder.setToolTip(plainToolTip(path));
        return;
    }
    folder.setText(
        (isScanned(folder) ? FolderPanel::tr("%1 (protected)") : FolderPanel::tr("%1 (only protected)")).arg(path));
    folder.setIcon(lockIcon(*folder.listWidget()));
    folder.setToolTip(plainToolTip(
        FolderPanel::tr("%1\nNothing is removed from this folder and those in it, whatever is ticked.").arg(path)));
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
    for (int row = 0; row < m_list->count(); ++row) {
        if (isScanned(*m_list->item(row)))
            folders << pathOf(*m_list->item(row));
    }
    return folders;
}

QStringList FolderPanel::protectedFolders() const
{
    QStringList folders;
    for (int row = 0; row < m_list->count(); ++row) {
        if (isProtected(*m_list->item(row)))
            folders << pathOf(*m_list->item(row));
    }
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
    QListWidgetItem *row = rowOf(absolute);
    if (row != nullptr && isScanned(*row))
        return false;
    if (row == nullptr)
        row = addRow(absolute);
    row->setData(scannedRole, true);
    showProtection(*row);
    Q_EMIT foldersChanged();
    return true;
}

void FolderPanel::protect(const QStringList &folders)
{
    for (const QString &path : folders) {
        QListWidgetItem *row = rowOf(path);
        if (row == nullptr)
            row = addRow(path);
        row->setData(protectedRole, true);
        showProtection(*row);
    }
    Q_EMIT protectionChanged();
}

QListWidgetItem *FolderPanel::rowOf(const QString &path) const
{
    const FolderIdentity identity = folderIdentity(path);
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem *folder = m_list->item(row);
        if (pathOf(*folder) == path || folder->data(identityRole).value<FolderIdentity>().isSameAs(identity))
            return folder;
    }
    return nullptr;
}

QListWidgetItem *FolderPanel::addRow(const QString &path)
{
    auto *row = new QListWidgetItem(nativePath(path), m_list);
    row->setData(pathRole, path);
    row->setData(identityRole, QVariant::fromValue(folderIdentity(path)));
    m_hint->hide();
    return row;
}

// A protection must not go by a slip: what was both scanned and protected is protected still.
void FolderPanel::removeSelected()
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    for (QListWidgetItem *folder : selected) {
        if (isScanned(*folder) && isProtected(*folder)) {
            folder->setData(scannedRole, false);
            showProtection(*folder);
        } else {
            delete folder;
        }
    }
    m_hint->setVisible(m_list->count() == 0);
    Q_EMIT foldersChanged();
    Q_EMIT protectionChanged();
}

void FolderPanel::protectSelected(bool isToBeProtected)
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    for (QListWidgetItem *folder : selected) {
        folder->setData(protectedRole, isToBeProtected);
        if (isScanned(*folder) || isToBeProtected)
            showProtection(*folder);
        else
            delete folder;
    }
    m_hint->setVisible(m_list->count() == 0);
    Q_EMIT protectionChanged();
}

void FolderPanel::askForFolderToProtect()
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Protect a Folder"), selected.isEmpty() ? QString() : pathOf(*selected.first()));
    if (!folder.isEmpty())
        protect({ QDir(asSystemReads(folder)).absolutePath() });
}

void FolderPanel::refreshSelection()
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    m_protect->setEnabled(!selected.isEmpty());
    m_protect->setChecked(std::any_of(selected.cbegin(), selected.cend(),
                                      [](const QListWidgetItem *folder) { return isProtected(*folder); }));
    Q_EMIT selectionChanged();
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
    connect(m_list, &QListWidget::itemSelectionChanged, this, &FolderPanel::refreshSelection);
    createProtectActions();
    m_list->addActions({ m_protect, m_protectOther, remove });
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void FolderPanel::createProtectActions()
{
    m_protect = new QAction(tr("Protect Folder"), this);
    m_protect->setStatusTip(tr("Remove nothing from the selected folders and those in them, whatever is ticked."));
    m_protect->setCheckable(true);
    m_protect->setEnabled(false);
    m_protectOther = new QAction(tr("Protect Another Folder..."), this);
    m_protectOther->setStatusTip(tr("Remove nothing from a folder that you choose, in a folder to scan for example."));
    connect(m_protect, &QAction::triggered, this, &FolderPanel::protectSelected);
    connect(m_protectOther, &QAction::triggered, this, &FolderPanel::askForFolderToProtect);
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
