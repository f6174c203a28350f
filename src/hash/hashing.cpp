// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"

#include "displaytext.h"
#include "fileproblems.h"

#include <QCoreApplication>
#include <QFile>
#include <QThreadStorage>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace epr {

namespace {

constexpr qint64 blockSize = 1048576;
constexpr qint64 identityWindow = 65536;
constexpr qint64 keyWindow = 4096;
constexpr qint64 noLimit = std::numeric_limits<qint64>::max();

// One block for each thread that hashes, kept from file to file: a fresh mebibyte costs 256 page faults every time. Not
// thread_local, because MinGW's runtime destroys such objects when their memory is gone already.
char *blockBuffer()
{
    static QThreadStorage<QByteArray> buffers;
    if (!buffers.hasLocalData())
        buffers.setLocalData(QByteArray(blockSize, Qt::Uninitialized));
    return buffers.localData().data();
}

void setError(QString *error, const QString &message)
{
    if (error)
        *error = message;
}

void setReadError(QString *error, const QString &path)
{
    setError(error, QCoreApplication::translate("QObject", "Read error while hashing %1").arg(nativePath(path)));
}

void setOpenError(QString *error, const QString &path, const QString &reason)
{
    setError(error, QCoreApplication::translate("QObject", "Cannot read %1: %2").arg(nativePath(path), reason));
}

bool openForHashing(QFile &file, QString *error)
{
    const QString path = file.fileName();
    if (isSpecialFile(path)) {
        setOpenError(error, path, QCoreApplication::translate("QObject", "Not a regular file"));
        return false;
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        setOpenError(error, path, file.errorString());
        return false;
    }
    return true;
}

using StopFn = std::function<bool()>; // empty when nobody can stop the reading

/// Hands the next limit bytes to consume, block by block. The end of the file ends it early; a read error or a stop is
/// false.
template <typename Consume> bool readBlocks(QFile &file, qint64 limit, const StopFn &isStopped, Consume consume)
{
    char *const buffer = blockBuffer();
    for (qint64 remaining = limit; remaining > 0;) {
        if (isStopped && isStopped())
            return false;
        const qint64 got = file.read(buffer, std::min(remaining, blockSize));
        if (got <= 0)
            return got == 0;
        consume(QByteArrayView(buffer, static_cast<qsizetype>(got)));
        remaining -= got;
    }
    return true;
}

bool addBlocks(QFile &file, qint64 limit, Sha256 &hash, const StopFn &isStopped = {})
{
    return readBlocks(file, limit, isStopped, [&hash](QByteArrayView block) { hash.addData(block); });
}

QString digestText(Sha256 &hash)
{
    return QString::fromLatin1(hash.result().toHex());
}

// A back-end that failed leaves no digest, and to the operator that is no different from a failed read.
QString digestOrError(bool read, Sha256 &hash, const QString &path, QString *error)
{
    const QString digest = read ? digestText(hash) : QString();
    if (digest.isEmpty())
        setReadError(error, path);
    return digest;
}

/// A byte range of the file and the digest of what has been seen of it.
class RangeDigest final {
public:
    RangeDigest(qint64 offset, qint64 length)
        : m_begin(offset)
        , m_end(length > noLimit - offset ? noLimit : offset + length)
    {
    }

    bool complete() const { return m_position >= m_end; }
    bool begun() const { return m_position >= m_begin; }
    Sha256 &hash() { return m_hash; }

