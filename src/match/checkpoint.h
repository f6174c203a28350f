// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progressfn.h"

#include <atomic>

namespace epr {

/// A stretch of the acoustic pass on its scale from 0 to 1.
struct ProgressSlice {
    double base = 0;
    double span = 0;
    const char *text = nullptr; ///< to be translated in the context QObject
};

/// Reports how far work of `total` steps has come on a scale of a thousand. Does nothing without a callable or steps.
void reportSubProgress(const ProgressFn &progress, const ProgressSlice &slice, qint64 done, qint64 total);

/// The points at which a long pass looks whether it has been cancelled and says how far it is.
class Checkpoint final {
public:
    Checkpoint(const std::atomic<qint32> &cancelFlag, const ProgressFn &progress);

    /// False if the pass is to end here; nothing is reported then.
    [[nodiscard]] bool pass(const ProgressSlice &slice, qint64 done, qint64 total) const;

private:
    const std::atomic<qint32> &m_cancelFlag;
    const ProgressFn &m_progress;
};

} // namespace epr
