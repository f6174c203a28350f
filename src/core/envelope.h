// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMetaType>

namespace epr {

/// Coarse peak envelope of a file for drawing: one value from 0 to 1 per bucket in each list, all lists equally long.
/// They may cover only the beginning of a long file.
struct Envelope {
    static constexpr qint64 bucketMs = 40;

    QList<float> left;
    QList<float> right; ///< a copy of left for mono files
    QList<float> peak; ///< the larger of left and right
    qint64 durationMs = 0; ///< 0 = unknown

    bool operator==(const Envelope &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::Envelope)
