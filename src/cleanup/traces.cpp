// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "traces.h"

#include "cleanup.h"
#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "nativefile.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto partKey = "part"_L1;
constexpr auto tokenKey = "token"_L1;
constexpr auto placeholderKey = "placeholder"_L1;
constexpr auto fromKey = "from"_L1;

QStringList filesOf(const QString &folder, const QString &pattern)
{
    const QDir::Filters filesOnly = QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks;
    return QDir(folder).entryList(filesOnly).filter(QRegularExpression(QRegularExpression::anchoredPattern(pattern)));
}

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

bool isEmptyFile(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && !info.isSymLink() && info.size() == 0;
}

/// One file of notes.
struct Notes {
    QString path;
    QList<QJsonObject> lines;
    bool isWhole = true; ///< every line is one that TraceNotes writes
};

bool isNote(const QJsonObject &line)
{
    static const QRegularExpression token(u"^[0-9a-z]+$"_s);
    if (line.contains(placeholderKey)) {
        return QDir::isAbsolutePath(line[placeholderKey].toString()) && QDir::isAbsolutePath(line[fromKey].toString());
    }
    return QDir::isAbsolutePath(line[partKey].toString()) && token.match(line[tokenKey].toString()).hasMatch();
}

Notes readNotes(const QString &path)
{
    Notes notes { path, {}, true };
    const Result<> read = JournalFile::read(path, [&notes](const QJsonObject &line) {
        notes.lines.append(line);
        notes.isWhole = notes.isWhole && isNote(line);
    });
    notes.isWhole = notes.isWhole && read;
    return notes;
}

QStringList foldersOf(const QJsonObject &note)
{
    if (note.contains(placeholderKey))
        return { folderOf(note[placeholderKey].toString()), folderOf(note[fromKey].toString()) };
    return { note[partKey].toString() };
}

/// Clears up in the undo folder and wherever the notes there lead.
class Clearing final {
public:
    Clearing()
        : m_undoFolder(undoDirectory())
    {
        for (const QString &name : filesOf(m_undoFolder, u"traces-.+\\.journal"_s)) {
            const Notes notes = readNotes(inUndoFolder(name));
            if (notes.isWhole)
                m_notes.append(notes);
        }
    }

    [[nodiscard]] bool isNeeded() const
    {
        return !m_notes.isEmpty() || !unfinishedLists().isEmpty() || !lonelyJournals().isEmpty();
    }

    void lookForFolders()
    {
        for (const Notes &notes : std::as_const(m_notes)) {
            for (const QJsonObject &note : notes.lines) {
                for (const QString &folder : foldersOf(note)) {
                    if (!m_isThere.contains(folder))
                        m_isThere.insert(folder, QFileInfo(folder).isDir());
                }
            }
        }
    }

    [[nodiscard]] QStringList run()
    {
        for (const Notes &notes : std::as_const(m_notes))
            clear(readNotes(notes.path)); // whoever wrote them may have gone on until the lock was free
        for (const QString &name : unfinishedLists()) {
            if (!readManifest(inUndoFolder(name), [](const ManifestEntry &) {}))
                remove(inUndoFolder(name));
        }
        for (const QString &name : lonelyJournals())
            settle(inUndoFolder(name));
        QStringList removed;
        for (auto files = m_removed.cbegin(); files != m_removed.cend(); ++files) {
            removed.append(QCoreApplication::translate("epr::Cleanup",
                                                       "Removed %n unfinished file(s) that an interrupted clean-up "
                                                       "had left in %1.",
                                                       nullptr, files.value())
                               .arg(nativePath(files.key())));
        }
        return removed + m_found;
    }

private:
    QString inUndoFolder(const QString &name) const { return QDir(m_undoFolder).filePath(name); }

    // As QSaveFile names what it has not put in place yet, unless its random letters look like somebody's word.
    QStringList unfinishedLists() const
    {
        return filesOf(m_undoFolder, u"undo-.+\\.json\\.(?=.+[A-Z])(?=.*[a-z])[A-Za-z]{6}"_s);
    }

    QStringList lonelyJournals() const
    {
        QStringList names = filesOf(m_undoFolder, u"undo-.+\\.journal"_s);
        names.removeIf([this](const QString &name) { return entryExists(inUndoFolder(manifestNameOf(name))); });
        return names;
    }

    static QString manifestNameOf(const QString &journal) { return QFileInfo(journal).completeBaseName() + ".json"_L1; }

