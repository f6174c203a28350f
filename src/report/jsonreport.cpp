// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "reportcontent.h"
#include "review.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto groupListKey = "duplicateGroups"_L1;

constexpr std::array<QLatin1StringView, 7> differenceKinds { "differs"_L1,      "silent"_L1,      "startsLater"_L1,
                                                             "stopsEarlier"_L1, "otherEnding"_L1, "skips"_L1,
                                                             "repeats"_L1 };

/// Of a copy beside the kept one, times in each file's own milliseconds.
QJsonArray differencesOf(const PairCheck &pair)
{
    QJsonArray differences;
    for (const SoundDifference &difference : pair.differences)
        differences.append(QJsonObject {
            { u"kind"_s, differenceKinds.at(static_cast<std::size_t>(difference.kind)) },
            { u"isInKeptCopy"_s, !difference.isInSecond },
            { u"startMs"_s, difference.secondStartMs },
            { u"endMs"_s, difference.secondEndMs },
            { u"keptStartMs"_s, difference.firstStartMs },
            { u"keptEndMs"_s, difference.firstEndMs },
        });
    return differences;
}

/// What a check over the whole length found.
QJsonObject checkObject(const ReportMember &member)
{
    const SoundMeasures measures = member.group.check.measures.value(member.index);
    if (!measures.error.isEmpty())
        return { { u"error"_s, measures.error } };
    const auto levelOf = [](double level) { return std::isfinite(level) ? QJsonValue(level) : QJsonValue(); };
    QJsonObject object {
        { u"durationMs"_s, measures.durationMs },          { u"loudnessLufs"_s, levelOf(measures.loudness) },
        { u"truePeakDbtp"_s, levelOf(measures.truePeak) }, { u"clippedSamples"_s, measures.clippedSamples },
        { u"silentStartMs"_s, measures.silentStartMs },    { u"silentEndMs"_s, measures.silentEndMs },
        { u"bandwidthHz"_s, measures.bandwidthHz },        { u"decodingErrors"_s, measures.decodingErrors },
    };
    const std::optional<PairCheck> pair = pairCheck(member.group, member.group.keep, member.index);
    if (pair && !member.keep) {
        object.insert(u"isAligned"_s, pair->isAligned);
        object.insert(u"offsetMs"_s, pair->offsetMs);
        object.insert(u"differences"_s, differencesOf(*pair));
    }
    return object;
}

constexpr std::array<QLatin1StringView, 4> relationKinds { "identicalFile"_L1, "sameAudio"_L1, "sameRecording"_L1,
                                                           "sameSong"_L1 };

QJsonObject relationObject(const CopyRelation &relation, const QList<TrackInfo> &tracks)
{
    QJsonObject object { { u"kind"_s, relationKinds.at(static_cast<std::size_t>(relation.type)) } };
    if (relation.through >= 0)
        object.insert(u"through"_s, tracks.value(relation.through).path);
    else if (relation.type == MatchType::SameRecording)
        object.insert(u"percentAlike"_s, percentAlike(relation.errorRate));
    if (relation.longerMs)
        object.insert(u"longerMs"_s, *relation.longerMs);
    return object;
}

QJsonObject fileObject(const ReportMember &member)
{
    const TrackInfo &track = member.track;
    QJsonObject object {
        { u"path"_s, track.path },
        { u"keep"_s, member.keep },
        { u"artist"_s, track.tags.artist },
        { u"title"_s, track.tags.title },
        { u"album"_s, track.tags.album },
        { u"durationMs"_s, track.stream.durationMs },
        { u"bitrateKbps"_s, track.stream.bitrateKbps },
        { u"sampleRate"_s, track.stream.sampleRate },
        { u"channels"_s, track.stream.channels },
        { u"sizeBytes"_s, track.size },
        { u"sha256"_s, track.fullHash },
        { u"audioSha256"_s, track.audioHash },
    };
    if (const qint32 other = member.group.edits.value(member.index, -1); other >= 0 && other < member.tracks.size())
        object.insert(u"mayBeEditOf"_s, member.tracks.at(other).path);
    if (member.relation.type != MatchType::Unmatched)
        object.insert(u"relationToKept"_s, relationObject(member.relation, member.tracks));
    if (track.stream.durationIsGuess)
        object.insert(u"durationIsGuess"_s, true);
    if (const MissingPart missing = missingPart(member.group, member.index); missing.isKnown()) {
        object.insert(u"missingAtStartMs"_s, missing.atStartMs);
        object.insert(u"missingAtEndMs"_s, missing.atEndMs);
    }
    if (member.group.check.measures.contains(member.index))
        object.insert(u"check"_s, checkObject(member));
    return object;
}

