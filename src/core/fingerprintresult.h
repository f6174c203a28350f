// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

namespace epr {

/// Outcome of fingerprinting one file.
struct FingerprintResult {
    QList<quint32> fingerprint;
    QList<quint32> fingerprintMask; ///< as long as fingerprint, or empty when the engine makes none
    QList<quint32> fingerprintAlt; ///< the same signal on frames shifted by half a hop; may be empty
    QList<quint32> fingerprintAltMask;
    qint64 durationMs = 0; ///< measured while decoding, 0 = unknown
    QString error; ///< empty on success

    bool operator==(const FingerprintResult &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::FingerprintResult)
