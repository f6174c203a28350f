// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QMetaType>
#include <QString>

#include <limits>

namespace epr {

/// A level that was not measured, or that of digital silence.
inline constexpr double noLevel = -std::numeric_limits<double>::infinity();

/// What was measured of a file while it was decoded from start to end. The figures are for comparing the copies of one
/// recording; none of them is a verdict by itself.
struct SoundMeasures {
    qint64 durationMs = 0; ///< of the sound that was decoded
    double loudness = noLevel; ///< LUFS, integrated (EBU R 128)
    double truePeak = noLevel; ///< dBTP (ITU-R BS.1770-4), the highest of all channels
    qint64 clippedSamples = 0; ///< at full scale, several in a row
    qint64 silentStartMs = 0; ///< below -60 dBFS
    qint64 silentEndMs = 0;
    qint32 bandwidthHz = 0; ///< where the spectrum ends, 0 = unknown
    qint32 clearTrebleHz = 0; ///< where it ends for sure: there is more than noise up to here
    qint32 decodingErrors = 0;
    QString error; ///< why nothing else is known; empty = the file was decoded to its end

    bool operator==(const SoundMeasures &) const = default;
};

/// A stretch in which two recordings are not alike.
struct SoundDifference {
    enum class Kind : qint32 {
        Differs,
        Silent, ///< where the other has sound
        StartsLater, ///< what the other begins with is missing
        StopsEarlier, ///< what the other ends with is missing
        OtherEnding,
        Skips, ///< a part of the other is missing in the middle
        Repeats, ///< it has a part twice
    };

    Kind kind = Kind::Differs;
    bool isInSecond = true; ///< which of the two it is said of: the second, or the first
    qint64 firstStartMs = 0; ///< on the first file's own time
    qint64 firstEndMs = 0;
    qint64 secondStartMs = 0; ///< on the second file's own time
    qint64 secondEndMs = 0;

    bool operator==(const SoundDifference &) const = default;
};

/// Two members compared over their whole length.
struct PairCheck {
    qint32 first = -1; ///< track indexes
    qint32 second = -1;
    bool isAligned = false; ///< false: nothing that they have in common was found
    qint64 offsetMs = 0; ///< what the first has at a time, the second has so much later
    QList<SoundDifference> differences; ///< in the order of time; none and aligned: alike to the end

    bool operator==(const PairCheck &) const = default;
};

/// What the check of a group over its whole length found. Empty: it was not checked.
struct GroupCheck {
    QHash<qint32, SoundMeasures> measures; ///< by track index
    QList<PairCheck>
        pairs; ///< of members that could both be decoded; all pairs, or in large groups those with one member

    bool isDone() const { return !measures.isEmpty(); }

    bool operator==(const GroupCheck &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::GroupCheck)
