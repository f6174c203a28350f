// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fileproblem.h"

#include <QCoreApplication>

namespace epr {

QString attemptText(Attempt attempt)
{
    switch (attempt) {
    case Attempt::ReadFolder:
        return QCoreApplication::translate("epr::FileProblem", "Reading the folder");
    case Attempt::Scan:
        return QCoreApplication::translate("epr::FileProblem", "Scan");
    case Attempt::Check:
        return QCoreApplication::translate("epr::FileProblem", "Check over the whole length");
    case Attempt::Remove:
        return QCoreApplication::translate("epr::FileProblem", "Removal");
    case Attempt::Restore:
        return QCoreApplication::translate("epr::FileProblem", "Undo");
    }
    return {};
}

} // namespace epr
