// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decisions.h"

#include <QMap>

namespace epr {

class Review;

/// What is in a file, wherever it lies and however it is tagged: by the digest of its audio, or by path and size where
/// there is none.
struct SetAsideContent {
    QString key;
    qint32 copies = 1; ///< files of the group that have it
    QString name; ///< of the first of them, for people

    bool operator==(const SetAsideContent &) const = default;
};

/// What the operator said of one group: that no two of these are duplicates, nor two copies of one.
struct SetAsideGroup {
    qint64 id = 0;
    QDateTime time;
    QList<SetAsideContent> contents;

    bool operator==(const SetAsideGroup &) const = default;
};

/// All that was set aside. Two contents are apart if any group has both, so that groups which overlap later, or another
/// copy, show what nobody has judged yet.
class SetAside final {
public:
    void add(const SetAsideGroup &group);
    void remove(qint64 id);

    bool isEmpty() const { return m_groups.isEmpty(); }
    QList<SetAsideGroup> groups() const { return m_groups.values(); }
    bool mentions(const QString &key) const { return m_byKey.contains(key); }
    bool areApart(const SetAsideContent &one, const SetAsideContent &other) const;
    bool areAllApart(const QList<SetAsideContent> &contents) const;
    QList<qint64> of(const QList<SetAsideContent> &contents) const; ///< made of just these
    QList<qint64> overlapping(const QList<SetAsideContent> &contents) const; ///< that say something of two of them

private:
    using CopiesById = QHash<qint64, qint32>;

    bool isAnyOfAll(const QList<SetAsideContent> &contents) const;

    QMap<qint64, SetAsideGroup> m_groups;
    QHash<QString, CopiesById> m_byKey;
};

/// Ascending by key.
QList<SetAsideContent> contentsOf(const MatchGroup &group, const QList<TrackInfo> &tracks);

/// The groups of a scan that were set aside before.
QHash<int, GroupDecision> setAsideDecisions(const SetAside &setAside, const Review &review);

/// Which tracks of the other groups were set aside from each other.
Decisions::Pairs pairsApart(const SetAside &setAside, const Review &review);

} // namespace epr
