// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaType>
#include <QStringList>

namespace epr {

/// What made a fingerprint. Those of different engines cannot be compared with each other. The cache stores the
/// numbers.
enum class FingerprintEngine : qint32 { BuiltIn = 0, Fpcalc = 1 };

/// What to scan and how to compare. The defaults are the defaults of the settings store.
struct ScanOptions {
    QStringList roots;
    QStringList extensions = defaultExtensions();
    QStringList excludes = defaultExcludes();
    bool followSymlinks = false;
    bool includeHidden = false;
    qint64 minBytes = 32768;
    qint64 minDurationMs = 5000;
    bool detectIdentical = true;
    bool detectSameAudio = true;
    bool detectAcoustic = true;
    bool detectMetadata = false;
    FingerprintEngine fingerprintEngine = FingerprintEngine::Fpcalc; ///< any value but this is the built-in analysis
    qint32 fingerprintSeconds = 60;
    double threshold = 0.25; ///< highest bit error rate that matches, built-in fingerprints
    double chromaprintThreshold = 0.12; ///< the same for fpcalc fingerprints
    qint32 durationTolerance = 5; ///< percent, acoustic matching
    qint32 decoderThreads = 4;
    qint32 metadataTolerance = 3000; ///< milliseconds, metadata matching
    bool useCache = true;
    qint32 keeperPolicy = 0; ///< a KeeperPolicy value; any other keeps the first member
    QStringList formatPreference = defaultFormatPreference();

    [[nodiscard]] bool anyDetection() const
    {
        return detectIdentical || detectSameAudio || detectAcoustic || detectMetadata;
    }

    [[nodiscard]] static QStringList defaultExtensions();
    [[nodiscard]] static QStringList defaultExcludes();
    [[nodiscard]] static QStringList defaultFormatPreference();

    bool operator==(const ScanOptions &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::ScanOptions)