    // The notes go when all that they speak of has, which takes all of its drives.
    void clear(const Notes &notes)
    {
        if (!notes.isWhole)
            return;
        bool isDone = true;
        for (const QJsonObject &note : notes.lines) { // a placeholder may be that of a temporary file
            if (note.contains(placeholderKey))
                isDone = clearPlaceholder(note) && isDone;
        }
        for (const QJsonObject &note : notes.lines) {
            if (!note.contains(placeholderKey))
                isDone = clearTemporaryFiles(note) && isDone;
        }
        if (isDone)
            QFile::remove(notes.path);
    }

    bool areThere(const QJsonObject &note) const
    {
        const QStringList folders = foldersOf(note);
        return std::all_of(folders.cbegin(), folders.cend(),
                           [this](const QString &folder) { return m_isThere.value(folder); });
    }

    // While the file that was to replace it is there, nothing has been put in its place.
    bool clearPlaceholder(const QJsonObject &note)
    {
        if (!areThere(note))
            return false;
        const QString path = note[placeholderKey].toString();
        const QString from = note[fromKey].toString();
        return !isEmptyFile(path) || !entryExists(from) || isEmptyFile(from) || remove(path);
    }

    bool clearTemporaryFiles(const QJsonObject &note)
    {
        if (!areThere(note))
            return false;
        const QString folder = note[partKey].toString();
        bool isDone = true;
        for (const QString &name : filesOf(folder, u"\\.echoprune-%1-[0-9]+\\.part"_s.arg(note[tokenKey].toString())))
            isDone = remove(QDir(folder).filePath(name)) && isDone;
        return isDone;
    }

    bool remove(const QString &path)
    {
        const bool isGone = nativefile::removeFile(path).has_value();
        if (isGone)
            ++m_removed[folderOf(path)];
        return isGone;
    }

    // Its manifest was never written, or the undo that used it up was killed before it had removed the journal too.
    void settle(const QString &journal)
    {
        UndoManifest manifest;
        bool hasMoved = false;
        const QString run = QFileInfo(journal).completeBaseName().mid(5);
        const Result<> read = UndoJournal::readMoved(journal, [&](const ManifestEntry &entry) {
            hasMoved = true;
            manifest.quarantineRoot = entry.to.section(u'/' + run + u'/', 0, 0);
        });
        if (!read)
            return;
        if (!hasMoved) {
            remove(journal);
            return;
        }
        manifest.createdAt = QDateTime::fromString(run.left(15), u"yyyyMMdd-HHmmss"_s).toString(Qt::ISODate);
        manifest.mode = removalModeLabel(RemovalMode::Quarantine);
        const QString path = inUndoFolder(manifestNameOf(journal));
        if (writeManifest(path, manifest)) {
            m_found.append(
                QCoreApplication::translate("epr::Cleanup", "The list of an interrupted clean-up was found again: %1.")
                    .arg(describeManifest(path)));
        }
    }

    const QString m_undoFolder;
    QList<Notes> m_notes;
    QHash<QString, bool> m_isThere; ///< by folder
    QMap<QString, int> m_removed; ///< files, by folder
    QStringList m_found; ///< messages
};

} // namespace

TraceNotes::TraceNotes()
    : m_token(QString::number(QRandomGenerator::system()->generate64(), 36))
{
}

TraceNotes::~TraceNotes()
{
    if (m_file.isOpen() && !m_isKept)
        m_file.remove();
}

QString TraceNotes::temporaryFile(const QString &folder)
{
    if (!m_folders.contains(folder)) {
        m_folders.insert(folder);
        note({ { partKey, folder }, { tokenKey, m_token } });
    }
    // Short, because the name that the file will have may already be as long as the file system allows.
    return u"%1/.echoprune-%2-%3.part"_s.arg(folder, m_token, QString::number(++m_temporaryFiles));
}

// An empty file in place of an empty file says nothing.
void TraceNotes::notePlaceholder(const QString &from, const QString &to)
{
    if (!isEmptyFile(from))
        note({ { placeholderKey, to }, { fromKey, from } });
}

void TraceNotes::note(const QJsonObject &line)
{
    if (!m_file.isOpen()) {
        const QString folder = undoDirectory();
        static_cast<void>(m_file.create(folder + "/traces-"_L1 + m_token + ".journal"_L1));
        nativefile::flushFolderToDisk(folder);
    }
    if (m_file.isOpen())
        static_cast<void>(m_file.append({ line }));
}

QStringList clearTraces()
{
    Clearing clearing;
    if (!clearing.isNeeded())
        return {};
    // Asking for a folder on a drive that is gone may take long, and the lock would keep every clean-up waiting.
    clearing.lookForFolders();
    CleanupLock lock;
    const Result<> locked = lock.take({});
    return locked && lock.isCertain() ? clearing.run() : QStringList();
}

} // namespace epr
