// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "copyrelation.h"

#include <QCoreApplication>

namespace epr {

class Review;

/// What the rows of the results say, in translated words.
class CellTexts final {
    Q_DECLARE_TR_FUNCTIONS(epr::ResultsModel)

public:
    explicit CellTexts(const Review &review);

    QString groupTitle(int group) const;
    QStringList groupRemarks(int group) const; ///< of a check
    QString cell(int group, int member, int column) const;
    QString damage(int group, int member) const; ///< why the copy may be broken; empty if nothing says so
    QString relation(int group, int member) const; ///< to the kept copy; of that, why it is kept
    QStringList remarks(int group, int member) const; ///< all that is to be said of the match, in full

    void forgetRelations(); ///< the results or a copy to keep changed

private:
    QString match(int group, int member) const;
    QString measure(int group, int member, int column) const;

    const Review &m_review;
    /// Of the group asked for last: rows are painted group by group, and to find one relation is to find them all.
    mutable int m_relatedGroup = -1;
    mutable QHash<qint32, CopyRelation> m_relations;
};

} // namespace epr
