// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "runwithprogress.h"

#include "cleanupprogress.h"
#include "progressdialog.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>

#include <chrono>
#include <thread>

namespace epr {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 400ms; // of somebody who waits without being told for what

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
    QEventLoop loop;
    bool isDone = false;
    std::thread worker([&] {
        job([&progress](qsizetype index, qsizetype total, const QString &path) {
            return progress.advance({ index, total, path });
        });
        const auto end = [&] {
            isDone = true;
            loop.quit();
        };
        QMetaObject::invokeMethod(&loop, end, Qt::QueuedConnection);
    });
    // Input waits while there is no dialog to keep it from the other windows. Most clean-ups are over before there is
    // one, and a dialog that flashes up tells nobody anything.
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!isDone) {
        dialog.show();
        loop.exec();
    }
    // A loop that ended for another reason ends with the program, which then waits for one file at most.
    progress.requestStop();
    worker.join();
    return !progress.hasStopped();
}

} // namespace epr
