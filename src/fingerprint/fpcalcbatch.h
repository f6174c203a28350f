// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "externaltool.h"
#include "fpcalc.h"

#include <optional>

namespace epr {

struct FingerprintJob {
    int id = 0; ///< comes back with the result
    QString path; ///< absolute
    qint64 durationMs = 0; ///< of the whole file, 0 = unknown
};

/// Fingerprints several files with one process of fpcalc, because starting it costs a good part of what a file costs.
/// What comes out for a file is what runFpcalcTool() makes of it: what a shared process says is believed only where it
/// can mean nothing else, and any other file gets a process of its own. Used on one thread.
class FpcalcBatch final {
public:
    /// seconds is how much of each file is analysed, at least 1. While leaveOff is true, run() leaves off.
    FpcalcBatch(QString tool, int seconds, const ToolTimeouts &timeouts, const std::atomic<bool> &leaveOff);

    using Take = std::function<void(int id, const FpcalcResult &result)>;

    /// Reports files of known duration in their order, each when it is done, and returns how many: fewer than all when
    /// it is to leave off or its thread is asked to interrupt. Blocks the thread.
    qsizetype run(const QList<FingerprintJob> &jobs, const Take &take);

private:
    using Report = std::function<void(const FpcalcResult &result)>;
    struct Shared {
        bool isOfUse = false; ///< a file at least was reported
        bool hasUnsure = false; ///< the one behind those has printed a result
        bool hasTimedOut = false;
    };

    bool isToStop() const;
    ToolRun callFor(const QStringList &paths) const;
    bool stopsAtFailures(const QString &path) const;
    Shared share(const QList<FingerprintJob> &jobs, const Report &report);

    QString m_tool;
    int m_seconds;
    ToolTimeouts m_timeouts;
    const std::atomic<bool> &m_leaveOff;
    std::optional<bool> m_canShare; ///< whether the tool is one that can be given several files; none = not known yet
};

} // namespace epr
