// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "removalpreview.h"

#include <QDialog>

class QGroupBox;
class QLabel;
class QRadioButton;
class QTreeWidget;

namespace epr {

/// Asks what should happen to the ticked files.
class RemovalDialog final : public QDialog {
    Q_OBJECT

public:
    struct Selection {
        qsizetype files = 0;
        QString total; ///< their size for display
        qint64 hidden = 0; ///< of the files, those that are not in sight
        qint64 unchecked = 0; ///< of the files, those that a check over the whole length would tell more of
        RemovalPreview preview = {};
    };

    RemovalDialog(const Selection &selection, const QString &quarantineRoot, QWidget *parent = nullptr);

    RemovalMode mode() const;
    bool isCheckWanted() const { return m_isCheckWanted; } ///< before anything is removed; the dialog was rejected
    QString quarantineRoot() const { return m_quarantineRoot; }

    void showRoom(const RemovalPreview &preview); ///< whether the quarantine's drive has enough of it

Q_SIGNALS:
    void quarantineRootChosen(const QString &folder); ///< at once, whether the dialog is accepted later or not

private:
    QGroupBox *createChoices();
    QWidget *createButtons();
    QWidget *createCheckRow(qint64 unchecked);
    QTreeWidget *createTable(const RemovalPreview &preview);
    void chooseQuarantineRoot();
    void explain(const QString &html);
    void warnIfSynchronised();

    QString m_quarantineRoot;
    bool m_isCheckWanted = false;
    QLabel *m_hint;
    QLabel *m_synchronised;
    QLabel *m_room;
    QRadioButton *m_quarantine;
    QRadioButton *m_recycleBin;
    QRadioButton *m_delete;
};

} // namespace epr
