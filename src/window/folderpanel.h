// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>

class QAction;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QToolButton;

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

    /// Folded, the list is one line that says what is in it. It folds by itself once there are groups to review, unless
    /// the operator has unfolded it after that happened.
    QAction *unfoldAction() const { return m_unfold; } ///< for a menu
    void setStaysOpen(bool stays) { m_staysOpen = stays; }
    bool staysOpen() const { return m_staysOpen; }
    void showScanned(qint64 files, bool hasGroups);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override; ///< as low as it may be: the results need the room

Q_SIGNALS:
    void selectionChanged();
    void foldersChanged();
    void protectionChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void createTitleLine();
    void fold(bool isFolded);
    void refreshLine();
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
    QWidget *m_body = nullptr; ///< what goes when the panel is folded
    QLabel *m_line = nullptr; ///< what comes then, beside the title
    QToolButton *m_foldButton = nullptr;
    QAction *m_unfold = nullptr;
    bool m_staysOpen = false;
    int m_openHeight = 0; ///< before it was folded
    qint64 m_files = 0;
};

} // namespace epr
