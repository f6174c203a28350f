// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "consolescan.h"

#include "scancontroller.h"
#include "terminal.h"

#include <QTextStream>

#include <atomic>
#include <csignal>

namespace epr {

namespace {

std::atomic<ScanController *> activeController { nullptr };
std::atomic<bool> interrupted { false };
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<ScanController *>::is_always_lock_free,
              "a signal handler must not wait for a lock");

// Both only store into an atomic, which is one of the few things that a signal handler may do.
extern "C" void onInterrupt(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    interrupted = true;
    if (ScanController *controller = activeController.load())
        controller->cancel();
}

/// While one exists, Ctrl-C (or a polite request to terminate) cancels the controller's scan. A second one ends the
/// process at once. At most one at a time.
class InterruptGuard final {
public:
    explicit InterruptGuard(ScanController &controller)
    {
        interrupted = false;
        activeController = &controller;
        std::signal(SIGINT, onInterrupt);
        std::signal(SIGTERM, onInterrupt);
    }
    Q_DISABLE_COPY_MOVE(InterruptGuard)
    ~InterruptGuard()
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        activeController = nullptr;
    }

    /// Whether a request came, however late: the controller itself takes no notice of one while it groups.
    [[nodiscard]] bool wasInterrupted() const { return interrupted; }
};

void connectStatus(ScanController &controller, terminal::StatusLine &status)
{
    QObject::connect(&controller, &ScanController::phaseChanged, &controller,
                     [&status](const QString &phase) { status.setPhase(phase); });
    QObject::connect(
        &controller, &ScanController::progress, &controller,
        [&status](int done, int total, const QString &detail) { status.setProgress(done, total, detail); });
}

void connectLog(ScanController &controller, terminal::StatusLine &status, bool verbose)
{
    if (!verbose)
        return;
    QObject::connect(&controller, &ScanController::logMessage, &controller, [&status](const QString &message) {
        status.clear();
        QTextStream(stderr) << terminal::printable(message) << '\n';
    });
}

void connectOutcome(ScanController &controller, ConsoleScanResult &result)
{
    QObject::connect(&controller, &ScanController::finished, &controller,
                     [&result](const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled) {
                         result.tracks = tracks;
                         result.groups = groups;
                         result.cancelled = cancelled;
                     });
    QObject::connect(&controller, &ScanController::failed, &controller,
                     [&result](const QString &error) { result.failure = error; });
}

} // namespace

ConsoleScanResult runConsoleScan(const ScanOptions &options, bool verbose)
{
    ConsoleScanResult result;
    terminal::StatusLine status;
    ScanController controller;
    connectStatus(controller, status);
    connectLog(controller, status, verbose);
    connectOutcome(controller, result);

    const InterruptGuard guard(controller);
    controller.start(options);
    // Groups that lack a method must not pass for the whole answer, least of all when there are none.
    result.cancelled = result.cancelled || guard.wasInterrupted();
    status.clear();
    return result;
}

} // namespace epr
