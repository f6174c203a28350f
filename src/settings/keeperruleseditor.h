// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>
#include <QStringList>

class QComboBox;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace epr {

/// Edits the operator's own rules for the copy to keep: each switched on or off and moved, the folders that one of
/// them asks for, and sets of all that under names. Nothing is stored but by the caller.
class KeeperRulesEditor final : public QGroupBox {
    Q_OBJECT

public:
    KeeperRulesEditor(const QStringList &words, const QStringList &presets, QWidget *parent = nullptr);

    QStringList words() const; ///< of KeeperRules; empty if they are the standard ones
    QStringList presets() const; ///< a name and words in each, separated by line feeds

private:
    QLayout *createButtons();
    QLayout *createPresetRow();
    void show(const QStringList &words);
    void move(int rows);
    void addPreset(const QString &name);
    void savePreset();
    void deletePreset();
    void refreshButtons();

    QListWidget *m_rules;
    QPushButton *m_up;
    QPushButton *m_down;
    QPlainTextEdit *m_folders;
    QComboBox *m_presets;
    QPushButton *m_copy;
    QPushButton *m_delete;
};

} // namespace epr
