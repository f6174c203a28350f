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
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QToolButton>

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
    folder.setIcon(signIcon(paintLock, *folder.listWidget(), folder.listWidget()->palette().color(QPalette::Text)));
    folder.setToolTip(plainToolTip(
        FolderPanel::tr("%1\nNothing is removed from this folder and those in it, whatever is ticked.").arg(path)));
}

} // namespace

FolderPanel::FolderPanel(QAction *add, QAction *remove, QWidget *parent)
    : QGroupBox(tr("Folders to scan"), parent)
{
    setAcceptDrops(true);
    m_body = new QWidget(this);
    createList(remove);
    layOutWidgets(add, remove);
    createTitleLine();
    connect(this, &FolderPanel::foldersChanged, this, &FolderPanel::refreshLine);
    connect(this, &FolderPanel::protectionChanged, this, &FolderPanel::refreshLine);
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

void FolderPanel::showScanned(qint64 files, bool hasGroups)
{
    m_files = files;
    if (hasGroups && !m_staysOpen && !folders().isEmpty())
        m_unfold->setChecked(false);
    refreshLine();
}

QSize FolderPanel::minimumSizeHint() const
{
    const QSize own = QGroupBox::minimumSizeHint();
    return { own.width(), std::min(own.height(), maximumHeight()) };
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

void FolderPanel::mouseReleaseEvent(QMouseEvent *event)
{
    QGroupBox::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && event->position().y() < contentsRect().top())
        m_unfold->trigger();
}

void FolderPanel::resizeEvent(QResizeEvent *event)
{
    QGroupBox::resizeEvent(event);
    refreshLine();
}

void FolderPanel::createTitleLine()
{
    m_unfold = new QAction(title(), this);
    m_unfold->setCheckable(true);
    m_unfold->setChecked(true);
    m_unfold->setShortcut(Qt::Key_F7);
    m_line = new QLabel(this);
    m_line->setObjectName(u"foldedFolders"_s);
    m_line->setTextFormat(Qt::PlainText);
    m_foldButton = new QToolButton(this);
    m_foldButton->setObjectName(u"foldButton"_s);
    m_foldButton->setAutoRaise(true);
    m_foldButton->setFocusPolicy(Qt::StrongFocus);
    m_foldButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(m_foldButton, &QToolButton::clicked, m_unfold, &QAction::trigger);
    connect(m_unfold, &QAction::triggered, this, [this](bool isOpen) { m_staysOpen = isOpen; });
    connect(m_unfold, &QAction::toggled, this, [this](bool isOpen) { fold(!isOpen); });
    fold(false);
}

// What cannot be seen must not stay selected, for Remove Folder.
void FolderPanel::fold(bool isFolded)
{
    if (isFolded) {
        m_list->clearSelection();
        m_openHeight = height();
    }
    m_body->setHidden(isFolded);
    m_line->setVisible(isFolded);
    m_foldButton->setText(isFolded ? tr("Change") : tr("Fold"));
    m_foldButton->setArrowType(isFolded ? Qt::DownArrow : Qt::UpArrow);
    m_foldButton->setAccessibleName(isFolded ? tr("Show the folders to scan") : tr("Fold the folders to scan"));
    setMaximumHeight(isFolded ? contentsMargins().top() + layout()->contentsMargins().bottom() : QWIDGETSIZE_MAX);
    if (auto *splitter = qobject_cast<QSplitter *>(parentWidget()); splitter && splitter->count() == 2) {
        const int own = isFolded ? maximumHeight() : m_openHeight; // which it does not ask for by itself
        splitter->setSizes({ own, splitter->height() - own - splitter->handleWidth() });
        splitter->handle(1)->setEnabled(!isFolded);
    }
    refreshLine();
}

// Beside the title, where an open panel has nothing, so that the line costs no height of its own.
void FolderPanel::refreshLine()
{
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    const QRect label =
        QStyle::visualRect(layoutDirection(), rect(),
                           style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, this));
    const auto place = [&](QWidget *widget, int left, int width) {
        QRect at(left, 0, width, widget->sizeHint().height());
        at.moveCenter({ at.center().x(), label.center().y() });
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), at));
    };
    constexpr int gap = 12;
    const int buttonWidth = m_foldButton->sizeHint().width();
    place(m_foldButton, width() - buttonWidth, buttonWidth);
    place(m_line, label.right() + gap, std::max(width() - buttonWidth - label.right() - 2 * gap, 0));

    QStringList paths = folders();
    for (QString &path : paths)
        path = nativePath(path);
    QStringList facts { tr("%Ln folder(s)", nullptr, static_cast<int>(paths.size())) };
    if (m_files > 0)
        facts << tr("%1 files").arg(countText(m_files));
    if (const auto count = protectedFolders().size(); count > 0)
        facts << tr("%1 protected").arg(countText(count));
    const QString text = tr("%1: %2", "how many folders, and which").arg(facts.join(u", "_s), paths.join(u", "_s));
    m_line->setText(m_line->fontMetrics().elidedText(text, Qt::ElideRight, m_line->width()));
    m_line->setToolTip(plainToolTip(paths.join(u'\n')));
}

void FolderPanel::createList(QAction *remove)
{
    m_list = new QListWidget(m_body);
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
    m_addButton = buttonFor(add, tr("Add..."), m_body);
    buttons->addWidget(m_addButton);
    buttons->addWidget(buttonFor(remove, tr("Remove"), m_body));
    buttons->addStretch();
    auto *row = new QHBoxLayout(m_body);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_list, 1);
    row->addLayout(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 4);
    layout->addWidget(m_body);
}

} // namespace epr
