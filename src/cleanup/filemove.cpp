// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filemove.h"

#include "fileproblems.h"
#include "hashing.h"
#include "nativefile.h"
#include "patience.h"
#include "traces.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>

namespace epr {

using namespace Qt::StringLiterals;
using nativefile::Outcome;

namespace {

constexpr qint64 blockSize = 1048576;

// The folders that had to be made for a move. They go again with this object unless the move succeeded.
class MadeFolders final {
public:
    MadeFolders() = default;
    Q_DISABLE_COPY_MOVE(MadeFolders)
    ~MadeFolders()
    {
        for (const QString &folder : std::as_const(m_made))
            QDir().rmdir(folder);
    }

    [[nodiscard]] Result<> make(const QString &folder)
    {
        QStringList missing; // outermost first
        for (QString path = folder; !QFileInfo(path).isDir(); path = QFileInfo(path).path()) {
            if (!missing.isEmpty() && missing.first() == path) // the top of a drive that is not there
                break;
            missing.prepend(path);
        }
        for (const QString &path : std::as_const(missing)) {
            if (const Result<> made = nativefile::makeFolder(path); made)
                m_made.prepend(path);
            else if (!QFileInfo(path).isDir()) // somebody else may just have made it
                return made;
        }
        return {};
    }

    void keep() { m_made.clear(); }

private:
    QStringList m_made; ///< innermost first
};

Result<Outcome> rename(const QString &from, const QString &to, TraceNotes &notes, Patience &patience)
{
    if (const Result<> free = patience.awaitFree(from); !free)
        return failure(free.error());
    bool hasPlaceholder = false;
    const Result<Outcome> outcome = nativefile::renameWithoutReplacing(from, to, [&] {
        hasPlaceholder = true;
        notes.notePlaceholder(from, to);
    });
    if (hasPlaceholder && !outcome) // it should have gone again, unless the drive has
        notes.keep();
    return outcome;
}

QString notAlike()
{
    return QCoreApplication::translate("epr::Cleanup", "the copy that was made is not like the original");
}

// A copy under a temporary name. It goes with this object unless it was renamed.
class TemporaryCopy final {
public:
    TemporaryCopy(const QString &folder, TraceNotes &notes)
        : m_notes(notes)
        , m_file(notes.temporaryFile(folder))
    {
    }
    Q_DISABLE_COPY_MOVE(TemporaryCopy)
    ~TemporaryCopy()
    {
        if (!m_made)
            return;
        m_file.close();
        if (!nativefile::removeFile(path()))
            m_notes.keep();
    }

    [[nodiscard]] QString path() const { return m_file.fileName(); }

    /// Succeeds only if the copy, read back from its file, is what was read from the original.
    [[nodiscard]] Result<> fillFrom(const QString &original)
    {
        m_made = m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
        if (!m_made)
            return failure(m_file.errorString());
        nativefile::hideFile(path());
        const Result<QString> digest = copyContent(original);
        if (!digest)
            return failure(digest.error());
        if (const Result<> flushed = nativefile::flushToDisk(m_file); !flushed)
            return flushed;
        m_file.close();
        QString error;
        if (hashWholeFile(path(), &error) != *digest)
            return failure(error.isEmpty() ? notAlike() : error);
        return nativefile::copyTimesAndPermissions(original, path()); // last, because then it is in sight
    }

    [[nodiscard]] Result<Outcome> putInPlace(const QString &to, Patience &patience)
    {
        const Result<Outcome> outcome = rename(path(), to, m_notes, patience);
        if (outcome == Outcome::Done)
            m_made = false;
        return outcome;
    }

private:
    /// The digest of what was written.
    [[nodiscard]] Result<QString> copyContent(const QString &original)
    {
        QFile source(original);
        if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return failure(source.errorString());
        Sha256 hash;
        QByteArray block(blockSize, Qt::Uninitialized);
        qint64 got = 0;
        while ((got = source.read(block.data(), blockSize)) > 0) {
            if (m_file.write(block.constData(), got) != got)
                return failure(writeErrorOf(m_file));
            hash.addData(QByteArrayView(block.constData(), static_cast<qsizetype>(got)));
        }
        const QByteArray digest = hash.result();
        if (got < 0 || digest.isEmpty())
            return failure(got < 0 ? source.errorString() : QString());
        return QString::fromLatin1(digest.toHex());
    }

    TraceNotes &m_notes;
    QFile m_file;
    bool m_made = false;
};

struct Stamp {
    qint64 size = 0;
    QDateTime modified;

    bool operator==(const Stamp &) const = default;
};

Stamp stampOf(const QString &path)
{
    const QFileInfo info(path);
    return { info.size(), info.lastModified() };
}

Result<Outcome> copyFile(const QString &from, const QString &to, TraceNotes &notes, Patience &patience)
{
    const Stamp stamp = stampOf(from);
    TemporaryCopy copy(QFileInfo(to).path(), notes);
    if (const Result<> filled = copy.fillFrom(from); !filled)
        return failure(filled.error());
    // A file that is being written to while it is copied may be whole in neither place.
    if (stampOf(from) != stamp || QFileInfo(copy.path()).size() != stamp.size)
        return failure(QCoreApplication::translate("epr::Cleanup", "it was written to while it was copied"));
    return copy.putInPlace(to, patience);
}

Result<Outcome> moveByCopying(const QString &from, const QString &to, TraceNotes &notes, Patience &patience)
{
    if (entryExists(to)) // before copying a large file for nothing
        return Outcome::Occupied;
    const Stamp stamp = stampOf(from);
    const Result<bool> isLink = nativefile::isSymbolicLink(from);
    if (!isLink)
        return failure(isLink.error());
    const Result<Outcome> outcome =
        *isLink ? nativefile::copySymbolicLink(from, to) : copyFile(from, to, notes, patience);
    if (outcome != Outcome::Done)
        return outcome;
    nativefile::flushFolderToDisk(QFileInfo(to).path());
    Result<> removed = patience.awaitFree(from);
    if (removed)
        removed = nativefile::removeFile(from);
    // Only while the original is still seen to be there is the copy not the last: a network drive may just have gone.
    if (removed || !entryExists(from) || stampOf(from) != stamp)
        return Outcome::Done;
    static_cast<void>(nativefile::removeFile(to));
    return failure(removed.error());
}

} // namespace

bool entryExists(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

Result<> makeFolders(const QString &folder)
{
    MadeFolders folders;
    const Result<> made = folders.make(folder);
    if (made)
        folders.keep();
    return made;
}

Result<MoveOutcome> moveFile(const QString &from, const QString &to, TraceNotes &notes, Patience &patience)
{
    MadeFolders folders;
    if (const Result<> made = folders.make(QFileInfo(to).path()); !made)
        return failure(made.error());
    Result<Outcome> outcome = rename(from, to, notes, patience);
    if (outcome == Outcome::OtherDevice)
        outcome = moveByCopying(from, to, notes, patience);
    if (!outcome)
        return failure(outcome.error());
    if (outcome == Outcome::OtherDevice) // even within a folder, says the file system
        return failure({});
    if (outcome == Outcome::Occupied)
        return MoveOutcome::Occupied;
    folders.keep();
    return MoveOutcome::Moved;
}

} // namespace epr
