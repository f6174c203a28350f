// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace epr {

/// A line above the results: that groups are not checked over their whole length, with a button that does it, and how
/// far that has come. It takes no room while there is nothing to say.
class CheckBar final : public QWidget {
    Q_OBJECT

public:
    explicit CheckBar(QWidget *parent = nullptr);

    void offer(const QString &text); ///< empty = all is checked
    void showProgress(const QString &text, int done, int total, bool isPaused);

Q_SIGNALS:
    void checkRequested();
    void pauseRequested(); ///< or to go on when it is paused
    void stopRequested();
    void focusGivenUp(); ///< nothing is left that could have it

private:
    void setRunning(bool running);

    QLabel *m_text;
    QProgressBar *m_bar;
    QPushButton *m_check;
    QPushButton *m_pause;
    QPushButton *m_stop;
};

} // namespace epr
