// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupstore.h"

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

constexpr qint32 applicationId = 0x45505243; // "EPRC"
constexpr qint32 layout = 1;
constexpr qsizetype mostErrors = 100; // beyond that nobody reads them

qint64 number(const QSqlDatabase &db, const QString &statement)
{
    QSqlQuery query(db);
    return query.exec(statement) && query.next() ? query.value(0).toLongLong() : -1;
}

/// "0:12 3:4".
template <typename Key> QMap<Key, qint64> countsFrom(const QString &text)
{
    QMap<Key, qint64> counts;
    for (const QString &part : text.split(u' ', Qt::SkipEmptyParts))
        counts.insert(static_cast<Key>(part.section(u':', 0, 0).toInt()), part.section(u':', 1).toLongLong());
    return counts;
}

/// For SQLite, which passes rows over much faster, but knows upper and lower case of English letters alone.
QString patternFor(const QString &text)
{
    const bool isEnglish = std::ranges::all_of(text, [](QChar c) { return c.unicode() < 128; });
    const bool isPlain = !text.contains(u'%') && !text.contains(u'_');
    return isEnglish && isPlain ? u'%' + text + u'%' : u"%"_s;
}

CleanupRun runFrom(const QSqlQuery &row)
{
    return { row.value(0).toLongLong(),
             static_cast<RemovalMode>(row.value(1).toInt()),
             static_cast<RunState>(row.value(2).toInt()),
             row.value(3).toString(),
             row.value(4).toString().split(u'\n', Qt::SkipEmptyParts),
             row.value(5).toString().split(u'\n', Qt::SkipEmptyParts),
             countsFrom<FileFate>(row.value(6).toString()),
             row.value(7).toLongLong(),
             countsFrom<MatchType>(row.value(8).toString()) };
}

} // namespace

qint64 CleanupRun::removed() const
{
    return files.value(FileFate::Removed) + files.value(FileFate::Back) + files.value(FileFate::Purged)
        + files.value(FileFate::Lost);
}

CleanupStore::CleanupStore(const QString &file)
    : m_file(file)
    , m_connection("epr-cleanups-"_L1 + QUuid::createUuid().toString(QUuid::Id128))
{
}

CleanupStore::~CleanupStore()
{
    close();
}

QString CleanupStore::defaultFilePath()
{
    return QFileInfo(AnalysisCache::defaultFilePath()).dir().filePath(u"cleanups.sqlite"_s);
}

Result<> CleanupStore::open()
{
    Result<> begun = begin();
    if (begun)
        return {};
    close();
    const QString message =
        QCoreApplication::translate("epr::CleanupHistory", "The record of clean-ups could not be read: %1")
            .arg(begun.error());
    if (!m_isDamaged)
        return failure(message);
    const Result<QString> aside = setDatabaseAside(m_file);
    if (aside)
        begun = begin();
    return failure(u"%1. %2"_s.arg(
        message,
        aside ? QCoreApplication::translate("epr::CleanupHistory", "The file is kept as %1.").arg(nativePath(*aside))
              : aside.error()));
}

Result<QList<CleanupRun>> CleanupStore::runs()
{
    QList<CleanupRun> runs;
    QSqlQuery rows(m_db);
    rows.setForwardOnly(true);
    if (!rows.exec(u"SELECT * FROM runs ORDER BY id DESC"_s))
        return failure(rows.lastError().text());
    while (rows.next())
        runs.append(runFrom(rows));
    return runs;
}

Result<QList<RecordedFile>> CleanupStore::files(qint64 run, qint64 from, int atMost, const QString &text)
{
    QList<RecordedFile> files;
    QSqlQuery rows(m_db);
    rows.setForwardOnly(true);
    rows.prepare(
        u"SELECT number, path, size, type, fate FROM files WHERE run = ? AND number >= ? AND path LIKE ? ORDER BY number"_s);
    rows.addBindValue(run);
    rows.addBindValue(from);
    rows.addBindValue(patternFor(text));
    if (!rows.exec())
        return failure(rows.lastError().text());
    while (files.size() < atMost && rows.next()) {
        const QString path = rows.value(1).toString();
        if (path.contains(text, Qt::CaseInsensitive))
            files.append({ rows.value(0).toLongLong(), path, rows.value(2).toLongLong(),
                           static_cast<MatchType>(rows.value(3).toInt()),
                           static_cast<FileFate>(rows.value(4).toInt()) });
    }
    return files;
}

Result<QSet<qint64>> CleanupStore::runsWith(const QString &text)
{
    QSet<qint64> found;
    QSqlQuery rows(m_db);
    rows.setForwardOnly(true);
    rows.prepare(u"SELECT run, path FROM files WHERE path LIKE ?"_s);
    rows.addBindValue(patternFor(text));
    if (!rows.exec())
        return failure(rows.lastError().text());
    while (rows.next()) {
        if (rows.value(1).toString().contains(text, Qt::CaseInsensitive))
            found.insert(rows.value(0).toLongLong());
    }
    return found;
}

Result<qint64> CleanupStore::add(CleanupRun run, const QList<RecordedFile> &files)
{
    const Result<> added = inTransaction([&] {
        QSqlQuery taken(m_db);
        taken.prepare(u"SELECT 1 FROM runs WHERE id = ?"_s);
        for (taken.bindValue(0, run.id); taken.exec() && taken.next(); taken.bindValue(0, run.id))
            ++run.id;
        if (!this->run(u"INSERT INTO runs (id, mode, roots) VALUES (?,?,?)"_s,
                       { run.id, static_cast<int>(run.mode), run.roots.join(u'\n') }))
            return false;
        QSqlQuery insert(m_db);
        insert.prepare(u"INSERT INTO files VALUES (?,?,?,?,?,?)"_s);
        qint64 next = 0;
        const bool areIn = std::ranges::all_of(files, [&](const RecordedFile &file) {
            const QVariantList values {
                run.id, next++, file.path, file.size, static_cast<int>(file.type), static_cast<int>(file.fate)
            };
            for (int i = 0; i < values.size(); ++i)
                insert.bindValue(i, values.at(i));
            return insert.exec();
        });
        m_error = insert.lastError().text();
        return areIn && countFiles(run.id);
    });
    return added ? Result<qint64>(run.id) : failure(added.error());
}

