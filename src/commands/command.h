// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace epr {

/// What the operator's commands have in common: the window that is the parent of their dialogs, and the ways in which
/// they say how they went.
class Command : public QObject {
    Q_OBJECT

public:
    explicit Command(QWidget *window)
        : QObject(window)
        , m_window(window)
    {
    }

Q_SIGNALS:
    void logMessage(const QString &message);
    void statusMessage(const QString &message);

protected:
    QWidget *window() const { return m_window; }

    /// As a log line and in the status label.
    void report(const QString &message)
    {
        Q_EMIT statusMessage(message);
        Q_EMIT logMessage(message);
    }

private:
    QWidget *m_window;
};

} // namespace epr
