// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What the operator waits for with 100,000 members on the screen, or with as many groups as the argument says, each as
// a share of the time that showing them takes.

#include "resultsmodel.h"
#include "resultsview.h"
#include "review.h"
#include "stopwatch.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

struct Results {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
};

Results makeResults(int groupCount)
{
    Results results;
    for (int number = 0; number < groupCount; ++number) {
        MatchGroup group { number + 1, static_cast<MatchType>(number % 4), {}, -1, 0.9, 0 };
        group.keep = static_cast<qint32>(results.tracks.size());
        for (int copy = 0; copy < 2 + number % 2; ++copy) {
            TrackInfo track;
            track.tags.artist = u"Artist %1"_s.arg(number % 997);
            track.tags.title = u"Title %1"_s.arg(number);
            track.fileName = u"%1 - %2 [%3].flac"_s.arg(track.tags.artist, track.tags.title).arg(copy);
            track.path = u"/srv/music/%1/%2"_s.arg(track.tags.artist, track.fileName);
            track.size = 10000000 + number;
            track.mtime = QDateTime::fromSecsSinceEpoch(1000000000 + 7919 * (number % 4999));
            track.audioHash = QString::number(number);
            group.members << static_cast<qint32>(results.tracks.size());
            results.tracks << track;
        }
        results.groups << group;
    }
    return results;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    const int groupCount = argc > 1 ? std::atoi(argv[1]) : 40000; // of two or three members
    const Results results = makeResults(groupCount);
    Review review;
    ResultsModel model(review);
    const auto show = [&] {
        review.setResults(results.tracks, results.groups);
        review.searchTexts(); // else their making in the background is timed by whoever needs them first
    };
    const auto find = [&] {
        model.setFilter(u"artist 99"_s);
        model.setFilter({});
    };
    const auto type = [&] {
        for (const QString &text : { u"9"_s, u"99"_s, u"99 -"_s, u"99 - t"_s, u"99 - title 3"_s, QString() })
            model.setFilter(text);
    };
    const auto readEveryCell = [&] {
        for (int group = 0; group < model.rowCount(); ++group) {
            const QModelIndex parent = model.index(group, 0);
            for (int row = 0; row < model.rowCount(parent); ++row)
                model.index(row, ResultsModel::FileColumn, parent).data(Qt::CheckStateRole);
        }
    };
    const int middle = groupCount / 2;
    const auto keepAnother = [&] {
        const MatchGroup &group = review.groups().at(middle);
        review.setKeeper(middle, group.members.at(group.keep == group.members.first() ? 1 : 0));
    };
    const auto clearAndUndo = [&] {
        review.clearTicks();
        review.undo();
    };
    const auto ask = [&](const FilterCriteria &criteria) {
        model.setCriteria(criteria);
        model.setCriteria({});
    };
    using enum FilterTerm::Kind;
    const auto findIdentical = [&] { ask({ { { Identical }, { Folder, 0, u"/srv/music/Artist 9"_s } }, true }); };
    const auto findProblems = [&] { ask({ { { Problem, 0 }, { Problem, 1 }, { Problem, 2 }, { State, 0 } } }); };
    const auto sortBy = [&](ResultsModel::Column column) {
        model.sort(column, Qt::DescendingOrder);
        model.sort(-1, Qt::AscendingOrder);
    };
    const auto setAside = [&] {
        review.setState({ middle }, GroupState::NotDuplicates);
        review.undo();
    };
    const auto times = bench::shortestTimes(
        7, show, clearAndUndo, setAside, [&] { review.invertTicks(); },
        [&] { review.setTicked(middle, 1, !review.isTicked(middle, 1)); }, keepAnother, find, type, readEveryCell,
        findIdentical, findProblems, [&] { sortBy(ResultsModel::FileColumn); },
        [&] { sortBy(ResultsModel::ArtistColumn); }, [&] { sortBy(ResultsModel::FolderColumn); },
        [&] { sortBy(ResultsModel::SizeColumn); }, [&] { sortBy(ResultsModel::ModifiedColumn); });
    std::printf("show %lld members: %.1f ms\n", static_cast<long long>(results.tracks.size()), times[0] * 1e3);
    constexpr std::array names { "clear and undo", "set aside and undo", "invert all ticks", "tick one",
                                 "keep another",   "find and clear",     "type and clear",   "read all ticks",
                                 "find identical", "find problems",      "sort by file",     "sort by artist",
                                 "sort by folder", "sort by size",       "sort by date" };
    for (std::size_t i = 0; i < names.size(); ++i)
        std::printf("%-18s %8.4f %8.1f ms\n", names[i], times[i + 1] / times[0], times[i + 1] * 1e3);
    ResultsView view;
    view.setModel(&model);
    view.resize(1600, 800);
    view.show();
    const auto drawn = [](const auto &act) {
        return [&act] {
            act();
            QApplication::processEvents();
        };
    };
    const auto sortByTitle = [&] { sortBy(ResultsModel::TitleColumn); };
    const auto inTheView = bench::shortestTimes(3, drawn(find), drawn(findProblems), drawn(sortByTitle),
                                                drawn(setAside), drawn(clearAndUndo));
    std::puts("with the view, drawn:");
    constexpr std::array viewNames { "find and clear", "find problems", "sort by title", "set aside and undo",
                                     "clear and undo" };
    for (std::size_t i = 0; i < viewNames.size(); ++i)
        std::printf("%-18s %8.4f %8.1f ms\n", viewNames[i], inTheView[i] / times[0], inTheView[i] * 1e3);
    return 0;
}
