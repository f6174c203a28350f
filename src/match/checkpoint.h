// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"

#include <QCoreApplication>

#include <atomic>

namespace epr {

/// A stretch of the acoustic pass on its progress scale from 0 to 1. The shares are fixed; how long each stretch really
/// takes depends on the library.
struct ProgressSlice {
    double base = 0;
    double span = 0;
    const char *text = nullptr; ///< to be translated in the context QObject
};

namespace acousticprogress {
constexpr const char *indexingText = QT_TRANSLATE_NOOP("QObject", "Indexing fingerprints");
constexpr ProgressSlice indexingHalfWords { 0.0, 0.7, indexingText };
constexpr ProgressSlice collectingWords { 0.0, 0.35, indexingText };
constexpr ProgressSlice sortingWords { 0.35, 0.35, indexingText };
constexpr ProgressSlice finding { 0.7, 0.2, QT_TRANSLATE_NOOP("QObject", "Finding candidate matches") };
constexpr ProgressSlice comparing { 0.9, 0.1, QT_TRANSLATE_NOOP("QObject", "Comparing acoustic fingerprints") };
} // namespace acousticprogress

/// Reports how far work of `total` steps has come on a scale of a thousand. Does nothing without a callable or steps.
inline void reportSubProgress(const ProgressFn &progress, const ProgressSlice &slice, qint64 done, qint64 total)
{
    constexpr int scale = 1000;
    if (!progress || total <= 0)
        return;
    const double position = slice.base + slice.span * static_cast<double>(done) / static_cast<double>(total);
    progress(static_cast<int>(position * scale), scale, QCoreApplication::translate("QObject", slice.text));
}

/// The points at which a long pass looks whether it has been cancelled and says how far it is.
class Checkpoint final {
public:
    Checkpoint(const std::atomic<qint32> &cancelFlag, const ProgressFn &progress)
        : m_cancelFlag(cancelFlag)
        , m_progress(progress)
    {
    }

    /// False if the pass is to end here; nothing is reported then.
    [[nodiscard]] bool pass(const ProgressSlice &slice, qint64 done, qint64 total) const
    {
        if (m_cancelFlag.load(std::memory_order_relaxed) != 0)
            return false;
        reportSubProgress(m_progress, slice, done, total);
        return true;
    }

private:
    const std::atomic<qint32> &m_cancelFlag;
    const ProgressFn &m_progress;
};

} // namespace epr
