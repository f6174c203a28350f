// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "runwithprogress.h"

#include "backgroundjob.h"
#include "cleanupprogress.h"
#include "progressdialog.h"

#include <QGuiApplication>

#include <chrono>

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
    BackgroundJob worker([&] {
        job([&progress](qsizetype index, qsizetype total, const QString &path) {
            return progress.advance({ index, total, path });
        });
    });
    // Input waits while there is no dialog to keep it from the other windows. Most clean-ups are over before there is
    // one, and a dialog that flashes up tells nobody anything.
    if (!worker.wait(QEventLoop::ExcludeUserInputEvents, patience)) {
        dialog.show();
        worker.wait(QEventLoop::AllEvents);
    }
    // A wait that ended for another reason ended with the program, which then waits for one file at most.
    progress.requestStop();
    worker.finish();
    return !progress.hasStopped();
}

} // namespace epr
