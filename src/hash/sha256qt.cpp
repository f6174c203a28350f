// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"

#include <QCryptographicHash>

namespace epr {

struct Sha256::Backend {
    QCryptographicHash hash { QCryptographicHash::Sha256 };
};

Sha256::Sha256()
    : m_backend(std::make_unique<Backend>())
{
}

Sha256::~Sha256() = default;

void Sha256::addData(QByteArrayView data)
{
    m_backend->hash.addData(data);
}

QByteArray Sha256::result()
{
    return m_backend->hash.result();
}

void Sha256::reset()
{
    m_backend->hash.reset();
}

} // namespace epr
