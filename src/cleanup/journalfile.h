// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QFile>
#include <QJsonObject>
#include <QList>

#include <functional>

namespace epr {

/// A file of JSON objects, one on each line, that survives whatever ends the program.
class JournalFile final {
public:
    using LineFn = std::function<void(const QJsonObject &line)>;

    /// Hands over line after line, an empty object for one that is none. What comes after the last line break was cut
    /// off by the end of a program and is left out. Fails if the file cannot be read to its end or has a line that no
    /// journal has.
    [[nodiscard]] static Result<> read(const QString &path, const LineFn &each);

    bool isOpen() const { return m_file.isOpen(); }

    /// Fails if the file exists.
    [[nodiscard]] Result<> create(const QString &path);

    /// The lines are on the disk when this returns.
    [[nodiscard]] Result<> append(const QList<QJsonObject> &lines);

    void remove();

private:
    QFile m_file;
};

} // namespace epr
