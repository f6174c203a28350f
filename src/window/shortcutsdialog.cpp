// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shortcutsdialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
}

} // namespace

/// What is being filled: headings over rows of a command and its key.
struct ShortcutsDialog::Column {
    explicit Column(QHBoxLayout *columns)
        : grid(new QGridLayout)
    {
        auto *column = new QVBoxLayout;
        column->addLayout(grid);
        column->addStretch();
        columns->addLayout(column);
        grid->setHorizontalSpacing(24);
        grid->setVerticalSpacing(6);
    }

    QGridLayout *grid;

    void addHeading(const QString &text)
    {
        auto *label = new QLabel(text);
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
        grid->addWidget(label, grid->rowCount(), 0, 1, 2);
    }

    void addKey(const QString &command, const QString &key)
    {
        const int row = grid->rowCount();
        auto *keyLabel = new QLabel(key);
        keyLabel->setAccessibleName(u"%1: %2"_s.arg(command, key));
        grid->addWidget(new QLabel(command), row, 0);
        grid->addWidget(keyLabel, row, 1);
    }
};

ShortcutsDialog::ShortcutsDialog(const QMenuBar *menuBar, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keyboard shortcuts"));
    auto *content = new QWidget;
    auto *columns = new QHBoxLayout(content);
    columns->setSpacing(6 * fontMetrics().averageCharWidth());
    const QList<QAction *> menus = menuBar->actions();
    constexpr int menusOnTheLeft = 4; // with which both columns are about as long
    Column left(columns);
    addMenus(left, menus.first(qMin(menusOnTheLeft, menus.size())));
    Column right(columns);
    addMenus(right, menus.sliced(qMin(menusOnTheLeft, menus.size())));
    addResultsKeys(right);

    auto *scroll = new QScrollArea; // takes the focus, so that the arrow keys scroll
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(scroll);
    layout->addWidget(buttons);
    const QSize wanted = content->sizeHint() + QSize(80, 80);
    resize(wanted.boundedTo(screen()->availableSize() * 4 / 5));
}

void ShortcutsDialog::addMenus(Column &column, const QList<QAction *> &menus)
{
    for (const QAction *menu : menus) {
        bool hasHeading = false;
        const QList<QAction *> actions = menu->menu() ? menu->menu()->actions() : QList<QAction *>();
        for (const QAction *action : actions) {
            if (action->shortcut().isEmpty())
                continue;
            if (!hasHeading)
                column.addHeading(withoutMnemonic(menu->text()));
            hasHeading = true;
            column.addKey(withoutMnemonic(action->text()), action->shortcut().toString(QKeySequence::NativeText));
        }
    }
}

void ShortcutsDialog::addResultsKeys(Column &column)
{
    const auto key = [](const QKeySequence &keys) { return keys.toString(QKeySequence::NativeText); };
    column.addHeading(tr("In the results"));
    column.addKey(tr("Tick or untick the copy"), key(Qt::Key_Space));
    column.addKey(tr("Close or open the group"), tr("%1, %2").arg(key(Qt::Key_Left), key(Qt::Key_Right)));
    column.addKey(tr("All commands for the copy"), tr("Menu key, %1").arg(key(Qt::SHIFT | Qt::Key_F10)));
    column.addHeading(tr("On a waveform of the player"));
    column.addKey(tr("Five seconds back or on"), tr("%1, %2").arg(key(Qt::Key_Left), key(Qt::Key_Right)));
    column.addKey(tr("To the beginning or the end"), tr("%1, %2").arg(key(Qt::Key_Home), key(Qt::Key_End)));
}

} // namespace epr
