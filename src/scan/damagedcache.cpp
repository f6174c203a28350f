// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "damagedcache.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <filesystem>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// A connection that has the database to itself. Another program, which would go on with the renamed file and in the end
// delete the log of the new one, keeps the check from being made.
Result<> checkDamage(QSqlDatabase &db)
{
    QSqlQuery query(db);
    query.exec(u"PRAGMA locking_mode=EXCLUSIVE"_s);
    const bool answered = query.exec(u"PRAGMA quick_check(1)"_s) && query.next();
    if (answered ? query.value(0).toString() != "ok"_L1 : saysDamaged(query.lastError()))
        return {};
    return failure(answered ? QCoreApplication::translate("epr::ScanController", "no damage was found")
                            : query.lastError().text());
}

Result<> confirmDamage(const QString &file)
{
    const QString name = u"epr-damage"_s;
    Result<> outcome;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        db.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=0"_s); // whoever has it open keeps it so for long
        if (db.open())
            outcome = checkDamage(db);
        else
            outcome = failure(db.lastError().text());
    }
    QSqlDatabase::removeDatabase(name);
    return outcome;
}

} // namespace

// The codes' lower byte is SQLite's primary result code.
bool saysDamaged(const QSqlError &error)
{
    constexpr int corrupt = 11;
    constexpr int notADatabase = 26;
    const int code = error.nativeErrorCode().toInt() & 0xFF;
    return code == corrupt || code == notADatabase;
}

Result<QString> setDamagedCacheAside(const QString &file)
{
    if (const Result<> confirmed = confirmDamage(file); !confirmed)
        return failure(confirmed.error());
    QDir folder = QFileInfo(file).dir();
    const QStringList before = folder.entryList({ QFileInfo(file).fileName() + ".damaged-*"_L1 }, QDir::Files);
    const Result<QString> aside = setDatabaseAside(file);
    for (const QString &earlier : before) {
        if (aside && folder.filePath(earlier) != *aside)
            folder.remove(earlier);
    }
    return aside;
}

// The log goes first: SQLite would take one that stayed for the new database's.
Result<QString> setDatabaseAside(const QString &file)
{
    const QString aside = file + ".damaged-"_L1 + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    for (const auto suffix : { "-wal"_L1, "-shm"_L1, ""_L1 }) {
        std::error_code error;
        if (QFileInfo::exists(file + suffix)) // QFile would copy what it cannot rename, which may be large
            std::filesystem::rename(QFileInfo(file + suffix).filesystemFilePath(),
                                    QFileInfo(aside + suffix).filesystemFilePath(), error);
        if (error)
            return failure(QString::fromLocal8Bit(error.message()));
    }
    return aside;
}

} // namespace epr
