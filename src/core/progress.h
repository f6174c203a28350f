// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <deque>
#include <functional>
#include <optional>

namespace epr {

/// Called with (step, total, translated text) on the thread that does the work. May be empty.
using ProgressFn = std::function<void(int step, int total, const QString &text)>;

/// Where a scan stands among its steps, and what is known of those that are still to come.
struct ScanStep {
    int number = 0; ///< from 1; 0 = none
    int count = 0;
    bool hasUnknownPace = true; ///< something long is still to come of which nobody knows yet how fast it goes
    qint64 toCompare = 0; ///< files that the last step compares with each other

    QString text() const; ///< "step 3 of 5"; empty for none

    /// What is left of the whole scan when so much is left of this step. Nothing where a figure would be a guess.
    std::optional<qint64> timeLeftMs(std::optional<qint64> ownMs) const;
};

/// How fast a phase of long work goes and how much longer it will take, from what it reports now and then. Only the
/// last half minute counts: the first files of a scan say little about the drive it is on by now.
class ProgressEstimate {
public:
    /// The steps done and out of how many, at a time from any steady clock. A phase of fewer than 20 steps, or of an
    /// unknown number, is not estimated.
    void add(int done, int total, qint64 nowMs);
    void restart();

    std::optional<qint64> remainingMs() const; ///< of the phase; nothing while nothing advances

    /// "412 per second, about 3 minutes left"; empty while nothing can be said.
    QString text() const { return text(remainingMs()); }
    /// With the time left of a larger whole, or with none: "412 per second".
    QString text(std::optional<qint64> leftMs) const;

private:
    struct Report {
        int done = 0;
        qint64 timeMs = 0;
    };

    std::optional<double> perSecond() const; ///< nothing in the first two seconds

    std::deque<Report> m_reports;
    Report m_latest;
    int m_total = 0;
};

} // namespace epr
