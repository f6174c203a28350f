// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "setaside.h"

#include <QDialog>

class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace epr {

/// Lists the groups that were set aside as not duplicates, the last one first, with a search.
class SetAsideDialog final : public QDialog {
    Q_OBJECT

public:
    SetAsideDialog(const QList<SetAsideGroup> &groups, QWidget *parent);

Q_SIGNALS:
    void restoreRequested(const QList<qint64> &ids); ///< they leave the list

private:
    void addGroup(const SetAsideGroup &group);
    void layOutWidgets();
    void search(const QString &text);
    void restoreSelected();
    void refresh();

    QLineEdit *m_search;
    QTreeWidget *m_list;
    QPushButton *m_restore;
};

} // namespace epr
