// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"
#include "temporarylibrary.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <limits>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace Qt::StringLiterals;
using epr::test::native;

namespace {

constexpr qint64 block = 1048576;

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
    void oneReadingEqualsTwo_data()
    {
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<qint64>("length");
        QTest::newRow("across three blocks") << block - 1 << block + 2;
        QTest::newRow("one block") << block << block;
        QTest::newRow("past the end") << 2 * block << 9 * block;
        QTest::newRow("beyond the end") << 4 * block << qint64(1);
        QTest::newRow("no end") << qint64(3) << std::numeric_limits<qint64>::max();
        QTest::newRow("before the start") << qint64(-5) << qint64(10);
    }

    void oneReadingEqualsTwo()
    {
        QFETCH(qint64, offset);
        QFETCH(qint64, length);
        const QByteArray bytes = someBytes(3 * block + 17);
        const QString path = write(bytes);
        const QString payload = offset >= 0 ? referenceDigest(bytes.mid(offset, length)) : QString();
        const QString message = offset < 0 ? u"Cannot seek within "_s + native(path) : QString();
        QString errors[2];
        QCOMPARE(epr::hashAudioPayload(path, offset, length, &errors[0]), payload);
        const epr::FileDigests digests = epr::hashFile(path, { true, true, offset, length }, &errors[1]);
        QCOMPARE(digests.whole, referenceDigest(bytes));
        QCOMPARE(digests.payload, payload);
        QVERIFY(errors[0] == message && errors[1] == message);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly) && !file.read(100).isEmpty()); // by a reader of tags
        QCOMPARE(epr::hashContent(file, { true, true, offset, length }).whole, digests.whole);
        QVERIFY(file.seek(7) && epr::hashContent(file, { false, true, offset, length }).payload == payload);
    }

    void offsetsBeyondFourGigabytes()
    {
        const qint64 offset = (qint64 { 5 } << 30) + 3;
        QFile file(write({}));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.seek(offset) && file.write("the tail") == 8);
        file.close();
        QCOMPARE(epr::hashAudioPayload(file.fileName(), offset, 5), referenceDigest("the t"));
    }

    void unreadablePathsSayWhy_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("message");
        QTest::newRow("a folder") << m_dir.path() << u"Cannot read %1: Not a regular file"_s;
#ifdef Q_OS_UNIX
        const QString pipe = m_dir.filePath(u"pipe.mp3"_s); // opening it would never return
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QTest::newRow("a pipe") << pipe << u"Cannot read %1: Not a regular file"_s;
        QTest::newRow("nothing") << m_dir.filePath(u"gone.mp3"_s) << u"Cannot read %1: No such file or directory"_s;
#endif
#ifdef Q_OS_LINUX
        // The process's own memory is a regular file whose first page cannot be read.
        QTest::newRow("a bad page") << u"/proc/self/mem"_s << u"Read error while hashing %1"_s;
#endif
    }

    void unreadablePathsSayWhy()
    {
        QFETCH(QString, path);
        QFETCH(QString, message);
        QString error;
        const epr::FileDigests digests = epr::hashFile(path, { true, true, 0, 10 }, &error);
        QCOMPARE(digests.whole + digests.payload, QString());
        QCOMPARE(error, message.arg(native(path)));
        QCOMPARE(epr::quickIdentityHash(path), QString());
    }

    void stopGivesTheFileUp()
    {
        QString error;
        int blocks = 0;
        const epr::HashRequest request { .whole = true, .isStopped = [&blocks] { return blocks++ == 2; } };
        QVERIFY(epr::hashFile(write(someBytes(5 * block)), request, &error).whole.isEmpty() && !error.isEmpty());
        QCOMPARE(blocks, 3);
    }

    void quickIdentityTakesBothEnds()
    {
        const auto hash = [this](const QByteArray &bytes) { return epr::quickIdentityHash(write(bytes)); };
        const QByteArray bytes = someBytes(131073); // with one between the two ends
        QCOMPARE(hash(bytes), referenceDigest("131073" + bytes.first(65536) + bytes.last(65536)));
        QCOMPARE(hash(bytes.first(131072)), referenceDigest("131072" + bytes.first(65536)));
        QCOMPARE(hash(bytes.first(1000)), referenceDigest("1000" + bytes.first(1000)));
    }

private:
    QString write(const QByteArray &bytes) const
    {
        const QString path = m_dir.filePath(u"track.mp3"_s);
        epr::test::writeFile(path, bytes);
        return path;
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestHash)
#include "tst_hash.moc"
