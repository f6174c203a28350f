// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubberkeys.h"

#include <QKeyEvent>

#include <algorithm>

namespace epr::vfd {

std::optional<qint64> seekTarget(const QKeyEvent &key, qint64 positionMs, qint64 durationMs)
{
    constexpr qint64 fineStepMs = 1'000;
    constexpr qint64 stepMs = 5'000;
    constexpr qint64 pageMs = 30'000;
    const bool isFine = key.modifiers().testFlag(Qt::ShiftModifier);
    const qint64 arrowMs = isFine ? fineStepMs : stepMs;
    const qint64 from = std::clamp<qint64>(positionMs, 0, durationMs);
    const auto moved = [&](qint64 byMs) { return std::clamp<qint64>(from + byMs, 0, durationMs); };
    if (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return std::nullopt; // the shortcuts of the window
    switch (key.key()) {
    case Qt::Key_Left:
        return moved(-arrowMs);
    case Qt::Key_Right:
        return moved(arrowMs);
    case Qt::Key_PageDown:
        return moved(-pageMs);
    case Qt::Key_PageUp:
        return moved(pageMs);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return durationMs;
    default:
        return std::nullopt;
    }
}

} // namespace epr::vfd
