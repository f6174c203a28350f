// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>

class QAction;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace epr {

class EmptyHint;

/// The list of folders to scan, with its two buttons. Folders may also be dropped on it. From some nothing may be
/// removed: these are marked, and those of them that are not scanned themselves, a part of one that is, say, have rows
/// of their own.
class FolderPanel final : public QGroupBox {
    Q_OBJECT

public:
    /// The buttons stand for these actions: they trigger them and are enabled with them.
    FolderPanel(QAction *add, QAction *remove, QWidget *parent = nullptr);

    QStringList folders() const; ///< absolute paths in list order
    bool hasSelection() const;

    /// Appends the folder by its absolute path. False if it does not exist, is not a folder or is in the list already,
    /// by whatever path.
    bool addFolder(const QString &path);
    /// Takes the selected rows off the list. A protected folder stays as such until its row is removed again.
    void removeSelected();
    void focusAddButton();

    QStringList protectedFolders() const; ///< absolute paths in list order
    void protect(const QStringList &folders); ///< absolute paths; they need not exist, their drive may be away
    QList<QAction *> protectActions() const { return { m_protect, m_protectOther }; } ///< for a menu

    QSize sizeHint() const override; ///< as low as it may be: the results need the room

Q_SIGNALS:
    void selectionChanged();
    void foldersChanged();
    void protectionChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void createList(QAction *remove);
    void createProtectActions();
    void layOutWidgets(QAction *add, QAction *remove);
    QListWidgetItem *rowOf(const QString &path) const; ///< null = none, by whatever path
    QListWidgetItem *addRow(const QString &path);
    void askForFolderToProtect();
    void protectSelected(bool isProtected);
    void refreshSelection();

    QListWidget *m_list = nullptr;
    EmptyHint *m_hint = nullptr;
    QAction *m_protect = nullptr;
    QAction *m_protectOther = nullptr;
    QPushButton *m_addButton = nullptr;
};

} // namespace epr
