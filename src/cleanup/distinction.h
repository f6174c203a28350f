// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

namespace epr {

enum class Distinction {
    Two, ///< what is at the one path stays when the other path goes
    One,
    Unknown,
};

/// Whether the path that is to go and the path that stays, which have to be two names, lead to two files. A second hard
/// link counts as a file: it keeps the content. Two drives may be two ways to one folder (a share mounted twice, an
/// overlay and what is below it), and no number of theirs tells; then a change of the one file is looked for at the
/// other: the access time, which is then put back. Symbolic links are followed.
Distinction tellApart(const QString &goes, const QString &stays);

} // namespace epr
