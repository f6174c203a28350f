// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "runwithprogress.h"

#include "cleanupprogress.h"
#include "progressdialog.h"

#include <QEventLoop>
#include <QGuiApplication>

#include <thread>

namespace epr {

namespace {

class WaitCursor final {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

} // namespace

bool runWithProgress(const QString &title, const CleanupJob &job, QWidget *parent)
{
    const WaitCursor cursor;
    CleanupProgress progress;
    ProgressDialog dialog(title, &progress, parent);
    dialog.blockInput();

    QEventLoop loop;
    std::thread worker([&] {
        job([&progress](qsizetype index, qsizetype total, const QString &path) {
            return progress.advance({ index, total, path });
        });
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    // A loop that ended for another reason ends with the program, which then waits for one file at most.
    progress.requestStop();
    worker.join();
    return !progress.hasStopped();
}

} // namespace epr
