// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What a digest costs: our SHA-256 beside libcrypto called directly and beside Qt's, and the two digests of a
// file taken in one reading beside two.
#include "hashing.h"
#include "stopwatch.h"

#include <QCryptographicHash>
#include <QTemporaryFile>

#include <cstdio>

#ifdef EPR_BENCH_EVP
#include <openssl/evp.h>
#endif

namespace {

constexpr qsizetype blockSize = 1048576;
constexpr int blocks = 128;

QByteArray sample()
{
    QByteArray bytes(blockSize, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : bytes)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

QByteArray ownDigest(const QByteArray &block)
{
    epr::Sha256 hash;
    for (int i = 0; i < blocks; ++i)
        hash.addData(block);
    return hash.result();
}

QByteArray qtDigest(const QByteArray &block)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (int i = 0; i < blocks; ++i)
        hash.addData(block);
    return hash.result();
}

#ifdef EPR_BENCH_EVP
QByteArray evpDigest(const QByteArray &block)
{
    QByteArray digest(EVP_MAX_MD_SIZE, Qt::Uninitialized);
    unsigned int size = 0;
    EVP_MD *algorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    EVP_DigestInit_ex2(context, algorithm, nullptr);
    for (int i = 0; i < blocks; ++i)
        EVP_DigestUpdate(context, block.data(), static_cast<size_t>(block.size()));
    EVP_DigestFinal_ex(context, reinterpret_cast<unsigned char *>(digest.data()), &size);
    EVP_MD_CTX_free(context);
    EVP_MD_free(algorithm);
    return digest.first(static_cast<qsizetype>(size));
}
#else
QByteArray evpDigest(const QByteArray &)
{
    return {};
}
#endif

void compareBackends(const QByteArray &block)
{
    QByteArray own;
    QByteArray evp;
    QByteArray ofQt;
    const auto [ownTime, evpTime, qtTime] = epr::bench::shortestTimes(
        7, [&] { own = ownDigest(block); }, [&] { evp = evpDigest(block); }, [&] { ofQt = qtDigest(block); });
    std::printf("SHA-256 of %d MiB in memory: own %.0f MB/s, Qt %.0f MB/s, own/Qt %.2f\n", blocks,
                blocks * 1.048576 / ownTime, blocks * 1.048576 / qtTime, qtTime / ownTime);
    if (!evp.isEmpty())
        std::printf("  libcrypto called directly %.0f MB/s, own/libcrypto %.3f\n", blocks * 1.048576 / evpTime,
                    evpTime / ownTime);
    std::printf("  digests agree: %s\n", own == ofQt && (evp.isEmpty() || own == evp) ? "yes" : "NO");
}

void compareReadings(const QByteArray &block)
{
    QTemporaryFile file;
    if (!file.open())
        return;
    for (int i = 0; i < blocks; ++i)
        file.write(block);
    file.close();
    const QString path = file.fileName();
    const qint64 offset = 4096;
    const qint64 length = blocks * blockSize - 2 * offset;
    epr::FileDigests once;
    epr::FileDigests twice;
    const auto [onceTime, twiceTime] = epr::bench::shortestTimes(
        7,
        [&] {
            once = epr::hashFile(path,
                                 { .whole = true, .payload = true, .payloadOffset = offset, .payloadLength = length });
        },
        [&] {
            twice = { epr::hashWholeFile(path), epr::hashAudioPayload(path, offset, length) };
        });
    std::printf("Both digests of a cached file of %d MiB: one reading %.3f s, two %.3f s, two/one %.2f\n", blocks,
                onceTime, twiceTime, twiceTime / onceTime);
    std::printf("  digests agree: %s\n", once.whole == twice.whole && once.payload == twice.payload ? "yes" : "NO");
}

} // namespace

int main()
{
    const QByteArray block = sample();
    compareBackends(block);
    compareReadings(block);
}
