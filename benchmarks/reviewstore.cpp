// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What it costs to keep a review of 100,000 members, or of twice as many as the groups that the argument says: in
// milliseconds, because the operator waits for none of it but the last two and may close the program meanwhile, and as
// a share of what SQLite takes for as many rows of as many bytes.

#include "reviewstore.h"
#include "review.h"
#include "reviewkeeper.h"
#include "stopwatch.h"

#include <QCoreApplication>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

ReviewRecord makeReview(int groupCount)
{
    ReviewRecord review;
    for (int number = 1; number <= groupCount; ++number) {
        MatchGroup group { number, MatchType::SameRecording, {}, -1, 0.9, 0 };
        group.keep = static_cast<qint32>(review.tracks.size());
        for (int copy = 0; copy < 2; ++copy) {
            TrackInfo track;
            track.tags.artist = u"Artist %1"_s.arg(number % 997);
            track.tags.title = u"Title %1"_s.arg(number);
            track.fileName = u"%1 - %2 [%3].flac"_s.arg(track.tags.artist, track.tags.title).arg(copy);
            track.path = u"/srv/music/%1/%2"_s.arg(track.tags.artist, track.fileName);
            track.fullHash = track.audioHash = QString(64, u'a');
            track.mtime = QDateTime::fromSecsSinceEpoch(1000000000 + number);
            group.members << static_cast<qint32>(review.tracks.size());
            review.tracks << track;
        }
        review.groups << group;
        review.decisions << GroupDecision {
            GroupState::Undecided, group.keep, false, { false, true }, { false, false }
        };
    }
    return review;
}

void insertPlainly(const QString &file, qsizetype rows)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"plain"_s);
        db.setDatabaseName(file);
        db.open();
        QSqlQuery query(db);
        query.exec(u"PRAGMA journal_mode=WAL"_s);
        query.exec(u"CREATE TABLE IF NOT EXISTS plain (number INTEGER PRIMARY KEY, content BLOB)"_s);
        db.transaction();
        query.exec(u"DELETE FROM plain"_s);
        query.prepare(u"INSERT INTO plain VALUES (?,?)"_s);
        for (qsizetype i = 0; i < rows; ++i) {
            query.bindValue(0, i);
            query.bindValue(1, QByteArray(500, char(i)));
            query.exec();
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(u"plain"_s);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const int groupCount = argc > 1 ? std::atoi(argv[1]) : 50000;
    const ReviewRecord review = makeReview(groupCount);
    const StoredDecision tick { groupCount / 2, review.decisions.at(groupCount / 2), {} };
    QList<StoredDecision> everyTick;
    for (qsizetype i = 0; i < review.groups.size(); ++i)
        everyTick.append({ review.groups.at(i).id, review.decisions.at(i), {} });
    const QTemporaryDir dir;
    ReviewStore store(dir.filePath(u"review.sqlite"_s));
    bool isGood = store.open().has_value();
    Review shown; // with its keeper in this thread, and the other behind it
    ReviewKeeper keeper(shown, dir.filePath(u"shown.sqlite"_s));
    shown.restore(review);
    keeper.open();
    keeper.keep({});
    const auto times = bench::shortestTimes(
        3, [&] { insertPlainly(dir.filePath(u"plain.sqlite"_s), review.tracks.size() + 2 * review.groups.size()); },
        [&] { isGood = isGood && store.save(review); }, [&] { isGood = isGood && store.update({ tick }, {}); },
        [&] { isGood = isGood && store.update(everyTick, {}); },
        [&] {
            store.close();
            isGood = isGood && store.open() && store.load().value().groups.size() == groupCount;
        },
        [&] { shown.setTicked(0, 1, !shown.isTicked(0, 1)); },
        [&] {
            shown.invertTicks();
            keeper.flush();
        });
    if (!isGood)
        return 1;
    std::printf("%lld members, plain rows: %.1f ms\n", static_cast<long long>(review.tracks.size()), times[0] * 1e3);
    constexpr std::array names {
        "store all", "store a tick", "store all ticks", "open and load", "tick", "invert all"
    };
    for (std::size_t i = 0; i < names.size(); ++i)
        std::printf("%-16s %9.3f ms %8.4f\n", names[i], times[i + 1] * 1e3, times[i + 1] / times[0]);
    return 0;
}
