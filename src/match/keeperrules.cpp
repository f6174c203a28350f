// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keeperrules.h"

#include "displaytext.h"
#include "keeperpolicy.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct Words {
    Q_DECLARE_TR_FUNCTIONS(epr::KeeperRules)
};

struct RuleText {
    QLatin1StringView word; ///< as stored
    const char *name;
    const char *reason;
    bool isOnAtFirst;
};

// In the order of the rules, which is the standard order as well.
constexpr std::array<RuleText, 12> texts { {
    { "protected"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "In a protected folder"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: in a protected folder"), true },
    { "folders"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "In the first of the folders below"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: in %1"), true },
    { "lossless"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Lossless before lossy"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: lossless"), true },
    { "format"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Preferred format"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: preferred format"), false },
    { "bandwidth"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Highest true bandwidth, where it was checked"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: highest true bandwidth"), true },
    { "bitrate"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Highest bit rate"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: highest bit rate"), true },
    { "sampleRate"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Highest sample rate"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: highest sample rate"), true },
    { "tags"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Most complete tags"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: most complete tags"), true },
    { "longer"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Longest, by more than a second"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: longest"), true },
    { "shallower"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Shallowest folder"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: shallowest folder"), false },
    { "older"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Oldest file"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: oldest file"), true },
    { "newer"_L1, QT_TRANSLATE_NOOP("epr::KeeperRules", "Newest file"),
      QT_TRANSLATE_NOOP("epr::KeeperRules", "kept: newest file"), false },
} };

constexpr auto folderPrefix = "folder:"_L1;

const RuleText &textOf(KeeperRule rule)
{
    return texts.at(static_cast<std::size_t>(rule));
}

QList<KeeperRules::Entry> standardEntries()
{
    QList<KeeperRules::Entry> entries;
    for (int rule = 0; const RuleText &text : texts)
        entries.append({ text.word, static_cast<KeeperRule>(rule++), text.isOnAtFirst });
    return entries;
}

using Score = std::optional<qint64>; ///< the larger the better; nothing if unknown

bool isIn(const QString &path, const QString &folder)
{
#ifdef Q_OS_WIN
    constexpr auto sensitivity = Qt::CaseInsensitive;
#else
    constexpr auto sensitivity = Qt::CaseSensitive;
#endif
    return path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/', sensitivity);
}

/// Position of the first folder that holds the file; their number if none does.
qint64 placeAmong(const QStringList &folders, const TrackInfo &track)
{
    return std::ranges::find_if(folders, [&track](const QString &folder) { return isIn(track.path, folder); })
        - folders.begin();
}

// Some containers hold either. No lossy sound in them has so many kbit/s, and hardly any lossless stereo so few.
Score losslessScore(const TrackInfo &track)
{
    static const QStringList lossless { u"flac"_s, u"wav"_s, u"aiff"_s, u"aif"_s, u"ape"_s,
                                        u"wv"_s,   u"tta"_s, u"w64"_s,  u"rf64"_s };
    static const QStringList lossy { u"mp3"_s, u"mp2"_s, u"aac"_s, u"opus"_s, u"mpc"_s, u"ac3"_s };
    constexpr qint32 mostOfLossy = 800;
    constexpr qint32 leastOfLossless = 320;
    if (lossless.contains(track.suffix) || track.stream.bitrateKbps > mostOfLossy)
        return 1;
    const bool isThin = track.stream.bitrateKbps > 0 && track.stream.bitrateKbps <= leastOfLossless;
    return lossy.contains(track.suffix) || (isThin && track.stream.channels > 1) ? Score(0) : std::nullopt;
}

Score ifKnown(qint64 value)
{
    return value > 0 ? Score(value) : std::nullopt;
}

Score timeScore(const TrackInfo &track, qint64 sign)
{
    return track.mtime.isValid() ? Score(sign * track.mtime.toMSecsSinceEpoch()) : std::nullopt;
}

