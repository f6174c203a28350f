// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "undomanifest.h"

#include "filemove.h"
#include "manifestjson.h"
#include "nativefile.h"
#include "undojournal.h"
#include "writeerror.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <functional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// A run of a million files with long paths stays below this; reading takes several times as much memory.
constexpr qint64 maxManifestBytes = 268435456;

std::optional<QByteArray> readBytes(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return std::nullopt;
    }
    QByteArray bytes = file.read(maxManifestBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        *error = file.errorString();
        return std::nullopt;
    }
    if (bytes.size() > maxManifestBytes) {
        *error = QCoreApplication::translate("epr::Cleanup", "The file is too large");
        return std::nullopt;
    }
    return bytes;
}

std::optional<QJsonObject> readObject(const QString &path, QString *error)
{
    const std::optional<QByteArray> bytes = readBytes(path, error);
    if (!bytes)
        return std::nullopt;
    QJsonParseError parsing;
    const QJsonDocument document = QJsonDocument::fromJson(*bytes, &parsing);
    if (parsing.error != QJsonParseError::NoError) {
        *error = parsing.errorString();
        return std::nullopt;
    }
    if (!document.object()["entries"_L1].isArray()) {
        *error = QCoreApplication::translate("epr::Cleanup", "The file has no list of entries");
        return std::nullopt;
    }
    return document.object();
}

// An intended move of which only the original is there was never made.
QList<ManifestEntry> movedEntries(const QString &journalPath)
{
    QList<ManifestEntry> entries = UndoJournal::read(journalPath);
    entries.removeIf([](const ManifestEntry &move) { return !entryExists(move.to) && entryExists(move.from); });
    return entries;
}

} // namespace

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
    QString error;
    const UndoManifest manifest = readManifest(path, &error).value_or(UndoManifest());
    const QDateTime created = QDateTime::fromString(manifest.createdAt, Qt::ISODate);
    const QString when = created.isValid()
        ? QLocale().toString(created, QCoreApplication::translate("epr::Cleanup", "d MMM yyyy h:mm ap"))
        : QFileInfo(path).fileName();
    return QCoreApplication::translate("epr::Cleanup", "%1 - %2 file(s)")
        .arg(when, QString::number(manifest.entries.size()));
}

bool writeManifest(const QString &path, const UndoManifest &manifest, QString *error)
{
    QSaveFile file(path);
    const QByteArray json = QJsonDocument(toJson(manifest)).toJson(QJsonDocument::Indented);
    // Committing alone would put a file in place of which the end is missing on a full disk.
    const bool written = file.open(QIODevice::WriteOnly) && file.write(json) == json.size()
        && nativefile::flushToDisk(file) && file.commit();
    if (!written) {
        *error = writeErrorOf(file);
        return false;
    }
    nativefile::flushFolderToDisk(QFileInfo(path).path());
    return true;
}

std::optional<UndoManifest> readManifest(const QString &path, QString *error)
{
    const std::optional<QJsonObject> object = readObject(path, error);
    if (!object)
        return std::nullopt;
    UndoManifest manifest { (*object)["createdAt"_L1].toString(),
                            (*object)["mode"_L1].toString(),
                            (*object)["quarantineRoot"_L1].toString(),
                            {} };
    const QString journalPath = UndoJournal::pathFor(path);
    if (QFileInfo::exists(journalPath)) {
        manifest.entries = movedEntries(journalPath);
        return manifest;
    }
    const QJsonArray entries = (*object)["entries"_L1].toArray();
    for (const QJsonValue &entry : entries)
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
