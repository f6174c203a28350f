// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

QT_BEGIN_NAMESPACE
class QSqlQuery;
QT_END_NAMESPACE

/// The table "tracks" of the analysis cache. Statements, binding and reading follow from one list of its columns, which
/// stands in the implementation: a further field of a record is a line there. Beside it, the table of content keys,
/// which earlier versions do not know: its rows hold by themselves.
namespace epr::cachetable {

QString createStatement();
QString createIndexStatement();
QString replaceStatement(); ///< takes what bind() gives

/// The row of one path.
QString selectStatement();
/// The rows of several paths, in any order; pathOf() tells them apart. Without fingerprints, read() leaves these empty.
QString selectStatement(qsizetype paths, bool withFingerprint);

void bind(QSqlQuery &replace, const TrackInfo &track, FingerprintEngine engine);

/// Writes the time alone into the rows of several paths, those of another layout or engine left out; takes what
/// bindTouch() gives and then the paths.
QString touchStatement(qsizetype paths);
void bindTouch(QSqlQuery &touch, FingerprintEngine engine);

/// Whether the row tells about the measured file as it is now, in this layout and of this engine.
bool isCurrent(const QSqlQuery &row, const TrackInfo &track, FingerprintEngine engine);

/// Completes a measured record.
void read(const QSqlQuery &row, TrackInfo &track);

QString pathOf(const QSqlQuery &row);

/// Writes the digests alone into a row that is current; takes what bindDigests() gives.
QString digestsStatement();
void bindDigests(QSqlQuery &update, const TrackInfo &track, FingerprintEngine engine);

QString createKeysStatement();
QString addGuessStatement(); ///< for a table of an earlier version, which has no place for it
QString replaceKeysStatement(); ///< takes what bindKeys() gives
void bindKeys(QSqlQuery &replace, const TrackInfo &track);

/// The rows of several paths, in any order.
QString selectKeysStatement(qsizetype paths);
QString pathOfKeys(const QSqlQuery &row);
/// Completes a record from the cache, if the row tells about the file as it is now.
void readKeys(const QSqlQuery &row, TrackInfo &track);

} // namespace epr::cachetable
