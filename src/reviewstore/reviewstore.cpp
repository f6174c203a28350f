// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewstore.h"

#include "analysiscache.h"
#include "damagedcache.h"
#include "displaytext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <QUuid>

#include <algorithm>
#include <vector>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 applicationId = 0x45505256; // "EPRV"
constexpr auto countOfTables = "SELECT COUNT(*) FROM sqlite_master"_L1;
constexpr qint32 rowLength = 100; ///< tracks and groups in a row: one for each would take longer than all the rest
constexpr int busy = 5; // SQLite's primary result code

struct StoredRow {
    ReviewKey key;
    QByteArray blob;
};

/// A record that is put together from the rows of a file, in their order.
class Assembly final {
public:
    bool take(const StoredRow &row)
    {
        switch (row.key.part) {
        case ReviewPart::Head:
            return takeHead(row);
        case ReviewPart::Tracks:
            return takeTracks(row);
        case ReviewPart::Groups:
            return takeGroups(row);
        case ReviewPart::Decision:
            return takeDecision(row);
        case ReviewPart::Place:
            return takePlace(row);
        }
        return false;
    }

    bool isWhole() const
    {
        const auto hasTrack = [this](qint32 index) {
            return index >= 0 && index < m_review.tracks.size() && !m_review.tracks.at(index).path.isEmpty();
        };
        return m_hasHead && m_tracks == m_head.storedTracks && m_review.groups.size() == m_head.groupCount
            && m_review.decisions.size() == m_head.groupCount
            && std::ranges::all_of(m_review.groups, [hasTrack](const MatchGroup &group) {
                   return std::ranges::all_of(group.members, hasTrack);
               });
    }

    ReviewRecord review() const { return m_review; }

private:
    bool takeHead(const StoredRow &row)
    {
        const auto head = fromBlob<ReviewHead>(row.key, row.blob);
        m_hasHead = head && head->trackCount >= 0;
        if (!m_hasHead)
            return false;
        m_head = *head;
        m_review.options = head->options;
        m_review.scanned = head->scanned;
        m_review.unreadableFolders = head->unreadableFolders;
        m_review.files = head->files;
        m_review.tracks.resize(head->trackCount);
        return true;
    }

    bool takeTracks(const StoredRow &row)
    {
        const auto stored = fromBlob<StoredTracks>(row.key, row.blob);
        if (!stored || stored->indexes.size() != stored->tracks.size())
            return false;
        for (qsizetype i = 0; i < stored->tracks.size(); ++i) {
            const qint32 index = stored->indexes.at(i);
            if (index < 0 || index >= m_review.tracks.size())
                return false;
            m_review.tracks[index] = stored->tracks.at(i);
            ++m_tracks;
        }
        return true;
    }

    bool takeGroups(const StoredRow &row)
    {
        const auto stored = fromBlob<StoredGroups>(row.key, row.blob);
        if (stored)
            m_review.groups.append(stored->groups);
        return stored.has_value();
    }

    // In the order of the groups, as both are in that of their numbers.
    bool takeDecision(const StoredRow &row)
    {
        const auto stored = fromBlob<StoredDecision>(row.key, row.blob);
        const qsizetype position = m_review.decisions.size();
        if (!stored || position >= m_review.groups.size() || m_review.groups.at(position).id != stored->group)
            return false;
        m_review.groups[position].check = stored->check;
        m_review.decisions.append(stored->decision);
        return true;
    }

    bool takePlace(const StoredRow &row)
    {
        const auto place = fromBlob<ReviewPlaceRecord>(row.key, row.blob);
        if (!place)
            return false;
        m_review.currentGroup = place->group;
        m_review.currentTrack = place->track;
        return true;
    }

    ReviewHead m_head;
    bool m_hasHead = false;
    qint32 m_tracks = 0;
    ReviewRecord m_review;
};

} // namespace

QList<qint32> tracksToStore(qsizetype trackCount, const QList<MatchGroup> &groups)
{
    std::vector<bool> isStored(static_cast<std::size_t>(trackCount));
    const auto take = [&](qint32 index) {
        if (index >= 0 && index < trackCount)
            isStored[static_cast<std::size_t>(index)] = true;
    };
    for (const MatchGroup &group : groups) {
        std::ranges::for_each(group.members, take);
        std::ranges::for_each(group.edits, take);
    }
    QList<qint32> stored;
    for (std::size_t i = 0; i < isStored.size(); ++i) {
        if (isStored[i])
            stored.append(static_cast<qint32>(i));
    }
    return stored;
}

