// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "soundcheck.h"

#include <QDataStream>

namespace epr {

// What a check found, as it is stored. Whoever stores it gives it a layout number and raises that when one of these
// changes: the cache of the checks and the stored review both do. Track indexes and the reason of a file that could not
// be decoded are no part of it; a store that needs them writes them beside it.

QDataStream &operator<<(QDataStream &stream, const SoundMeasures &measures);
QDataStream &operator>>(QDataStream &stream, SoundMeasures &measures);
QDataStream &operator<<(QDataStream &stream, const SoundDifference &difference);
QDataStream &operator>>(QDataStream &stream, SoundDifference &difference);
QDataStream &operator<<(QDataStream &stream, const PairCheck &pair);
QDataStream &operator>>(QDataStream &stream, PairCheck &pair);

} // namespace epr
