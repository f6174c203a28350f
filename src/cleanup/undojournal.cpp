// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "undojournal.h"

#include "manifestjson.h"
#include "nativefile.h"
#include "writeerror.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto givenUpKey = "givenUp"_L1;
constexpr qint64 maxLineBytes = 1048576; // two of the longest paths that Windows has, every character escaped

// Compact JSON holds no line break of its own, whatever the file names hold.
QByteArray line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

QString UndoJournal::pathFor(const QString &manifestPath)
{
    QString path = manifestPath;
    if (path.endsWith(".json"_L1))
        path.chop(5);
    return path + ".journal"_L1;
}

QList<ManifestEntry> UndoJournal::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<ManifestEntry> moves;
    QSet<QString> givenUp;
    while (!file.atEnd()) {
        const QJsonObject object = QJsonDocument::fromJson(file.readLine(maxLineBytes)).object();
        if (object.contains(givenUpKey))
            givenUp.insert(object[givenUpKey].toString());
        else if (const ManifestEntry move = entryFromJson(object); !move.to.isEmpty())
            moves.append(move);
    }
    moves.removeIf([&givenUp](const ManifestEntry &move) { return givenUp.contains(move.to); });
    return moves;
}

bool UndoJournal::create(const QString &path)
{
    m_file.setFileName(path);
    const bool created = m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
    m_error = m_file.errorString();
    return created;
}

bool UndoJournal::appendIntended(const QList<ManifestEntry> &moves)
{
    QByteArray lines;
    for (const ManifestEntry &move : moves)
        lines += line(toJson(move));
    return append(lines);
}

bool UndoJournal::appendReplaced(const QString &givenUpDestination, const ManifestEntry &move)
{
    return append(line({ { givenUpKey, givenUpDestination } }) + line(toJson(move)));
}

bool UndoJournal::append(const QByteArray &lines)
{
    if (m_file.write(lines) == lines.size() && nativefile::flushToDisk(m_file))
        return true;
    m_error = writeErrorOf(m_file);
    return false;
}

void UndoJournal::remove()
{
    m_file.close();
    m_file.remove();
}

} // namespace epr
