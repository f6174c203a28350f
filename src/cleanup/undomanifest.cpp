// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "undomanifest.h"

#include "filemove.h"
#include "fileproblems.h"
#include "nativefile.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSaveFile>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <functional>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int manifestVersion = 1;
constexpr auto givenUpKey = "givenUp"_L1;
constexpr qint64 maxLineBytes = 1048576; // two of the longest paths that Windows has, every character escaped
// A run of a million files with long paths stays below this; reading takes several times as much memory.
constexpr qint64 maxManifestBytes = 268435456;

QJsonObject toJson(const ManifestEntry &entry)
{
    return { { u"from"_s, entry.from }, { u"to"_s, entry.to }, { u"size"_s, entry.size } };
}

QJsonObject toJson(const UndoManifest &manifest)
{
    QJsonArray entries;
    for (const ManifestEntry &entry : manifest.entries)
        entries.append(toJson(entry));
    return {
        { u"manifestVersion"_s, manifestVersion },
        { u"createdAt"_s, manifest.createdAt },
        { u"mode"_s, manifest.mode },
        { u"quarantineRoot"_s, manifest.quarantineRoot },
        { u"entries"_s, entries },
    };
}

/// Anything that is not an object with two path texts gives an entry with empty paths.
ManifestEntry entryFromJson(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    ManifestEntry entry { object["from"_L1].toString(), object["to"_L1].toString(), object["size"_L1].toInteger() };
    if (entry.from.isEmpty() || entry.to.isEmpty())
        return {};
    return entry;
}

// Compact JSON holds no line break of its own, whatever the file names hold.
QByteArray journalLine(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

Result<QByteArray> readBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    QByteArray bytes = file.read(maxManifestBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return failure(file.errorString());
    if (bytes.size() > maxManifestBytes)
        return failure(QCoreApplication::translate("epr::Cleanup", "The file is too large"));
    return bytes;
}

Result<QJsonObject> readObject(const QString &path)
{
    const Result<QByteArray> bytes = readBytes(path);
    if (!bytes)
        return failure(bytes.error());
    QJsonParseError parsing;
    const QJsonDocument document = QJsonDocument::fromJson(*bytes, &parsing);
    if (parsing.error != QJsonParseError::NoError)
        return failure(parsing.errorString());
    if (!document.object()["entries"_L1].isArray())
        return failure(QCoreApplication::translate("epr::Cleanup", "The file has no list of entries"));
    return document.object();
}

// An intended move of which only the original is there was never made.
Result<QList<ManifestEntry>> movedEntries(const QString &journalPath)
{
    Result<QList<ManifestEntry>> entries = UndoJournal::read(journalPath);
    if (!entries)
        return entries;
    entries->removeIf([](const ManifestEntry &move) { return !entryExists(move.to) && entryExists(move.from); });
    return entries;
}

} // namespace

QString UndoJournal::pathFor(const QString &manifestPath)
{
    QString path = manifestPath;
    if (path.endsWith(".json"_L1))
        path.chop(5);
    return path + ".journal"_L1;
}

Result<QList<ManifestEntry>> UndoJournal::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    QList<ManifestEntry> moves;
    QSet<QString> givenUp;
    // A file that cannot be read is never at its end, but it has no more lines either.
    for (QByteArray line = file.readLine(maxLineBytes); !line.isEmpty(); line = file.readLine(maxLineBytes)) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.contains(givenUpKey))
            givenUp.insert(object[givenUpKey].toString());
        else if (const ManifestEntry move = entryFromJson(object); !move.to.isEmpty())
            moves.append(move);
    }
    if (file.error() != QFileDevice::NoError)
        return failure(file.errorString());
    moves.removeIf([&givenUp](const ManifestEntry &move) { return givenUp.contains(move.to); });
    return moves;
}

Result<> UndoJournal::create(const QString &path)
{
    m_file.setFileName(path);
    if (m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return {};
    return failure(m_file.errorString());
}

Result<> UndoJournal::appendIntended(const QList<ManifestEntry> &moves)
{
    QByteArray lines;
    for (const ManifestEntry &move : moves)
        lines += journalLine(toJson(move));
    return append(lines);
}

Result<> UndoJournal::appendReplaced(const QString &givenUpDestination, const ManifestEntry &move)
{
    return append(journalLine({ { givenUpKey, givenUpDestination } }) + journalLine(toJson(move)));
}

Result<> UndoJournal::append(const QByteArray &lines)
{
    if (m_file.write(lines) == lines.size() && nativefile::flushToDisk(m_file))
        return {};
    return failure(writeErrorOf(m_file));
}

void UndoJournal::remove()
{
    m_file.close();
    m_file.remove();
}

QString undoDirectory()
{
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const QString path = data.filePath(u"undo"_s);
    QDir().mkpath(path);
    return path;
}

QStringList listUndoManifests()
{
    const QDir folder(undoDirectory());
    QStringList paths;
    const QStringList names = folder.entryList({ u"undo-*.json"_s }, QDir::Files, QDir::Unsorted);
    for (const QString &name : names)
        paths.append(folder.absoluteFilePath(name));
    std::sort(paths.begin(), paths.end(), std::greater<>());
    return paths;
}

QString describeManifest(const QString &path)
{
    const UndoManifest manifest = readManifest(path).value_or(UndoManifest());
    const QDateTime created = QDateTime::fromString(manifest.createdAt, Qt::ISODate);
    const QString when = created.isValid()
        ? QLocale().toString(created, QCoreApplication::translate("epr::Cleanup", "d MMM yyyy h:mm ap"))
        : QFileInfo(path).fileName();
    return QCoreApplication::translate("epr::Cleanup", "%1 - %2 file(s)")
        .arg(when, QString::number(manifest.entries.size()));
}

Result<> writeManifest(const QString &path, const UndoManifest &manifest)
{
    QSaveFile file(path);
    const QByteArray json = QJsonDocument(toJson(manifest)).toJson(QJsonDocument::Indented);
    // Committing alone would put a file in place of which the end is missing on a full disk.
    const bool written = file.open(QIODevice::WriteOnly) && file.write(json) == json.size()
        && nativefile::flushToDisk(file) && file.commit();
    if (!written)
        return failure(writeErrorOf(file));
    nativefile::flushFolderToDisk(QFileInfo(path).path());
    return {};
}

Result<UndoManifest> readManifest(const QString &path)
{
    const Result<QJsonObject> object = readObject(path);
    if (!object)
        return failure(object.error());
    UndoManifest manifest { (*object)["createdAt"_L1].toString(),
                            (*object)["mode"_L1].toString(),
                            (*object)["quarantineRoot"_L1].toString(),
                            {} };
    const QString journalPath = UndoJournal::pathFor(path);
    if (QFileInfo::exists(journalPath)) {
        Result<QList<ManifestEntry>> moved = movedEntries(journalPath);
        if (!moved) // a list without them would be used up and leave the files where nobody finds them
            return failure(moved.error());
        manifest.entries = *std::move(moved);
        return manifest;
    }
    const QJsonArray entries = (*object)["entries"_L1].toArray();
    for (const auto &entry : entries)
        manifest.entries.append(entryFromJson(entry));
    return manifest;
}

// The manifest first: a journal alone is never offered, a manifest without its journal would be empty.
void removeManifest(const QString &path)
{
    if (QFile::remove(path) || !entryExists(path))
        removeJournal(path);
}

void removeJournal(const QString &manifestPath)
{
    QFile::remove(UndoJournal::pathFor(manifestPath));
}

} // namespace epr
