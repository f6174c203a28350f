// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QFile;
QT_END_NAMESPACE

namespace epr {

/// SHA-256 (FIPS 180-4) of data that arrives in pieces. One object serves one thread at a time.
///
/// The digest of a failed back-end is empty, never wrong.
class Sha256 final {
public:
    static constexpr qsizetype digestSize = 32;

    Sha256();
    ~Sha256();
    Q_DISABLE_COPY_MOVE(Sha256)

    void addData(QByteArrayView data);

    /// Ends the computation and returns the 32 bytes of the digest, or nothing if the back-end failed. Call reset()
    /// before the next addData().
    [[nodiscard]] QByteArray result();

    /// Starts over, as if newly constructed.
    void reset();

private:
    struct Backend;
    std::unique_ptr<Backend> m_backend;
};

// Digests are SHA-256 as 64 lower-case hexadecimal digits; an empty text means that there is none. A failure returns
// empty text and writes a message into *error if the caller gave one; success leaves *error as it was. Only regular
// files and links to them are opened. Everything here is re-entrant.

/// Digest of every byte of the file.
QString hashWholeFile(const QString &path, QString *error = nullptr);

/// Digest of length bytes from offset on, or of those that exist when the file ends earlier. A length below 1 has no
/// digest and is no error.
QString hashAudioPayload(const QString &path, qint64 offset, qint64 length, QString *error = nullptr);

/// Digest of the file's size and its first and last 64 KiB: enough to tell apart nearly all files at the cost of two
/// small reads. Not interchangeable with the other digests.
QString quickIdentityHash(const QString &path);

struct FileDigests {
    QString whole;
    QString payload;
};

/// What to hash of one file.
struct HashRequest {
    bool whole = false;
    bool payload = false;
    qint64 payloadOffset = 0; ///< bytes
    qint64 payloadLength = 0; ///< bytes
    std::function<bool()> isStopped = {}; ///< asked before each block of a MiB; true gives the file up
};

/// What hashWholeFile() and then hashAudioPayload() would return and report, as far as requested, for one pass over the
/// file. A file that is given up gets the read error's message and no digest.
FileDigests hashFile(const QString &path, const HashRequest &request, QString *error = nullptr);

/// The same, as copies are recognised by it: a payload that is not delimited (of a length below 1) counts as the whole
/// file, which then matches byte-identical copies only.
FileDigests hashContent(const QString &path, const HashRequest &request, QString *error = nullptr);

/// The same for a file that is open for reading, wherever it was read last.
FileDigests hashContent(QFile &file, const HashRequest &request, QString *error = nullptr);

/// A number made of the length in bytes and the first and last 4 KiB of a range of an open file: equal for equal
/// ranges, and different for nearly all others. 0 = the ends could not be read.
quint64 rangeKey(QFile &file, qint64 offset, qint64 length);

} // namespace epr