QJsonObject groupObject(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    QJsonArray files;
    for (const ReportMember &member : membersOf(group, tracks))
        files.append(fileObject(member));
    return {
        { u"id"_s, group.id },
        { u"matchType"_s, matchTypeLabel(group.matchType) },
        { u"confidence"_s, group.confidence },
        { u"reclaimableBytes"_s, group.reclaimableBytes },
        { u"files"_s, files },
    };
}

/// Everything but the groups, of which only the key is there.
QJsonObject frameObject(const ReportContent &content)
{
    const ReviewTotals totals = totalsOf(content.tracks.size(), content.groups);
    return {
        { u"application"_s, metadata::applicationName() },
        { u"version"_s, metadata::version() },
        { u"generated"_s, content.generated.toString(Qt::ISODate) },
        { u"roots"_s, QJsonArray::fromStringList(content.roots) },
        { u"filesScanned"_s, totals.files },
        { u"groups"_s, totals.groups },
        { u"duplicateFiles"_s, totals.redundantCopies },
        { u"reclaimableBytes"_s, totals.redundantBytes },
        { QString(groupListKey), {} },
    };
}

/// Whether nothing in the text has to be escaped, which is most often so.
bool isPlain(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(),
                       [](QChar c) { return c >= u' ' && c != u'"' && c != u'\\' && !c.isSurrogate(); });
}

/// Writes an indented document value by value, in the form that QJsonDocument gives a document that is in memory.
class JsonStream final {
public:
    explicit JsonStream(QTextStream &out)
        : m_out(out)
    {
    }

    void open(QChar bracket)
    {
        m_out << bracket << '\n';
        ++m_depth;
        m_isFirst = true;
    }

    void close(QChar bracket)
    {
        if (!m_isFirst)
            m_out << '\n';
        --m_depth;
        indent();
        m_out << bracket;
        m_isFirst = false;
    }

    /// Every value in a list begins an item, and every key in an object.
    void beginItem()
    {
        if (!m_isFirst)
            m_out << ",\n"_L1;
        m_isFirst = false;
        indent();
    }

    void writeKey(const QString &key)
    {
        beginItem();
        m_out << '"' << key << "\": "_L1; // our own, and plain
    }

    void writeValue(const QJsonValue &value)
    {
        if (value.isObject())
            writeObject(value.toObject(), [this](const QString &, const QJsonValue &member) { writeValue(member); });
        else if (value.isArray())
            writeList(value.toArray(), [this](const QJsonValue &item) { writeValue(item); });
        else
            writeScalar(value);
    }

    template <typename WriteMember> void writeObject(const QJsonObject &object, WriteMember writeMember)
    {
        open(u'{');
        for (auto member = object.begin(); member != object.end(); ++member) {
            writeKey(member.key());
            writeMember(member.key(), member.value());
        }
        close(u'}');
    }

    template <typename List, typename WriteItem> void writeList(const List &list, WriteItem writeItem)
    {
        open(u'[');
        for (const auto &item : list) {
            beginItem();
            writeItem(item);
        }
        close(u']');
    }

private:
    void indent()
    {
        for (int level = 0; level < m_depth; ++level)
            m_out << "    "_L1;
    }

    void writeScalar(const QJsonValue &value)
    {
        if (value.isString()) {
            if (const QString text = value.toString(); isPlain(text)) {
                m_out << '"' << text << '"';
                return;
            }
        }
        constexpr qint64 none = std::numeric_limits<qint64>::min();
        if (const qint64 number = value.toInteger(none); number != none) {
            m_out << number;
            return;
        }
        const QByteArray list = QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact); // has no other way
        m_out << QString::fromUtf8(QByteArrayView(list).sliced(1).chopped(1));
    }

    QTextStream &m_out;
    int m_depth = 0;
    bool m_isFirst = true; ///< of the items on this level
};

} // namespace

void writeJsonReport(QTextStream &out, const ReportContent &content)
{
    JsonStream json(out);
    const auto writeGroup = [&](const MatchGroup &group) { json.writeValue(groupObject(group, content.tracks)); };
    json.writeObject(frameObject(content), [&](const QString &key, const QJsonValue &value) {
        if (key == groupListKey)
            json.writeList(content.groups, writeGroup);
        else
            json.writeValue(value);
    });
    out << '\n';
}

} // namespace epr
