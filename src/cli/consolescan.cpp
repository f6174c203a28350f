// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "consolescan.h"

#include "interrupt.h"
#include "scancontroller.h"
#include "terminal.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTextStream>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int statusColumns = 79; // one less than the narrowest usual terminal, so that the line never wraps
constexpr qint64 statusIntervalMs = 100;

/// One line on standard error that rewrites itself.
class StatusLine final {
public:
    explicit StatusLine(bool enabled)
        : m_enabled(enabled)
    {
    }

    void setPhase(const QString &phase)
    {
        m_phase = phase;
        show(phase, true);
    }

    void setProgress(int done, int total, const QString &detail)
    {
        const QString percent = total > 0 ? u" %1 %"_s.arg(100LL * done / total) : QString();
        show(m_phase + percent + (detail == m_phase ? QString() : u": "_s + detail), false);
    }

    void clear() { show({}, true); }

private:
    void show(const QString &text, bool now)
    {
        if (!m_enabled || (!now && m_sinceShown.isValid() && m_sinceShown.elapsed() < statusIntervalMs))
            return;
        m_sinceShown.start();
        // Overwritten with spaces instead of an erase sequence, which older Windows consoles would print.
        m_err << '\r' << terminal::printable(text).left(statusColumns).leftJustified(statusColumns) << '\r'
              << Qt::flush;
    }

    QTextStream m_err { stderr };
    QElapsedTimer m_sinceShown;
    QString m_phase;
    bool m_enabled;
};

void connectStatus(ScanController &controller, StatusLine &status)
{
    QObject::connect(&controller, &ScanController::phaseChanged, &controller,
                     [&status](const QString &phase) { status.setPhase(phase); });
    QObject::connect(
        &controller, &ScanController::progress, &controller,
        [&status](int done, int total, const QString &detail) { status.setProgress(done, total, detail); });
}

void connectLog(ScanController &controller, StatusLine &status, bool verbose)
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
    StatusLine status(terminal::errorIsTerminal());
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