ReviewStore::ReviewStore(const QString &file)
    : m_file(file)
    , m_connection("epr-review-"_L1 + QUuid::createUuid().toString(QUuid::Id128))
{
}

ReviewStore::~ReviewStore()
{
    close();
}

QString ReviewStore::defaultFilePath()
{
    return QFileInfo(AnalysisCache::defaultFilePath()).dir().filePath(u"review.sqlite"_s);
}

Result<> ReviewStore::open()
{
    close();
    m_isDamaged = false;
    Result<> opened = connectTo();
    if (opened)
        opened = checkHeader();
    if (opened)
        opened = checkContent();
    if (opened)
        opened = prepareToWrite();
    if (!opened)
        close();
    return opened;
}

void ReviewStore::close()
{
    if (!m_db.isValid())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

Result<QString> ReviewStore::setAside()
{
    close();
    return setDatabaseAside(m_file);
}

Result<> ReviewStore::connectTo()
{
    QDir().mkpath(QFileInfo(m_file).absolutePath());
    m_db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection);
    m_db.setDatabaseName(m_file);
    m_db.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=500"_s);
    if (m_db.open())
        return run(u"PRAGMA locking_mode=EXCLUSIVE"_s);
    m_error = m_db.lastError();
    return failure(reason());
}

// The first look at the file, which takes the lock as well. It comes before anything is written: what another version
// or another program made is left as it is.
Result<> ReviewStore::checkHeader()
{
    m_error = {};
    const QVariant things = value(countOfTables);
    if (!things.isValid())
        return saysDamaged(m_error) ? Result<>(damaged()) : Result<>(failure(reason()));
    const qint32 owner = value(u"PRAGMA application_id"_s).toInt();
    if (owner != applicationId && (owner != 0 || things.toInt() > 0))
        return damaged();
    if (value(u"PRAGMA user_version"_s).toInt() > reviewLayout)
        return failure(QCoreApplication::translate(
            "epr::ReviewStore", "a newer version of this program made it, and only that can open it"));
    return {};
}

// A share that drops out meanwhile leaves the file unread, which is no damage.
Result<> ReviewStore::checkContent()
{
    const QVariant found = value(u"PRAGMA quick_check(1)"_s);
    if (!found.isValid() && !saysDamaged(m_error))
        return failure(reason());
    return found.toString() == "ok"_L1 ? Result<>() : Result<>(damaged());
}

// A write-ahead log, because a tick then is one page at the end of one file, and a power cut leaves the database as it
// was at one of the commits. Nobody else may look in meanwhile, so the log needs no shared memory and works on a
// network drive. Each commit is flushed (FULL): there are two in a second at most, on a thread of their own.
Result<> ReviewStore::prepareToWrite()
{
    for (const QString &pragma : { u"PRAGMA journal_mode=WAL"_s, u"PRAGMA synchronous=FULL"_s }) {
        if (const Result<> done = run(pragma); !done)
            return done;
    }
    if (value(countOfTables).toInt() > 0)
        return {};
    return inTransaction([this] {
        Result<> done = run(u"CREATE TABLE review (part INTEGER NOT NULL, number INTEGER NOT NULL, "
                            "content BLOB NOT NULL, PRIMARY KEY (part, number)) WITHOUT ROWID"_s);
        if (done)
            done = run(u"PRAGMA application_id=%1"_s.arg(applicationId));
        if (done)
            done = run(u"PRAGMA user_version=%1"_s.arg(reviewLayout));
        return done;
    });
}

Result<ReviewRecord> ReviewStore::load()
{
    QSqlQuery rows(m_db);
    rows.setForwardOnly(true);
    if (!rows.exec(u"SELECT part, number, content FROM review ORDER BY part, number"_s)) {
        m_error = rows.lastError();
        return saysDamaged(m_error) ? damaged() : failure(reason());
    }
    Assembly assembly;
    bool isEmpty = true;
    while (rows.next()) {
        isEmpty = false;
        const ReviewKey key { static_cast<ReviewPart>(rows.value(0).toInt()), rows.value(1).toInt() };
        if (!assembly.take({ key, rows.value(2).toByteArray() }))
            return damaged();
    }
    m_error = rows.lastError();
    if (m_error.isValid() && !saysDamaged(m_error))
        return failure(reason());
    if (m_error.isValid() || (!isEmpty && !assembly.isWhole()))
        return damaged();
    return assembly.review();
}

