// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace epr {

// Message boxes that show their text as it is. What comes from a file's name, a tag or a server must not be taken for
// markup, which QMessageBox guesses from the text.

void showInformation(QWidget *parent, const QString &title, const QString &text);
void showWarning(QWidget *parent, const QString &title, const QString &text);
void showCritical(QWidget *parent, const QString &title, const QString &text);
[[nodiscard]] bool askYesOrNo(QWidget *parent, const QString &title, const QString &question);

/// The same for a tool tip: text that would be taken for markup is escaped, any other comes back as it is.
[[nodiscard]] QString plainToolTip(const QString &text);

/// And a label that shows its text as it is.
QLabel *plainLabel(const QString &text);

} // namespace epr
