// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "undomanifest.h"

#include "displaytext.h"
#include "filemove.h"
#include "fileproblems.h"
#include "manifestreader.h"
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

QJsonObject toJson(const ManifestEntry &entry)
{
    return { { u"from"_s, entry.from }, { u"to"_s, entry.to }, { u"size"_s, entry.size } };
}

/// Without its entries.
QJsonObject toJson(const UndoManifest &manifest)
{
    return {
        { u"manifestVersion"_s, manifestVersion },
        { u"createdAt"_s, manifest.createdAt },
        { u"mode"_s, manifest.mode },
        { u"quarantineRoot"_s, manifest.quarantineRoot },
        { u"entries"_s, QJsonArray() },
    };
}

/// Anything that has not two path texts gives an entry with empty paths.
ManifestEntry entryFromJson(const QJsonObject &object)
{
    ManifestEntry entry { object["from"_L1].toString(), object["to"_L1].toString(), object["size"_L1].toInteger() };
    if (entry.from.isEmpty() || entry.to.isEmpty())
        return {};
    return entry;
}

// The very bytes that one document of the whole list would give, without having it all in memory: a list may have a
// million entries.
bool writeJson(QIODevice &file, const UndoManifest &manifest)
{
    const auto write = [&file](const QByteArray &bytes) { return file.write(bytes) == bytes.size(); };
    const QByteArray frame = QJsonDocument(toJson(manifest)).toJson(QJsonDocument::Indented);
    const QByteArray opening("\n    \"entries\": [\n"); // not in a text, where line breaks and quotes are escaped
    const qsizetype inside = frame.indexOf(opening) + opening.size();
    if (!write(frame.first(inside)))
        return false;
    for (qsizetype i = 0; i < manifest.entries.size(); ++i) {
        QByteArray entry = QJsonDocument(toJson(manifest.entries.at(i))).toJson(QJsonDocument::Indented);
        entry.chop(1);
        entry.replace("\n", "\n        ");
        if (!write("        " + entry + (i + 1 < manifest.entries.size() ? ",\n" : "\n")))
            return false;
    }
    return write(frame.sliced(inside));
}

} // namespace

QString UndoJournal::pathFor(const QString &manifestPath)
{
    QString path = manifestPath;
    if (path.endsWith(".json"_L1))
        path.chop(5);
    return path + ".journal"_L1;
}

Result<> UndoJournal::read(const QString &path, const ManifestEntryFn &each)
{
    QSet<QString> givenUp;
    const Result<> looked = JournalFile::read(path, [&givenUp](const QJsonObject &line) {
        if (line.contains(givenUpKey))
            givenUp.insert(line[givenUpKey].toString());
    });
    if (!looked)
        return looked;
    return JournalFile::read(path, [&givenUp, &each](const QJsonObject &line) {
        const ManifestEntry move = entryFromJson(line);
        if (!move.to.isEmpty() && !givenUp.contains(move.to))
            each(move);
    });
}

Result<> UndoJournal::readMoved(const QString &path, const ManifestEntryFn &each)
{
    return read(path, [&each](const ManifestEntry &move) {
        if (entryExists(move.to) || !entryExists(move.from))
            each(move);
    });
}

Result<> UndoJournal::appendIntended(const QList<ManifestEntry> &moves)
{
    QList<QJsonObject> lines;
    for (const ManifestEntry &move : moves)
        lines.append(toJson(move));
    return m_file.append(lines);
}

Result<> UndoJournal::appendReplaced(const QString &givenUpDestination, const ManifestEntry &move)
{
    return m_file.append({ QJsonObject { { givenUpKey, givenUpDestination } }, toJson(move) });
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
    qsizetype files = 0;
    const Result<UndoManifest> manifest = readManifest(path, [&files](const ManifestEntry &) { ++files; });
    const QDateTime created = manifest ? QDateTime::fromString(manifest->createdAt, Qt::ISODate) : QDateTime();
    const QString when = created.isValid()
        ? QLocale().toString(created, QCoreApplication::translate("epr::Cleanup", "d MMM yyyy h:mm ap"))
        : QFileInfo(path).fileName();
    return QCoreApplication::translate("epr::Cleanup", "%1 - %2 file(s)").arg(when, countText(manifest ? files : 0));
}

Result<> writeManifest(const QString &path, const UndoManifest &manifest)
{
    QSaveFile file(path);
    // Committing alone would put a file in place of which the end is missing on a full disk.
    const bool written =
        file.open(QIODevice::WriteOnly) && writeJson(file, manifest) && nativefile::flushToDisk(file) && file.commit();
    if (!written)
        return failure(writeErrorOf(file));
    nativefile::flushFolderToDisk(QFileInfo(path).path());
    return {};
}

Result<UndoManifest> readManifest(const QString &path, const ManifestEntryFn &each)
{
    const QString journalPath = UndoJournal::pathFor(path);
    if (!QFileInfo::exists(journalPath))
        return parseManifest(path, each);
    const Result<UndoManifest> manifest = parseManifest(path, [](const ManifestEntry &) {});
    if (!manifest)
        return manifest;
    // A list without them would be used up and leave the files where nobody finds them.
    if (const Result<> moved = UndoJournal::readMoved(journalPath, each); !moved)
        return failure(moved.error());
    return manifest;
}

Result<UndoManifest> readManifest(const QString &path)
{
    QList<ManifestEntry> entries;
    Result<UndoManifest> manifest =
        readManifest(path, [&entries](const ManifestEntry &entry) { entries.append(entry); });
    if (manifest)
        manifest->entries = std::move(entries);
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
