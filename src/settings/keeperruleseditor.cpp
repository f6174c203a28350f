// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperruleseditor.h"

#include "displaytext.h"
#include "keeperrules.h"

#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int wordRole = Qt::UserRole; // of a rule, without its minus; of a preset, the words in a list

} // namespace

KeeperRulesEditor::KeeperRulesEditor(const QStringList &words, const QStringList &presets, QWidget *parent)
    : QGroupBox(tr("Own rules, the first that tells copies apart decides"), parent)
    , m_rules(new QListWidget)
    , m_up(new QPushButton(tr("Move &up")))
    , m_down(new QPushButton(tr("Move do&wn")))
    , m_folders(new QPlainTextEdit)
    , m_presets(new QComboBox)
    , m_copy(new QPushButton(tr("Cop&y")))
    , m_delete(new QPushButton(tr("De&lete")))
{
    m_rules->setAccessibleName(tr("Rules for the copy to keep"));
    m_rules->setToolTip(tr("Each rule leaves out the copies that are worse than the best. A copy of which it knows "
                           "nothing stays. Files that could not be read are kept only where there are no others."));
    m_folders->setTabChangesFocus(true);
    m_folders->setLineWrapMode(QPlainTextEdit::NoWrap);
    constexpr int folderLines = 3;
    m_folders->setFixedHeight(m_folders->fontMetrics().lineSpacing() * folderLines + 2 * m_folders->frameWidth() + 10);
    auto *folderLabel = new QLabel(tr("Order of f&olders, one on each line, the preferred one first:"));
    folderLabel->setBuddy(m_folders);
    auto *ruleRow = new QHBoxLayout;
    ruleRow->addWidget(m_rules, 1);
    ruleRow->addLayout(createButtons());
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(createPresetRow());
    layout->addLayout(ruleRow);
    layout->addWidget(folderLabel);
    layout->addWidget(m_folders);
    for (const QString &preset : presets)
        m_presets->addItem(preset.section(u'\n', 0, 0), preset.split(u'\n').sliced(1));
    show(words);
    m_rules->setMinimumHeight((m_rules->sizeHintForRow(0) + 1) * m_rules->count() + 2 * m_rules->frameWidth());
    connect(m_presets, &QComboBox::activated, this, [this] { show(m_presets->currentData(wordRole).toStringList()); });
    connect(m_rules, &QListWidget::currentRowChanged, this, &KeeperRulesEditor::refreshButtons);
    refreshButtons();
}

QStringList KeeperRulesEditor::words() const
{
    KeeperRules rules;
    const QStringList standard = rules.words();
    rules.entries.clear();
    for (int row = 0; row < m_rules->count(); ++row) {
        const QListWidgetItem *item = m_rules->item(row);
        rules.entries.append({ item->data(wordRole).toString(), {}, item->checkState() == Qt::Checked });
    }
    for (const QString &line : m_folders->toPlainText().split(u'\n')) {
        if (!line.trimmed().isEmpty())
            rules.folders.append(QDir::cleanPath(QDir::fromNativeSeparators(line.trimmed())));
    }
    return rules.words() == standard ? QStringList() : rules.words();
}

QStringList KeeperRulesEditor::presets() const
{
    QStringList presets;
    for (int row = 0; row < m_presets->count(); ++row)
        presets
            << (QStringList(m_presets->itemText(row)) + m_presets->itemData(row, wordRole).toStringList()).join(u'\n');
    return presets;
}

QLayout *KeeperRulesEditor::createButtons()
{
    auto *layout = new QVBoxLayout;
    layout->addWidget(m_up);
    layout->addWidget(m_down);
    layout->addStretch();
    connect(m_up, &QPushButton::clicked, this, [this] { move(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { move(+1); });
    return layout;
}

QLayout *KeeperRulesEditor::createPresetRow()
{
    auto *label = new QLabel(tr("&Presets:"));
    label->setBuddy(m_presets);
    m_presets->setAccessibleName(tr("Presets"));
    auto *save = new QPushButton(tr("Sa&ve as..."));
    auto *layout = new QHBoxLayout;
    layout->addWidget(label);
    layout->addWidget(m_presets, 1);
    for (QPushButton *button : { save, m_copy, m_delete })
        layout->addWidget(button);
    connect(save, &QPushButton::clicked, this, &KeeperRulesEditor::savePreset);
    connect(m_copy, &QPushButton::clicked, this, [this] {
        show(m_presets->currentData(wordRole).toStringList());
        addPreset(tr("%1 (copy)").arg(m_presets->currentText()));
    });
    connect(m_delete, &QPushButton::clicked, this, &KeeperRulesEditor::deletePreset);
    return layout;
}

// Rules of a later version have no name to show, but keep their place.
void KeeperRulesEditor::show(const QStringList &words)
{
    const KeeperRules rules(words);
    m_rules->clear();
    for (const KeeperRules::Entry &entry : rules.entries) {
        auto *item = new QListWidgetItem(entry.rule ? ruleName(*entry.rule) : entry.word, m_rules);
        item->setData(wordRole, entry.word);
        item->setCheckState(entry.isOn ? Qt::Checked : Qt::Unchecked);
        item->setHidden(!entry.rule);
    }
    m_rules->setCurrentRow(0);
    QStringList folders;
    for (const QString &folder : rules.folders)
        folders << nativePath(folder);
    m_folders->setPlainText(folders.join(u'\n'));
}

void KeeperRulesEditor::move(int rows)
{
    int row = m_rules->currentRow() + rows;
    while (m_rules->item(row) && m_rules->item(row)->isHidden())
        row += rows;
    QListWidgetItem *item = m_rules->takeItem(m_rules->currentRow());
    m_rules->insertItem(row, item);
    m_rules->setCurrentItem(item);
}

void KeeperRulesEditor::savePreset()
{
    const QString name = QInputDialog::getText(this, tr("Save rules"), tr("Name of the preset:"), QLineEdit::Normal,
                                               m_presets->currentText())
                             .simplified();
    if (!name.isEmpty())
        addPreset(name);
}

/// What is shown now, in the place of one of the same name.
void KeeperRulesEditor::addPreset(const QString &name)
{
    QStringList shown = words();
    if (shown.isEmpty())
        shown = KeeperRules().words();
    if (m_presets->findText(name) < 0)
        m_presets->addItem(name);
    m_presets->setCurrentIndex(m_presets->findText(name));
    m_presets->setItemData(m_presets->currentIndex(), shown, wordRole);
    refreshButtons();
}

void KeeperRulesEditor::deletePreset()
{
    m_presets->removeItem(m_presets->currentIndex());
    refreshButtons();
}

void KeeperRulesEditor::refreshButtons()
{
    m_up->setEnabled(m_rules->currentRow() > 0);
    m_down->setEnabled(m_rules->currentRow() >= 0 && m_rules->currentRow() + 1 < m_rules->count());
    for (QPushButton *button : { m_copy, m_delete })
        button->setEnabled(m_presets->count() > 0);
}

} // namespace epr
