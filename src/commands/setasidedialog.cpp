// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "setasidedialog.h"

#include "displaytext.h"
#include "notices.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int searchRole = Qt::UserRole + 1;

} // namespace

SetAsideDialog::SetAsideDialog(const QList<SetAsideGroup> &groups, QWidget *parent)
    : QDialog(parent)
    , m_search(new QLineEdit(this))
    , m_list(new QTreeWidget(this))
    , m_restore(new QPushButton(tr("&Restore"), this))
{
    setWindowTitle(tr("Not duplicates"));
    m_search->setPlaceholderText(tr("Artist, title or file name..."));
    m_search->setAccessibleName(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_list->setAccessibleName(tr("Groups that were set aside"));
    m_list->setHeaderLabels({ tr("Set aside"), tr("Copies") });
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setUniformRowHeights(true);
    m_list->setRootIsDecorated(false);
    m_restore->setAutoDefault(false);
    std::ranges::for_each(groups.crbegin(), groups.crend(), [this](const SetAsideGroup &group) { addGroup(group); });
    m_list->resizeColumnToContents(0);
    m_list->setCurrentItem(m_list->topLevelItem(0));
    layOutWidgets();
    connect(m_search, &QLineEdit::textChanged, this, &SetAsideDialog::search);
    connect(m_restore, &QPushButton::clicked, this, &SetAsideDialog::restoreSelected);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &SetAsideDialog::refresh);
    refresh();
}

void SetAsideDialog::addGroup(const SetAsideGroup &group)
{
    const auto nameOf = [](const SetAsideContent &content) {
        return content.copies > 1 ? tr("%1, %2 times").arg(content.name, countText(content.copies)) : content.name;
    };
    QStringList names;
    for (const SetAsideContent &content : group.contents)
        names << nameOf(content);
    auto *item = new QTreeWidgetItem(m_list, { dateTimeText(group.time.toLocalTime()), names.join("  /  "_L1) });
    item->setToolTip(1, plainToolTip(names.join(u'\n')));
    item->setData(0, idRole, group.id);
    item->setData(0, searchRole, names.join(u'\n').toCaseFolded());
}

void SetAsideDialog::layOutWidgets()
{
    auto *explanation = new QLabel(tr("Scans leave these groups out. A group that is restored shows again."));
    explanation->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->addButton(m_restore, QDialogButtonBox::ActionRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(explanation);
    layout->addWidget(m_search);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    resize(120 * fontMetrics().averageCharWidth(), 24 * fontMetrics().lineSpacing());
}

void SetAsideDialog::search(const QString &text)
{
    const QString wanted = text.trimmed().toCaseFolded();
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        item->setHidden(!item->data(0, searchRole).toString().contains(wanted));
        item->setSelected(item->isSelected() && !item->isHidden()); // nobody restores what is out of sight
    }
}

void SetAsideDialog::restoreSelected()
{
    QList<qint64> ids;
    for (QTreeWidgetItem *item : m_list->selectedItems()) {
        ids << item->data(0, idRole).toLongLong();
        delete item;
    }
    Q_EMIT restoreRequested(ids);
    refresh();
}

void SetAsideDialog::refresh()
{
    m_restore->setEnabled(!m_list->selectedItems().isEmpty());
}

} // namespace epr
