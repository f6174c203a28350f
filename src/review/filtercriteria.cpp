// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filtercriteria.h"

#include "copyrelation.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "review.h"

#include <QCoreApplication>
#include <QMap>
#include <QSet>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

using Kind = FilterTerm::Kind;
using Problem = FilterTerm::Problem;

struct Words {
    Q_DECLARE_TR_FUNCTIONS(epr::FilterCriteria)
};

bool hasTick(const Review &review, int group)
{
    for (int member = 0; member < review.groups().at(group).members.size(); ++member) {
        if (review.isTicked(group, member))
            return true;
    }
    return false;
}

bool isOfGroup(const FilterTerm &term)
{
    switch (term.kind) {
    case Kind::Match:
    case Kind::State:
    case Kind::AtLeast:
        return true;
    case Kind::Ticks:
        return term.number == 0;
    case Kind::Problem:
        return term.number <= static_cast<qint64>(Problem::KeptIsWorse);
    case Kind::Format:
    case Kind::Folder:
    case Kind::Identical:
        break;
    }
    return false;
}

bool groupMeets(const Review &review, int group, const FilterTerm &term)
{
    const MatchGroup &record = review.groups().at(group);
    switch (term.kind) {
    case Kind::Match:
        return static_cast<qint64>(record.matchType) == term.number;
    case Kind::State:
        return static_cast<qint64>(review.state(group)) == term.number;
    case Kind::AtLeast:
        return record.reclaimableBytes >= term.number;
    case Kind::Ticks:
        return !hasTick(review, group);
    default:
        return static_cast<Problem>(term.number) == Problem::WhollyTicked ? review.isWhollyTicked(group)
                                                                          : betterCopy(record) >= 0;
    }
}

bool hasProblem(const Review &review, int group, qint32 index, const TrackInfo &track, Problem problem)
{
    switch (problem) {
    case Problem::Differs:
        return checkState(review.groups().at(group), index) == CheckState::Differs;
    case Problem::NotAsScanned:
        return review.fileState(index) != FileState::AsScanned;
    case Problem::Unreadable:
        return !track.error.isEmpty();
    case Problem::Protected:
        return review.isProtected(index);
    case Problem::WhollyTicked:
    case Problem::KeptIsWorse:
        break;
    }
    return false;
}

bool isBelow(const TrackInfo &track, const QString &folder)
{
    return track.path.startsWith(folder) && (folder.endsWith(u'/') || track.path.mid(folder.size()).startsWith(u'/'));
}

bool copyMeets(const Review &review, int group, int member, const FilterTerm &term)
{
    const MatchGroup &record = review.groups().at(group);
    const qint32 index = record.members.at(member);
    const TrackInfo *track = review.track(group, member);
    if (!track)
        return false;
    switch (term.kind) {
    case Kind::Ticks:
        return review.isTicked(group, member);
    case Kind::Format:
        return track->suffix == term.text;
    case Kind::Folder:
        return isBelow(*track, term.text);
    case Kind::Problem:
        return hasProblem(review, group, index, *track, static_cast<Problem>(term.number));
    default:
        return relationToKept(record, index, review.tracks()).type == MatchType::IdenticalFile;
    }
}

QString problemText(Problem problem)
{
    switch (problem) {
    case Problem::WhollyTicked:
        return Words::tr("Every copy ticked");
    case Problem::KeptIsWorse:
        return Words::tr("Kept copy worse by the check");
    case Problem::Differs:
        return Words::tr("Differs from the kept copy");
    case Problem::NotAsScanned:
        return Words::tr("Changed or vanished");
    case Problem::Unreadable:
        return Words::tr("Could not be read");
    case Problem::Protected:
        return Words::tr("In a protected folder");
    }
    return {};
}

template <typename Use> void forEachCopy(const Review &review, Use use)
{
    for (int group = 0; group < review.groups().size(); ++group) {
        for (int member = 0; member < review.groups().at(group).members.size(); ++member) {
            if (const TrackInfo *track = review.track(group, member))
                use(*track);
        }
    }
}

} // namespace

QString termText(const FilterTerm &term)
{
    switch (term.kind) {
    case Kind::Match:
        return matchTypeLabel(static_cast<MatchType>(term.number));
    case Kind::State:
        return static_cast<GroupState>(term.number) == GroupState::Done ? Words::tr("Done") : Words::tr("Undecided");
    case Kind::Ticks:
        return term.number == 0 ? Words::tr("Without a ticked copy") : Words::tr("With a ticked copy");
    case Kind::Format:
        return term.text.isEmpty() ? Words::tr("No format") : term.text.toUpper();
    case Kind::Folder:
        return nativePath(term.text);
    case Kind::AtLeast:
        return Words::tr("At least %1").arg(sizeText(term.number));
    case Kind::Problem:
        return problemText(static_cast<Problem>(term.number));
    case Kind::Identical:
        break;
    }
    return Words::tr("Identical to the kept copy");
}

GroupMatch::GroupMatch(const Review &review, int group, const QList<FilterTerm> &termsByKind)
    : m_review(review)
    , m_terms(termsByKind)
    , m_group(group)
{
    for (const FilterTerm &term : termsByKind)
        m_groupMeets.push_back(isOfGroup(term) && groupMeets(review, group, term));
}

bool GroupMatch::meets(int member) const
{
    bool isMet = true; // the kind before
    for (qsizetype i = 0; i < m_terms.size(); ++i) {
        const FilterTerm &term = m_terms.at(i);
        const bool isNewKind = i == 0 || m_terms.at(i - 1).kind != term.kind;
        if (isNewKind && !isMet)
            return false;
        if (isNewKind)
            isMet = false;
        isMet = isMet || m_groupMeets[static_cast<std::size_t>(i)]
            || (!isOfGroup(term) && copyMeets(m_review, m_group, member, term));
    }
    return isMet;
}

QStringList formatsAtHand(const Review &review)
{
    QSet<QString> formats;
    forEachCopy(review, [&](const TrackInfo &track) { formats << track.suffix; });
    QStringList sorted = formats.values();
    sorted.sort();
    return sorted;
}

QStringList foldersAtHand(const Review &review)
{
    QMap<QString, QSet<QString>> below; // folders in it that hold copies, or copies of its own as an empty name
    forEachCopy(review, [&](const TrackInfo &track) {
        QString child;
        QString folder = folderOf(track);
        while (!folder.isEmpty() && !below[folder].contains(child)) {
            below[folder] << child;
            child = folder;
            folder = folder.left(std::max<qsizetype>(folder.lastIndexOf(u'/'), 0));
        }
    });
    QStringList folders;
    for (const auto &[folder, children] : below.asKeyValueRange()) {
        if (children.size() > 1 || children.contains(QString()))
            folders << folder;
    }
    return folders;
}

} // namespace epr
