// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkpoint.h"

#include <QCoreApplication>

namespace epr {

namespace {

constexpr int scale = 1000;

} // namespace

void reportSubProgress(const ProgressFn &progress, const ProgressSlice &slice, qint64 done, qint64 total)
{
    if (!progress || total <= 0)
        return;
    const double position = slice.base + slice.span * static_cast<double>(done) / static_cast<double>(total);
    progress(static_cast<int>(position * scale), scale, QCoreApplication::translate("QObject", slice.text));
}

Checkpoint::Checkpoint(const std::atomic<qint32> &cancelFlag, const ProgressFn &progress)
    : m_cancelFlag(cancelFlag)
    , m_progress(progress)
{
}

bool Checkpoint::pass(const ProgressSlice &slice, qint64 done, qint64 total) const
{
    if (m_cancelFlag.load(std::memory_order_relaxed) != 0)
        return false;
    reportSubProgress(m_progress, slice, done, total);
    return true;
}

} // namespace epr
