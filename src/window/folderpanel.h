// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>

class QAction;
class QListWidget;
class QPushButton;

namespace epr {

class EmptyHint;

/// The list of folders to scan, with its two buttons. Folders may also be dropped on it.
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
    void removeSelected();
    void focusAddButton();

    QSize sizeHint() const override; ///< as low as it may be: the results need the room

Q_SIGNALS:
    void selectionChanged();
    void foldersChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void createList(QAction *remove);
    void layOutWidgets(QAction *add, QAction *remove);

    QListWidget *m_list = nullptr;
    EmptyHint *m_hint = nullptr;
    QPushButton *m_addButton = nullptr;
};

} // namespace epr