    /// Takes the file's next block, wherever it lies relative to the range.
    void addBlock(QByteArrayView block)
    {
        const qint64 size = block.size();
        const qint64 from = std::clamp<qint64>(m_begin - m_position, 0, size);
        const qint64 to = std::clamp<qint64>(m_end - m_position, 0, size);
        m_hash.addData(block.sliced(static_cast<qsizetype>(from), static_cast<qsizetype>(to - from)));
        m_position += size;
    }

private:
    qint64 m_begin;
    qint64 m_end;
    qint64 m_position = 0;
    Sha256 m_hash;
};

// The files are open, and may have been read from.

QString hashWhole(QFile &file, const StopFn &isStopped, QString *error)
{
    Sha256 hash;
    const bool read = file.seek(0) && addBlocks(file, noLimit, hash, isStopped);
    return digestOrError(read, hash, file.fileName(), error);
}

QString hashPayload(QFile &file, const HashRequest &request, QString *error)
{
    if (request.payloadLength < 1)
        return {};
    if (!file.seek(request.payloadOffset)) {
        setError(error,
                 QCoreApplication::translate("QObject", "Cannot seek within %1").arg(nativePath(file.fileName())));
        return {};
    }
    Sha256 hash;
    const bool read = addBlocks(file, request.payloadLength, hash, request.isStopped);
    return digestOrError(read, hash, file.fileName(), error);
}

// Both digests from one pass over the file.
FileDigests hashBoth(QFile &file, const HashRequest &request, QString *error)
{
    Sha256 whole;
    RangeDigest payload(request.payloadOffset, request.payloadLength);
    const bool read = file.seek(0) && readBlocks(file, noLimit, request.isStopped, [&](QByteArrayView block) {
                          whole.addData(block);
                          payload.addBlock(block);
                      });
    FileDigests digests { digestOrError(read, whole, file.fileName(), error), {} };
    // A read error before or inside the range, or a range beyond the end, says nothing about what reading the range
    // alone would give, so that is then done.
    const bool settled = payload.complete() || (read && payload.begun());
    digests.payload =
        settled ? digestOrError(true, payload.hash(), file.fileName(), error) : hashPayload(file, request, error);
    return digests;
}

FileDigests hashOpenFile(QFile &file, const HashRequest &request, QString *error)
{
    const bool rangeIsSound = request.payloadLength >= 1 && request.payloadOffset >= 0;
    if (request.whole && request.payload && rangeIsSound)
        return hashBoth(file, request, error);
    FileDigests digests;
    if (request.whole)
        digests.whole = hashWhole(file, request.isStopped, error);
    if (request.payload)
        digests.payload = hashPayload(file, request, error);
    return digests;
}

} // namespace

QString hashWholeFile(const QString &path, QString *error)
{
    return hashFile(path, { .whole = true }, error).whole;
}

QString hashAudioPayload(const QString &path, qint64 offset, qint64 length, QString *error)
{
    return hashFile(path, { .payload = true, .payloadOffset = offset, .payloadLength = length }, error).payload;
}

FileDigests hashFile(const QString &path, const HashRequest &request, QString *error)
{
    QFile file(path);
    const bool wantsAny = request.whole || (request.payload && request.payloadLength >= 1);
    return wantsAny && openForHashing(file, error) ? hashOpenFile(file, request, error) : FileDigests();
}

FileDigests hashContent(QFile &file, const HashRequest &request, QString *error)
{
    if (!request.payload || request.payloadLength >= 1)
        return hashOpenFile(file, request, error);
    const QString whole = hashWhole(file, request.isStopped, error);
    return { request.whole ? whole : QString(), whole };
}

FileDigests hashContent(const QString &path, const HashRequest &request, QString *error)
{
    QFile file(path);
    const bool wantsAny = request.whole || request.payload;
    return wantsAny && openForHashing(file, error) ? hashContent(file, request, error) : FileDigests();
}

QString quickIdentityHash(const QString &path)
{
    QFile file(path);
    if (!openForHashing(file, nullptr))
        return {};
    const qint64 size = file.size();
    Sha256 hash;
    hash.addData(QByteArray::number(size));
    bool read = addBlocks(file, identityWindow, hash);
    if (size > 2 * identityWindow)
        read = read && file.seek(size - identityWindow) && addBlocks(file, identityWindow, hash);
    return read ? digestText(hash) : QString();
}

quint64 rangeKey(QFile &file, qint64 offset, qint64 length)
{
    const qint64 window = std::min(keyWindow, length);
    Sha256 hash;
    hash.addData(QByteArray::number(length));
    for (const qint64 position : { offset, offset + length - window }) {
        if (!file.seek(position) || file.read(blockBuffer(), window) != window)
            return 0;
        hash.addData(QByteArrayView(blockBuffer(), static_cast<qsizetype>(window)));
    }
    const QByteArray digest = hash.result();
    return digest.isEmpty() ? 0 : std::max<quint64>(qFromLittleEndian<quint64>(digest.constData()), 1);
}

} // namespace epr
