// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"
#include "sha256.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <limits>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 block = 1048576;
constexpr qint64 largest = std::numeric_limits<qint64>::max();

QString referenceDigest(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// Without a pattern, so that a block read twice or skipped shows.
QByteArray someBytes(qint64 size)
{
    QByteArray bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [random = QRandomGenerator(1)]() mutable { return char(random()); });
    return bytes;
}

} // namespace

class TestHash final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void publishedVectors_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("digest");
        QTest::newRow("no bytes") << QByteArray()
                                  << QByteArray("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
        QTest::newRow("one block") << QByteArray("abc")
                                   << QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
        QTest::newRow("padding that takes a second block")
            << QByteArray("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")
            << QByteArray("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
        QTest::newRow("a million letters")
            << QByteArray(1000000, 'a')
            << QByteArray("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    }

    void publishedVectors()
    {
        QFETCH(QByteArray, message);
        epr::Sha256 hash;
        for (const qsizetype piece : { 1, 63, 64, 1000000 }) {
            hash.addData("left over from an abandoned file");
            hash.reset();
            for (qsizetype at = 0; at < message.size(); at += piece)
                hash.addData(QByteArrayView(message).sliced(at, std::min(piece, message.size() - at)));
            QTEST(hash.result().toHex(), "digest");
            hash.reset();
        }
    }

    void oneReadingEqualsTwo_data()
    {
        QTest::addColumn<qint64>("size");
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<qint64>("length");
        const auto row = [](const char *name, qint64 size, qint64 offset, qint64 length) {
            QTest::newRow(name) << size << offset << length;
        };
        const qint64 size = 3 * block + 17;
        row("range across three blocks", size, block - 1, block + 2);
        row("range of exactly one block", size, block, block);
        row("range that runs past the end", size, 2 * block, 9 * block);
        row("range that begins at the end", size, size, 1);
        row("range beyond the end", size, size + 5, 1);
        row("range whose end needs more than 64 bits", size, 3, largest);
        row("empty range", size, 5, 0);
        row("negative offset", size, -5, 10);
        row("empty file", 0, 0, 4);
    }

    void oneReadingEqualsTwo()
    {
        QFETCH(qint64, size);
        QFETCH(qint64, offset);
        QFETCH(qint64, length);
        const QByteArray bytes = someBytes(size);
        const QString path = write(u"track.mp3"_s, bytes);
        const QString payload = length > 0 && offset >= 0 ? referenceDigest(bytes.mid(offset, length)) : QString();
        const QString message = offset < 0 ? u"Cannot seek within %1"_s.arg(path) : u"untouched"_s;

        QString error = u"untouched"_s;
        QCOMPARE(epr::hashWholeFile(path, &error), referenceDigest(bytes));
        QCOMPARE(error, u"untouched"_s);
        QCOMPARE(epr::hashAudioPayload(path, offset, length, &error), payload);
        QCOMPARE(std::exchange(error, u"untouched"_s), message);
        const epr::FileDigests digests = epr::hashFileAndPayload(path, offset, length, &error);
        QCOMPARE(digests.whole, referenceDigest(bytes));
        QCOMPARE(digests.payload, payload);
        QCOMPARE(error, message);
    }

    void offsetsBeyondFourGigabytes()
    {
        const QString path = write(u"long.wav"_s, {});
        const qint64 offset = (qint64 { 5 } << 30) + 3;
        const QByteArray tail = someBytes(2000);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.seek(offset) && file.write(tail) == tail.size());
        file.close();
        QCOMPARE(epr::hashAudioPayload(path, offset, 1500), referenceDigest(tail.first(1500)));
    }

    // Some file systems refuse to seek as far as 64 bits go, others do not.
    void offsetsThatNoFileHasEndAlikeEitherWay()
    {
        const QString path = write(u"short.mp3"_s, "some bytes");
        QString error;
        QString ownError;
        const QString payload = epr::hashAudioPayload(path, largest, 1, &ownError);
        QCOMPARE(epr::hashFileAndPayload(path, largest, 1, &error).payload, payload);
        QCOMPARE(error, ownError);
    }

    void unreadablePathsSayWhy_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("a folder") << u"folder"_s << u"Not a regular file"_s;
#ifdef Q_OS_UNIX
        QTest::newRow("a vanished file") << u"gone.mp3"_s << u"No such file or directory"_s;
        QTest::newRow("a named pipe") << u"pipe.mp3"_s << u"Not a regular file"_s;
        QTest::newRow("a link to a named pipe") << u"pipelink.mp3"_s << u"Not a regular file"_s;
        QTest::newRow("a link to an endless device") << u"zero.mp3"_s << u"Not a regular file"_s;
#endif
    }

    void unreadablePathsSayWhy()
    {
        QFETCH(QString, name);
        QFETCH(QString, reason);
        QVERIFY(QDir(m_dir.path()).mkpath(u"folder"_s));
#ifdef Q_OS_UNIX
        ::mkfifo(QFile::encodeName(m_dir.filePath(u"pipe.mp3"_s)).constData(), 0600);
        QFile::link(u"pipe.mp3"_s, m_dir.filePath(u"pipelink.mp3"_s));
        QFile::link(u"/dev/zero"_s, m_dir.filePath(u"zero.mp3"_s));
#endif
        const QString path = m_dir.filePath(name);
        const QString message = u"Cannot read %1: %2"_s.arg(path, reason);
        QString error;
        QCOMPARE(epr::hashWholeFile(path, &error), QString());
        QCOMPARE(std::exchange(error, {}), message);
        QCOMPARE(epr::hashAudioPayload(path, 0, 10, &error), QString());
        QCOMPARE(std::exchange(error, {}), message);
        const epr::FileDigests digests = epr::hashFileAndPayload(path, 0, 10, &error);
        QCOMPARE(digests.whole + digests.payload, QString());
        QCOMPARE(error, message);
        QCOMPARE(epr::quickIdentityHash(path), QString());
    }

#ifdef Q_OS_LINUX
    // The process's own memory is a regular file in which the pages that are not mapped cannot be read.
    void readErrorsLeaveNoDigest()
    {
        const qint64 page = ::sysconf(_SC_PAGESIZE);
        const auto length = static_cast<size_t>(page);
        void *memory = ::mmap(nullptr, 2 * length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        QVERIFY(memory != MAP_FAILED);
        QCOMPARE(::munmap(static_cast<char *>(memory) + page, length), 0);
        const auto offset = static_cast<qint64>(reinterpret_cast<quintptr>(memory));
        const QString path = u"/proc/self/mem"_s;
        const QString message = u"Read error while hashing %1"_s.arg(path);
        QString error;
        QCOMPARE(epr::hashWholeFile(path, &error), QString());
        QCOMPARE(std::exchange(error, {}), message);
        QCOMPARE(epr::hashAudioPayload(path, offset, 2 * page, &error), QString());
        QCOMPARE(std::exchange(error, {}), message);
        QCOMPARE(epr::quickIdentityHash(path), QString());
        // The whole file is unreadable, yet the payload by itself is not.
        const epr::FileDigests digests = epr::hashFileAndPayload(path, offset, page, &error);
        QCOMPARE(digests.whole, QString());
        QCOMPARE(digests.payload, referenceDigest(QByteArray(page, '\0')));
        QCOMPARE(error, message);
        ::munmap(memory, length);
    }
#endif

    void quickIdentityTakesBothEnds()
    {
        for (const qint64 size : { 0, 1000, 131072, 131073 }) {
            const QByteArray bytes = someBytes(size);
            const QByteArray tail = size > 131072 ? bytes.last(65536) : QByteArray();
            QCOMPARE(epr::quickIdentityHash(write(u"q.mp3"_s, bytes)),
                     referenceDigest(QByteArray::number(size) + bytes.left(65536) + tail));
        }
    }

private:
    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_dir.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write the test file");
        return file.fileName();
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestHash)
#include "tst_hash.moc"
