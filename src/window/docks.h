// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDockWidget>

class QMainWindow;
class QPlainTextEdit;

namespace epr {

/// What the program has done, a line each with its time. Only the latest lines are kept, so that a scan that fails on
/// every file of a large library does not fill the memory with text.
class ActivityLog final : public QDockWidget {
    Q_OBJECT

public:
    explicit ActivityLog(QWidget *parent);

    void append(const QString &message); ///< with the current time before it

private:
    QPlainTextEdit *m_text;
};

/// Puts both docks into the window as a first start shows them.
void placeDocks(QMainWindow *window, QDockWidget *player, ActivityLog *log);

} // namespace epr
