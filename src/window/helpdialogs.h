// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QGridLayout;
class QMenuBar;
class QVBoxLayout;

namespace epr {

/// The program with its version, its makers and its licences.
class AboutDialog final : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(QWidget *parent = nullptr);

private:
    void addLogo(QVBoxLayout *layout);
    void addTexts(QVBoxLayout *layout);
    void addButtons(QVBoxLayout *layout);
};

/// Lists every key of the program: those of the menu's commands, read from the menu itself so that the list cannot
/// fall behind, and those that work inside the results and the player.
class ShortcutsDialog final : public QDialog {
    Q_OBJECT

public:
    ShortcutsDialog(const QMenuBar *menuBar, QWidget *parent);

private:
    struct Column;
    static void addMenus(Column &column, const QList<QAction *> &menus);
    static void addResultsKeys(Column &column);
};

} // namespace epr
