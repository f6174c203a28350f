// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "celltexts.h"

#include "checktext.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "missingpart.h"
#include "resultsmodel.h"
#include "review.h"

namespace epr {

using namespace Qt::StringLiterals;

CellTexts::CellTexts(const Review &review)
    : m_review(review)
{
}

QString CellTexts::groupTitle(int group) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const QString text =
        tr("Group %1 - %2 copies - %3 reclaimable")
            .arg(QString::number(record.id), QString::number(record.members.size()), sizeText(record.reclaimableBytes));
    return m_review.state(group) == GroupState::Done ? tr("%1 - done").arg(text) : text;
}

QStringList CellTexts::groupRemarks(int group) const
{
    const MatchGroup &record = m_review.groups().at(group);
    QStringList remarks { groupCheckText(record), betterCopyText(record, m_review.tracks()) };
    remarks.removeAll(QString());
    return remarks;
}

QString CellTexts::cell(int group, int member, int column) const
{
    if (column == ResultsModel::MatchColumn)
        return match(group, member);
    if (column == ResultsModel::RelationColumn)
        return relation(group, member);
    const TrackInfo *track = m_review.track(group, member);
    if (!track)
        return {};
    switch (column) {
    case ResultsModel::FileColumn:
        return track->fileName;
    case ResultsModel::ArtistColumn:
        return displayArtist(*track);
    case ResultsModel::TitleColumn:
        return displayTitle(*track);
    case ResultsModel::DurationColumn:
        return durationText(track->stream);
    case ResultsModel::QualityColumn:
        return qualityText(*track);
    case ResultsModel::SizeColumn:
        return sizeText(track->size);
    case ResultsModel::ModifiedColumn:
        return dateTimeText(track->mtime);
    case ResultsModel::FormatColumn:
        return track->suffix.toUpper();
    case ResultsModel::FolderColumn:
        return nativePath(folderOf(*track));
    default:
        return measure(group, member, column);
    }
}

QString CellTexts::damage(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 index = record.members.at(member);
    const TrackInfo *track = m_review.track(group, member);
    return track && !track->error.isEmpty() ? track->error : damageText(record, index);
}

QString CellTexts::relation(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    if (m_review.isKeeper(group, member))
        return m_review.keepText(group);
    if (m_relatedGroup != group) {
        m_relations = relationsToKept(record, m_review.tracks());
        m_relatedGroup = group;
    }
    return relationText(m_relations.value(record.members.at(member)), m_review.tracks());
}

// What a check found is said in full, where the row has but the first of it.
QStringList CellTexts::remarks(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    QStringList texts = checkTexts(record, track) + measureTexts(record, track);
    texts << (texts.isEmpty() ? match(group, member) : editText(record, track, m_review.tracks()));
    texts << relation(group, member);
    texts.removeAll(QString());
    return texts;
}

void CellTexts::forgetRelations()
{
    m_relatedGroup = -1;
}

// What a check found to differ includes what is missing, to the millisecond.
QString CellTexts::match(int group, int member) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    QStringList texts { m_review.isKeeper(group, member) ? tr("KEEP") : missingText(record, track),
                        checkText(record, track) };
    if (checkState(record, track) == CheckState::Differs)
        texts.removeFirst();
    if (const FileState state = m_review.fileState(track); state != FileState::AsScanned)
        texts << (state == FileState::Changed ? tr("changed since the scan") : tr("no longer there"));
    texts.removeAll(QString());
    if (texts.isEmpty())
        texts << tr("duplicate");
    if (const QString edit = editText(record, track, m_review.tracks()); !edit.isEmpty())
        texts << edit;
    return texts.join(", "_L1);
}

QString CellTexts::measure(int group, int member, int column) const
{
    const MatchGroup &record = m_review.groups().at(group);
    const qint32 track = record.members.at(member);
    const SoundMeasures measures = record.check.measures.value(track);
    switch (column) {
    case ResultsModel::LoudnessColumn:
        return loudnessText(measures.loudness);
    case ResultsModel::TruePeakColumn:
        return truePeakText(measures.truePeak);
    case ResultsModel::BandwidthColumn:
        return bandwidthText(measures.bandwidthHz);
    default:
        return (checkTexts(record, track) + measureTexts(record, track)).join(", "_L1);
    }
}

} // namespace epr
