// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkstream.h"

namespace epr {

QDataStream &operator<<(QDataStream &stream, const SoundMeasures &measures)
{
    return stream << measures.durationMs << measures.loudness << measures.truePeak << measures.clippedSamples
                  << measures.silentStartMs << measures.silentEndMs << measures.bandwidthHz << measures.clearTrebleHz
                  << measures.decodingErrors;
}

QDataStream &operator>>(QDataStream &stream, SoundMeasures &measures)
{
    return stream >> measures.durationMs >> measures.loudness >> measures.truePeak >> measures.clippedSamples
        >> measures.silentStartMs >> measures.silentEndMs >> measures.bandwidthHz >> measures.clearTrebleHz
        >> measures.decodingErrors;
}

QDataStream &operator<<(QDataStream &stream, const SoundDifference &difference)
{
    return stream << difference.kind << difference.isInSecond << difference.firstStartMs << difference.firstEndMs
                  << difference.secondStartMs << difference.secondEndMs;
}

QDataStream &operator>>(QDataStream &stream, SoundDifference &difference)
{
    return stream >> difference.kind >> difference.isInSecond >> difference.firstStartMs >> difference.firstEndMs
        >> difference.secondStartMs >> difference.secondEndMs;
}

QDataStream &operator<<(QDataStream &stream, const PairCheck &pair)
{
    return stream << pair.isAligned << pair.offsetMs << pair.differences;
}

QDataStream &operator>>(QDataStream &stream, PairCheck &pair)
{
    return stream >> pair.isAligned >> pair.offsetMs >> pair.differences;
}

} // namespace epr
