// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <optional>

namespace epr {

/// What an operator's own rules for the copy to keep may look at, one after the other.
enum class KeeperRule {
    Protected, ///< in a protected folder
    Folders, ///< in the first of some folders
    Lossless, ///< as far as format and bit rate tell
    Format, ///< first in ScanOptions::formatPreference
    Bandwidth, ///< the highest that a check over the whole length measured
    Bitrate,
    SampleRate,
    Tags, ///< the most complete ones
    Longer, ///< by more than a second
    Shallower, ///< the fewest folders above it
    Older,
    Newer,
};

/// The operator's rules in their order, as they are stored: a word for each, with a minus before it while it is off,
/// and "folder:" with a path for each of the folders. Words that are not known are a later version's: they are kept
/// where they are and decide nothing. Rules that the words do not name come last and are off.
class KeeperRules final {
public:
    struct Entry {
        QString word;
        std::optional<KeeperRule> rule; ///< none of an unknown word
        bool isOn = false;
    };

    explicit KeeperRules(const QStringList &words = {}); ///< the standard rules if there are none

    QStringList words() const;

    QList<Entry> entries;
    QStringList folders; ///< the most preferred first
};

/// The name of a rule for a list, translated.
QString ruleName(KeeperRule rule);

/// What is known when a copy is to be chosen.
struct RuleContext {
    const QList<TrackInfo> &tracks;
    const GroupCheck &check;
    const ScanOptions &options;
    const KeeperRules &rules;
};

struct RuleChoice {
    qint32 keep = -1; ///< track index
    QString reason; ///< of the last rule that ruled a copy out, translated; empty if none did
};

/// Each rule in turn rules out the copies that are worse than the best; those of which it knows nothing stay. So the
/// outcome does not depend on the order of the members, but for the first of those that are left. Before all rules go
/// the copies that could not be read or decoded without errors, unless all are such.
RuleChoice chooseByRules(QList<qint32> members, const RuleContext &context);

} // namespace epr
