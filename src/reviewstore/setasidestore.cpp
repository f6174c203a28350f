// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "setasidestore.h"

#include "analysiscache.h"
#include "damagedcache.h"
#include "displaytext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 applicationId = 0x45505253; // "EPRS"
constexpr qint32 layout = 1;

QString tr(const char *text)
{
    return QCoreApplication::translate("epr::SetAside", text);
}

qint64 number(const QSqlDatabase &db, const QString &statement)
{
    QSqlQuery query(db);
    return query.exec(statement) && query.next() ? query.value(0).toLongLong() : -1;
}

} // namespace

SetAsideStore::SetAsideStore(const QString &file)
    : m_file(file)
    , m_connection("epr-setaside-"_L1 + QUuid::createUuid().toString(QUuid::Id128))
{
}

SetAsideStore::~SetAsideStore()
{
    close();
}

QString SetAsideStore::defaultFilePath()
{
    return QFileInfo(AnalysisCache::defaultFilePath()).dir().filePath(u"decisions.sqlite"_s);
}

Result<> SetAsideStore::open()
{
    Result<> begun = begin();
    if (begun)
        return {};
    close();
    if (!m_isDamaged)
        return failure(tr("What was set aside as not duplicates could not be read: %1").arg(begun.error()));
    const Result<QString> aside = setDatabaseAside(m_file);
    if (aside)
        begun = begin();
    return failure(tr("What was set aside as not duplicates could not be read: %1. %2")
                       .arg(begun ? tr("the file is damaged") : begun.error(),
                            aside ? tr("The file is kept as %1.").arg(nativePath(*aside)) : aside.error()));
}

Result<> SetAsideStore::add(const QList<SetAsideContent> &contents)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    m_lastId = std::max(m_lastId + 1, now.toMSecsSinceEpoch()); // which another window hardly takes as well
    const SetAsideGroup group { m_lastId, now, contents };
    m_all.add(group);
    return inTransaction([&] {
        return std::ranges::all_of(contents, [&](const SetAsideContent &content) {
            return run(u"INSERT INTO contents VALUES (?,?,?,?,?)"_s,
                       { group.id, content.key, content.copies, content.name, now.toSecsSinceEpoch() });
        });
    });
}

Result<> SetAsideStore::remove(const QList<qint64> &ids)
{
    for (const qint64 id : ids)
        m_all.remove(id);
    return inTransaction([&] {
        return std::ranges::all_of(ids,
                                   [this](qint64 id) { return run(u"DELETE FROM contents WHERE id = ?"_s, { id }); });
    });
}

// A write-ahead log without a flush for each commit: a killed program loses nothing, and a group is set aside at the
// press of a key.
Result<> SetAsideStore::begin()
{
    m_isDamaged = false;
    QDir().mkpath(QFileInfo(m_file).absolutePath());
    m_db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection);
    m_db.setDatabaseName(m_file);
    m_db.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=500"_s);
    if (!m_db.open())
        return failure(m_db.lastError().text());
    if (const Result<> checked = checkHeader(); !checked)
        return checked;
    QStringList statements { u"PRAGMA journal_mode=WAL"_s, u"PRAGMA synchronous=NORMAL"_s };
    if (number(m_db, u"PRAGMA application_id"_s) == 0)
        statements << QStringList {
            u"CREATE TABLE IF NOT EXISTS contents (id INTEGER NOT NULL, key TEXT NOT NULL, copies INTEGER NOT NULL, "
            "name TEXT, time INTEGER NOT NULL, PRIMARY KEY (id, key)) WITHOUT ROWID"_s,
            u"PRAGMA application_id=%1"_s.arg(applicationId), u"PRAGMA user_version=%1"_s.arg(layout)
        };
    for (const QString &statement : std::as_const(statements)) {
        if (!run(statement))
            return failure(m_error);
    }
    return load();
}

Result<> SetAsideStore::checkHeader()
{
    if (!run(u"SELECT COUNT(*) FROM sqlite_master"_s))
        return failure(m_error);
    const qint64 owner = number(m_db, u"PRAGMA application_id"_s);
    m_isDamaged = owner != applicationId && (owner != 0 || number(m_db, u"SELECT COUNT(*) FROM sqlite_master"_s) > 0);
    if (m_isDamaged)
        return failure(tr("another program made it"));
    if (number(m_db, u"PRAGMA user_version"_s) > layout)
        return failure(tr("a newer version of this program made it"));
    return {};
}

Result<> SetAsideStore::load()
{
    QSqlQuery rows(m_db);
    rows.setForwardOnly(true);
    QMap<qint64, SetAsideGroup> groups;
    if (rows.exec(u"SELECT id, key, copies, name, time FROM contents ORDER BY id, key"_s)) {
        while (rows.next()) {
            SetAsideGroup &group = groups[rows.value(0).toLongLong()];
            group.id = rows.value(0).toLongLong();
            group.time = QDateTime::fromSecsSinceEpoch(rows.value(4).toLongLong(), Qt::UTC);
            group.contents.append({ rows.value(1).toString(), rows.value(2).toInt(), rows.value(3).toString() });
        }
    }
    m_isDamaged = saysDamaged(rows.lastError());
    if (rows.lastError().isValid())
        return failure(rows.lastError().text());
    const QList<SetAsideGroup> unstored = std::exchange(m_all, {}).groups(); // from before it could be opened
    for (const SetAsideGroup &group : std::as_const(groups)) {
        m_all.add(group);
        m_lastId = std::max(m_lastId, group.id);
    }
    m_isOpen = true;
    for (const SetAsideGroup &group : unstored)
        static_cast<void>(add(group.contents)); // at worst it holds for this run still
    return {};
}

void SetAsideStore::close()
{
    m_isOpen = false;
    if (!m_db.isValid())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

bool SetAsideStore::run(const QString &statement, const QVariantList &values)
{
    QSqlQuery query(m_db);
    bool isDone = query.prepare(statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    isDone = isDone && query.exec();
    if (isDone)
        return true;
    m_error = query.lastError().text().trimmed();
    m_isDamaged = saysDamaged(query.lastError());
    return false;
}

template <typename Work> Result<> SetAsideStore::inTransaction(Work work)
{
    if (!m_isOpen)
        return failure(tr("its file could not be opened"));
    if (run(u"BEGIN IMMEDIATE"_s) && work() && run(u"COMMIT"_s))
        return {};
    const QString reason = m_error;
    run(u"ROLLBACK"_s);
    return failure(reason);
}

} // namespace epr
