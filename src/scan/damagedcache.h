// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

QT_BEGIN_NAMESPACE
class QSqlError;
QT_END_NAMESPACE

namespace epr {

/// Whether the error says that the database's file is damaged or no database at all, and not that it is locked,
/// protected or out of reach.
bool saysDamaged(const QSqlError &error);

/// Renames a damaged database, with the files beside it that belong to it, to a name with the time in it, so that a new
/// one can be begun; the one set aside before goes. No connection of the caller's may be open. Returns the new name.
/// Fails, and leaves everything as it is, when a check of the whole file finds no damage, or somebody else uses it.
Result<QString> setDamagedCacheAside(const QString &file);

/// Renames a database in the same way, whatever it is, and keeps those set aside before. For files that nobody else has
/// open.
Result<QString> setDatabaseAside(const QString &file);

} // namespace epr
