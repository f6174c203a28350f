// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace epr::test {

struct SeenBox {
    QString title;
    QString text;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/// Presses a button of the next message box and keeps what the box said.
inline void answerNextBox(QMessageBox::StandardButton button, SeenBox *seen)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, button, seen] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        *seen = { box->windowTitle(), box->text(), box->standardButton(box->defaultButton()) };
        timer->deleteLater();
        box->button(button)->click();
    });
    timer->start(1);
}

} // namespace epr::test