Result<> ReviewStore::save(const ReviewRecord &review)
{
    return inTransaction([&]() -> Result<> {
        if (Result<> emptied = run(u"DELETE FROM review"_s); !emptied)
            return emptied;
        QSqlQuery insert(m_db);
        bool isWritten = insert.prepare(u"INSERT INTO review (content, part, number) VALUES (?,?,?)"_s)
            && writeScan(insert, review)
            && write(insert, { ReviewPart::Place, 0 }, ReviewPlaceRecord { review.currentGroup, review.currentTrack });
        for (qsizetype i = 0; isWritten && i < review.groups.size(); ++i) {
            const MatchGroup &group = review.groups.at(i);
            isWritten = write(insert, { ReviewPart::Decision, group.id },
                              StoredDecision { group.id, review.decisions.value(i), group.check });
        }
        return isWritten ? Result<>() : failure(reason());
    });
}

bool ReviewStore::writeScan(QSqlQuery &insert, const ReviewRecord &review)
{
    const QList<qint32> stored = tracksToStore(review.tracks.size(), review.groups);
    const ReviewHead head { .options = review.options,
                            .scanned = review.scanned,
                            .unreadableFolders = review.unreadableFolders,
                            .files = review.files,
                            .trackCount = static_cast<qint32>(review.tracks.size()),
                            .storedTracks = static_cast<qint32>(stored.size()),
                            .groupCount = static_cast<qint32>(review.groups.size()) };
    bool isWritten = write(insert, { ReviewPart::Head, 0 }, head);
    const auto firstOf = [](qint32 row) { return static_cast<qsizetype>(row) * rowLength; };
    for (qint32 row = 0; isWritten && firstOf(row) < stored.size(); ++row) {
        StoredTracks tracks { stored.mid(firstOf(row), rowLength), {} };
        for (const qint32 index : std::as_const(tracks.indexes))
            tracks.tracks.emplaceBack(review.tracks.at(index)).fingerprint = {};
        isWritten = write(insert, { ReviewPart::Tracks, row }, tracks);
    }
    for (qint32 row = 0; isWritten && firstOf(row) < review.groups.size(); ++row) {
        StoredGroups groups { review.groups.mid(firstOf(row), rowLength) };
        for (MatchGroup &group : groups.groups)
            group.check = {};
        isWritten = write(insert, { ReviewPart::Groups, row }, groups);
    }
    return isWritten;
}

Result<> ReviewStore::update(const QList<StoredDecision> &decisions, const ReviewPlaceRecord &place)
{
    return inTransaction([&]() -> Result<> {
        QSqlQuery change(m_db);
        bool isWritten = change.prepare(u"UPDATE review SET content = ? WHERE part = ? AND number = ?"_s)
            && write(change, { ReviewPart::Place, 0 }, place);
        for (const StoredDecision &decision : decisions)
            isWritten = isWritten && write(change, { ReviewPart::Decision, decision.group }, decision);
        return isWritten ? Result<>() : failure(reason());
    });
}

Result<> ReviewStore::run(const QString &statement)
{
    QSqlQuery query(m_db);
    if (query.exec(statement))
        return {};
    m_error = query.lastError();
    return failure(reason());
}

QVariant ReviewStore::value(const QString &statement)
{
    QSqlQuery query(m_db);
    if (query.exec(statement) && query.next())
        return query.value(0);
    m_error = query.lastError();
    return {};
}

template <typename Work> Result<> ReviewStore::inTransaction(Work work)
{
    Result<> done = run(u"BEGIN IMMEDIATE"_s);
    if (!done)
        return done;
    done = work();
    if (done)
        done = run(u"COMMIT"_s);
    if (!done)
        static_cast<void>(run(u"ROLLBACK"_s));
    return done;
}

template <typename Record> bool ReviewStore::write(QSqlQuery &query, ReviewKey key, const Record &record)
{
    query.bindValue(0, toBlob(key, record));
    query.bindValue(1, static_cast<int>(key.part));
    query.bindValue(2, key.number);
    const bool isWritten = query.exec();
    if (!isWritten)
        m_error = query.lastError();
    return isWritten;
}

tl::unexpected<QString> ReviewStore::damaged()
{
    m_isDamaged = true;
    return failure(QCoreApplication::translate("epr::ReviewStore", "it is damaged, or no review of this program"));
}

QString ReviewStore::reason() const
{
    if ((m_error.nativeErrorCode().toInt() & 0xFF) == busy)
        return QCoreApplication::translate("epr::ReviewStore", "another window of this program has it open");
    return m_error.text().trimmed();
}

} // namespace epr
