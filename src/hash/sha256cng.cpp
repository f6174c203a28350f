// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"

#include <algorithm>

// windows.h declares the types that bcrypt.h uses without including it.
#include <windows.h>

#include <bcrypt.h>

namespace epr {

namespace {

bool succeeded(NTSTATUS status)
{
    return status >= 0;
}

BCRYPT_ALG_HANDLE openAlgorithm()
{
    BCRYPT_ALG_HANDLE handle = nullptr;
    return succeeded(BCryptOpenAlgorithmProvider(&handle, BCRYPT_SHA256_ALGORITHM, nullptr, 0)) ? handle : nullptr;
}

// Opened once, because opening a provider costs more than hashing a small file, and never closed, because a worker
// thread may still be hashing while static objects are destroyed. The handle may be shared by threads.
BCRYPT_ALG_HANDLE algorithm()
{
    static const BCRYPT_ALG_HANDLE sha256 = openAlgorithm();
    return sha256;
}

// CNG takes a 32-bit size; the data may be larger.
constexpr qsizetype largestUpdate = qsizetype { 1 } << 30;

// CNG declares its input without const, but only reads it.
PUCHAR inputBytes(QByteArrayView data)
{
    return reinterpret_cast<PUCHAR>(const_cast<char *>(data.data()));
}

} // namespace

struct Sha256::Backend {
    Backend() = default;
    ~Backend() { destroy(); }
    Q_DISABLE_COPY_MOVE(Backend)

    void destroy()
    {
        if (hash)
            BCryptDestroyHash(hash);
        hash = nullptr;
    }

    BCRYPT_HASH_HANDLE hash = nullptr;
    bool good = false;
};

Sha256::Sha256()
    : m_backend(std::make_unique<Backend>())
{
    reset();
}

Sha256::~Sha256() = default;

void Sha256::addData(QByteArrayView data)
{
    while (m_backend->good && !data.isEmpty()) {
        const QByteArrayView piece = data.first(std::min(data.size(), largestUpdate));
        m_backend->good =
            succeeded(BCryptHashData(m_backend->hash, inputBytes(piece), static_cast<ULONG>(piece.size()), 0));
        data = data.sliced(piece.size());
    }
}

QByteArray Sha256::result()
{
    QByteArray digest(digestSize, Qt::Uninitialized);
    auto *bytes = reinterpret_cast<PUCHAR>(digest.data());
    const bool good =
        m_backend->good && succeeded(BCryptFinishHash(m_backend->hash, bytes, static_cast<ULONG>(digestSize), 0));
    m_backend->good = false;
    return good ? digest : QByteArray();
}

// A finished CNG hash cannot be used again unless the provider supports it, so each computation takes a new one.
void Sha256::reset()
{
    m_backend->destroy();
    m_backend->good =
        algorithm() && succeeded(BCryptCreateHash(algorithm(), &m_backend->hash, nullptr, 0, nullptr, 0, 0));
}

} // namespace epr
