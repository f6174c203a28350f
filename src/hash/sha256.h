// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>

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

} // namespace epr
