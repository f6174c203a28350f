// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "application.h"
#include "look.h"
#include "mainwindow.h"
#include "records.h"
#include "resultsmodel.h"
#include "review.h"
#include "settingsstore.h"
#include "startup.h"

#include "temporarylibrary.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <functional>

namespace epr::test {

using namespace Qt::StringLiterals;

/// What the program does before it makes its window. The system's own dialogs are no widgets, which a test could use.
inline void setUpApplication()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    metadata::applyToApplication();
    registerMetaTypes();
    startup::loadResources();
    applyLook();
}

/// What a test before has left would be there again in the next window.
inline void forgetReview()
{
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    QFile::remove(data.filePath(u"review.sqlite"_s));
    QDir(data.filePath(u"reviews"_s)).removeRecursively();
}

inline QString summaryOf(const MainWindow &window)
{
    return window.findChild<QLabel *>(u"summaryLabel"_s)->text();
}

/// The lines of the activity log without their times.
inline QStringList logOf(const MainWindow &window)
{
    QStringList lines = window.findChild<QPlainTextEdit *>(u"activityLog"_s)->toPlainText().split(u'\n');
    for (QString &line : lines)
        line = line.section(u"] "_s, 1);
    return lines;
}

inline bool logs(const MainWindow &window, const QString &startOfLine)
{
    return (u'\n' + logOf(window).join(u'\n')).contains(u'\n' + startOfLine);
}

/// Scans a folder to the end.
inline void scan(MainWindow &window, const QString &folder)
{
    window.addFolder(folder);
    window.onStartScan();
    if (!QTest::qWaitFor([&window] { return !window.isScanning(); }, 60000))
        qFatal("The scan does not end");
}

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
