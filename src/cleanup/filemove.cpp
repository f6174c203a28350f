// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filemove.h"

#include "fileproblems.h"
#include "hashing.h"
#include "nativefile.h"
#include "traces.h"

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
        for (QString missing = folder; !entryExists(missing); missing = QFileInfo(missing).path()) {
            if (!m_made.isEmpty() && m_made.last() == missing) // the top of a drive that is not there
                return failure({});
            m_made.append(missing);
        }
        if (m_made.isEmpty() ? QFileInfo(folder).isDir() : QDir().mkpath(folder))
            return {};
        return failure(m_made.isEmpty() ? QString() : qt_error_string());
    }

    void keep() { m_made.clear(); }

private:
    QStringList m_made; ///< innermost first
};

Result<Outcome> rename(const QString &from, const QString &to, TraceNotes &notes)
{
    bool hasPlaceholder = false;
    const Result<Outcome> outcome = nativefile::renameWithoutReplacing(from, to, [&] {
        hasPlaceholder = true;
        notes.notePlaceholder(from, to);
    });
    if (hasPlaceholder && !outcome) // it should have gone again, unless the drive has
        notes.keep();
    return outcome;
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
        const Result<QString> digest = copyContent(original);
        if (!digest)
            return failure(digest.error());
        if (const Result<> flushed = nativefile::flushToDisk(m_file); !flushed)
            return flushed;
        m_file.close();
        if (const Result<> copied = nativefile::copyTimesAndPermissions(original, path()); !copied)
            return copied;
        QString error;
        if (hashWholeFile(path(), &error) != *digest)
            return failure(error);
        return {};
    }

    [[nodiscard]] Result<Outcome> putInPlace(const QString &to)
    {
        const Result<Outcome> outcome = rename(path(), to, m_notes);
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

Result<Outcome> copyFile(const QString &from, const QString &to, const Stamp &stamp, TraceNotes &notes)
{
    TemporaryCopy copy(QFileInfo(to).path(), notes);
    if (const Result<> filled = copy.fillFrom(from); !filled)
        return failure(filled.error());
    // A file that is being written to while it is copied may be whole in neither place.
    if (stampOf(from) != stamp || QFileInfo(copy.path()).size() != stamp.size)
        return failure({});
    return copy.putInPlace(to);
}

Result<Outcome> moveByCopying(const QString &from, const QString &to, TraceNotes &notes)
{
    if (entryExists(to)) // before copying a large file for nothing
        return Outcome::Occupied;
    const Stamp stamp = stampOf(from);
    const Result<bool> isLink = nativefile::isSymbolicLink(from);
    if (!isLink)
        return failure(isLink.error());
    const Result<Outcome> outcome = *isLink ? nativefile::copySymbolicLink(from, to) : copyFile(from, to, stamp, notes);
    if (outcome != Outcome::Done)
        return outcome;
    nativefile::flushFolderToDisk(QFileInfo(to).path());
    const Result<> removed = nativefile::removeFile(from);
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

Result<MoveOutcome> moveFile(const QString &from, const QString &to, TraceNotes &notes)
{
    MadeFolders folders;
    if (const Result<> made = folders.make(QFileInfo(to).path()); !made)
        return failure(made.error());
    Result<Outcome> outcome = rename(from, to, notes);
    if (outcome == Outcome::OtherDevice)
        outcome = moveByCopying(from, to, notes);
    if (!outcome)
        return failure(outcome.error());
    if (outcome == Outcome::OtherDevice) // of two places that a look at the file system took for one
        return failure({});
    if (outcome == Outcome::Occupied)
        return MoveOutcome::Occupied;
    folders.keep();
    return MoveOutcome::Moved;
}

} // namespace epr