Score scoreOf(KeeperRule rule, qint32 member, const RuleContext &context)
{
    const TrackInfo &track = context.tracks.at(member);
    const QStringList &preference = context.options.formatPreference;
    switch (rule) {
    case KeeperRule::Protected:
        return placeAmong(context.options.protectedFolders, track) < context.options.protectedFolders.size() ? 1 : 0;
    case KeeperRule::Folders:
        return -placeAmong(context.rules.folders, track);
    case KeeperRule::Lossless:
        return losslessScore(track);
    case KeeperRule::Format:
        return preference.contains(track.suffix) ? -preference.indexOf(track.suffix) : -preference.size();
    case KeeperRule::Bandwidth:
        return ifKnown(context.check.measures.value(member).bandwidthHz);
    case KeeperRule::Bitrate:
        return ifKnown(track.stream.bitrateKbps);
    case KeeperRule::SampleRate:
        return ifKnown(track.stream.sampleRate);
    case KeeperRule::Tags:
        return tagCompleteness(track);
    case KeeperRule::Longer:
        return track.stream.durationIsGuess ? std::nullopt : ifKnown(track.stream.durationMs);
    case KeeperRule::Shallower:
        return -track.path.count(u'/');
    case KeeperRule::Older:
        return timeScore(track, -1);
    case KeeperRule::Newer:
        return timeScore(track, 1);
    }
    return {};
}

/// How much worse a copy may be and still stay: what encoders add, and what a measurement may be off.
qint64 toleranceOf(KeeperRule rule)
{
    return rule == KeeperRule::Longer || rule == KeeperRule::Bandwidth ? 1000 : 0; // ms, Hz
}

/// Leaves those that are among the best or unknown. False if that is all.
bool ruleOut(QList<qint32> &members, KeeperRule rule, const RuleContext &context)
{
    Score best;
    for (const qint32 member : std::as_const(members))
        best = std::max(best, scoreOf(rule, member, context)); // nothing is less than any
    return members.removeIf([&](qint32 member) {
        const Score score = scoreOf(rule, member, context);
        return score && *best - *score > toleranceOf(rule);
    }) > 0;
}

bool couldBeRead(qint32 member, const RuleContext &context)
{
    return context.tracks.at(member).error.isEmpty() && context.check.measures.value(member).error.isEmpty();
}

bool isWithoutErrors(qint32 member, const RuleContext &context)
{
    return context.check.measures.value(member).decodingErrors == 0;
}

QString reasonOf(KeeperRule rule, qint32 keep, const RuleContext &context)
{
    const QString reason = Words::tr(textOf(rule).reason);
    if (rule != KeeperRule::Folders)
        return reason;
    return reason.arg(
        nativePath(context.rules.folders.value(placeAmong(context.rules.folders, context.tracks.at(keep)))));
}

} // namespace

KeeperRules::KeeperRules(const QStringList &words)
{
    const QList<Entry> standard = standardEntries();
    for (const QString &stored : words) {
        const bool isOn = !stored.startsWith(u'-');
        const QString word = isOn ? stored : stored.sliced(1);
        const auto isNamed = [&word](const Entry &entry) { return entry.word == word; };
        if (stored.startsWith(folderPrefix))
            folders.append(stored.sliced(folderPrefix.size()));
        else if (const auto known = std::ranges::find_if(standard, isNamed); std::ranges::none_of(entries, isNamed))
            entries.append({ word, known == standard.end() ? std::nullopt : known->rule, isOn });
    }
    for (Entry entry : standard) {
        entry.isOn = entry.isOn && words.isEmpty();
        if (std::ranges::none_of(std::as_const(entries), [&](const Entry &each) { return each.word == entry.word; }))
            entries.append(entry);
    }
}

QStringList KeeperRules::words() const
{
    QStringList words;
    for (const Entry &entry : entries)
        words.append(entry.isOn ? entry.word : u'-' + entry.word);
    for (const QString &folder : folders)
        words.append(folderPrefix + folder);
    return words;
}

QString ruleName(KeeperRule rule)
{
    return Words::tr(textOf(rule).name);
}

RuleChoice chooseByRules(QList<qint32> members, const RuleContext &context)
{
    RuleChoice choice;
    std::optional<KeeperRule> deciding;
    const auto leave = [&](bool (*isSound)(qint32, const RuleContext &), const QString &reason) {
        const auto isLeft = [&](qint32 member) { return isSound(member, context); };
        if (std::ranges::any_of(std::as_const(members), isLeft) && members.removeIf(std::not_fn(isLeft)) > 0)
            choice.reason = reason;
    };
    leave(couldBeRead, Words::tr("kept: other copies could not be read"));
    leave(isWithoutErrors, Words::tr("kept: other copies have decoding errors"));
    for (const KeeperRules::Entry &entry : context.rules.entries) {
        if (entry.isOn && entry.rule && ruleOut(members, *entry.rule, context))
            deciding = entry.rule;
    }
    choice.keep = members.value(0, -1);
    if (deciding)
        choice.reason = reasonOf(*deciding, choice.keep, context);
    return choice;
}

} // namespace epr
