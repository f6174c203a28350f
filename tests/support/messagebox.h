// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <functional>

namespace epr::test {

struct SeenBox {
    QString title;
    QString text;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/// Does something with the next dialog of a kind, while its event loop runs.
template <typename Dialog> void withNext(const std::function<void(Dialog *)> &act)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        timer->deleteLater();
        act(dialog);
    });
    timer->start(1);
}

/// Presses a button of the next message box and keeps what the box said. A box without that button is closed.
inline void answerNextBox(QMessageBox::StandardButton button, SeenBox *seen)
{
    withNext<QMessageBox>([button, seen](QMessageBox *box) {
        *seen = { box->windowTitle(), box->text(), box->standardButton(box->defaultButton()) };
        QAbstractButton *wanted = box->button(button);
        wanted ? wanted->click() : box->reject();
    });
}

} // namespace epr::test
