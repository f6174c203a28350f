// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

class QAbstractScrollArea;

/// Boxes, labels and tips that show their text as it is. What comes from a file's name, a tag or a server must not be
/// taken for markup, which Qt's widgets guess from the text.
namespace epr {

void showInformation(QWidget *parent, const QString &title, const QString &text);
void showWarning(QWidget *parent, const QString &title, const QString &text);
/// A warning with a second button, for what helps. True if that was pressed.
bool warnAndOffer(QWidget *parent, const QString &title, const QString &text, const QString &offer);
void showCritical(QWidget *parent, const QString &title, const QString &text);
bool askYesOrNo(QWidget *parent, const QString &title, const QString &question);

QLabel *plainLabel(const QString &text = {});

/// Text that a tool tip would take for markup is escaped, any other comes back as it is.
QString plainToolTip(const QString &text);

/// A quiet line of text in the middle of a list or tree that has nothing to show. Shown and hidden by its owner; the
/// mouse reaches the view through it.
class EmptyHint final : public QLabel {
    Q_OBJECT

public:
    explicit EmptyHint(QAbstractScrollArea *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace epr
