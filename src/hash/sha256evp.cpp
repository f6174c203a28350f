// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"

#include <openssl/evp.h>

namespace epr {

namespace {

// Fetched once, because every fetch searches the providers under a lock, and never freed, because a worker thread may
// still be hashing while static objects are destroyed.
const EVP_MD *algorithm()
{
    static const EVP_MD *const sha256 = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return sha256;
}

} // namespace

struct Sha256::Backend {
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context { EVP_MD_CTX_new(), &EVP_MD_CTX_free };
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
    if (m_backend->good)
        m_backend->good =
            EVP_DigestUpdate(m_backend->context.get(), data.data(), static_cast<size_t>(data.size())) == 1;
}

QByteArray Sha256::result()
{
    QByteArray digest(digestSize, Qt::Uninitialized);
    auto *bytes = reinterpret_cast<unsigned char *>(digest.data());
    const bool good = m_backend->good && EVP_DigestFinal_ex(m_backend->context.get(), bytes, nullptr) == 1;
    m_backend->good = false;
    return good ? digest : QByteArray();
}

void Sha256::reset()
{
    m_backend->good =
        m_backend->context && algorithm() && EVP_DigestInit_ex2(m_backend->context.get(), algorithm(), nullptr) == 1;
}

} // namespace epr
