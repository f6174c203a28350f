// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "result.h"

namespace epr {

/// Asked many times a second while the file at the path is read; false gives it up.
using ReadingFn = std::function<bool(const QString &path)>;

/// Reads files again and compares them with what was recorded of them.
class ContentCheck final {
public:
    enum class Answer {
        AsRecorded, ///< also if nothing was recorded
        Changed,
        GivenUp,
    };

    /// Fails with the reason if the file cannot be read.
    [[nodiscard]] Result<Answer> compare(const RemovalCandidate &candidate, const ReadingFn &reading);

private:
    struct Seen {
        qint64 size = 0;
        QDateTime mtime;
        Answer answer = Answer::GivenUp;
    };

    QHash<QString, Seen> m_seen; ///< a kept copy may have to vouch for many files
};

} // namespace epr
