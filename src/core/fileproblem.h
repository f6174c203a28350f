// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>

namespace epr {

/// What was attempted with a file or a folder, and failed.
enum class Attempt {
    ReadFolder,
    Scan, ///< reading a file, or comparing it with the others
    Check, ///< decoding it to its end
    Remove,
    Restore,
};

/// A file or a folder that something failed with.
struct FileProblem {
    QString path; ///< absolute
    Attempt attempt = Attempt::Scan;
    QString reason; ///< for the operator
    QDateTime when = QDateTime::currentDateTime();

    bool operator==(const FileProblem &) const = default;
};

QString attemptText(Attempt attempt); ///< "Reading the folder"

} // namespace epr

Q_DECLARE_METATYPE(epr::FileProblem)