Result<> CleanupStore::remove(qint64 run)
{
    return inTransaction([&] {
        return this->run(u"DELETE FROM runs WHERE id = ?"_s, { run })
            && this->run(u"DELETE FROM files WHERE run = ?"_s, { run });
    });
}

Result<> CleanupStore::settle(const CleanupRun &run, const QHash<QString, FileFate> &known, FileFate others)
{
    return inTransaction([&] {
        if (!this->run(u"CREATE TEMP TABLE IF NOT EXISTS known (path TEXT PRIMARY KEY, fate INTEGER) WITHOUT ROWID"_s)
            || !this->run(u"DELETE FROM known"_s))
            return false;
        QSqlQuery insert(m_db);
        insert.prepare(u"INSERT INTO known VALUES (?,?)"_s);
        for (auto file = known.cbegin(); file != known.cend(); ++file) {
            insert.bindValue(0, file.key());
            insert.bindValue(1, static_cast<int>(file.value()));
            if (!insert.exec())
                return false;
        }
        return this->run(u"UPDATE files SET fate = COALESCE((SELECT fate FROM known WHERE path = files.path), "
                         "CASE fate WHEN 1 THEN ? WHEN 0 THEN 2 ELSE fate END) WHERE run = ?"_s,
                         { static_cast<int>(others), run.id })
            && this->run(u"UPDATE runs SET state = ?, manifest = ?, errors = ? WHERE id = ?"_s,
                         { static_cast<int>(run.state), run.manifest,
                           run.errors.first(std::min(mostErrors, run.errors.size())).join(u'\n'), run.id })
            && countFiles(run.id);
    });
}

// A write-ahead log without a flush for each commit: a killed program loses nothing of it.
Result<> CleanupStore::begin()
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
            u"CREATE TABLE IF NOT EXISTS runs (id INTEGER PRIMARY KEY, mode INTEGER NOT NULL, state INTEGER NOT NULL "
            "DEFAULT 0, manifest TEXT, roots TEXT, errors TEXT, files TEXT, bytes INTEGER, types TEXT)"_s,
            u"CREATE TABLE IF NOT EXISTS files (run INTEGER NOT NULL, number INTEGER NOT NULL, path TEXT NOT NULL, "
            "size INTEGER NOT NULL, type INTEGER NOT NULL, fate INTEGER NOT NULL, PRIMARY KEY (run, number)) "
            "WITHOUT ROWID"_s,
            u"PRAGMA application_id=%1"_s.arg(applicationId), u"PRAGMA user_version=%1"_s.arg(layout)
        };
    for (const QString &statement : std::as_const(statements)) {
        if (!run(statement))
            return failure(m_error);
    }
    m_isOpen = run(u"SELECT COUNT(*) FROM runs"_s) && run(u"SELECT MAX(run) FROM files"_s);
    return m_isOpen ? Result<>() : failure(m_error);
}

Result<> CleanupStore::checkHeader()
{
    if (!run(u"SELECT COUNT(*) FROM sqlite_master"_s))
        return failure(m_error);
    const qint64 owner = number(m_db, u"PRAGMA application_id"_s);
    m_isDamaged = owner != applicationId && (owner != 0 || number(m_db, u"SELECT COUNT(*) FROM sqlite_master"_s) > 0);
    if (m_isDamaged)
        return failure(QCoreApplication::translate("epr::CleanupHistory", "another program made it"));
    if (number(m_db, u"PRAGMA user_version"_s) > layout)
        return failure(QCoreApplication::translate("epr::CleanupHistory", "a newer version of this program made it"));
    return {};
}

void CleanupStore::close()
{
    m_isOpen = false;
    if (!m_db.isValid())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

Result<> CleanupStore::countFiles(qint64 run)
{
    const auto counts = [](const char *column, const char *where) {
        return QStringLiteral("(SELECT group_concat(%1 || ':' || n, ' ') FROM (SELECT %1, COUNT(*) AS n FROM files "
                              "WHERE run = runs.id %2 GROUP BY %1))")
            .arg(QLatin1String(column), QLatin1String(where));
    };
    const char *const removed = "AND fate NOT IN (0, 2)";
    const bool isDone =
        this->run(u"UPDATE runs SET files = %1, types = %2, bytes = (SELECT SUM(size) FROM files WHERE run = runs.id "
                  "AND fate NOT IN (0, 2)) WHERE id = ?"_s.arg(counts("fate", ""), counts("type", removed)),
                  { run });
    return isDone ? Result<>() : failure(m_error);
}

bool CleanupStore::run(const QString &statement, const QVariantList &values)
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

template <typename Work> Result<> CleanupStore::inTransaction(Work work)
{
    if (!m_isOpen)
        return failure(QCoreApplication::translate("epr::CleanupHistory", "its file could not be opened"));
    if (run(u"BEGIN IMMEDIATE"_s) && work() && run(u"COMMIT"_s))
        return {};
    const QString reason = m_error;
    run(u"ROLLBACK"_s);
    return failure(reason);
}

} // namespace epr
