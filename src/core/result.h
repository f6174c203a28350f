// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace epr {

/// What an operation made, or why it could not: a text that can be shown to the operator. Whoever calls has to look.
template <typename Value = void> class [[nodiscard]] Result : public tl::expected<Value, QString> {
public:
    using tl::expected<Value, QString>::expected;
};

/// Return this from a function whose result is a Result, whatever its value would have been.
[[nodiscard]] inline tl::unexpected<QString> failure(QString reason)
{
    return tl::unexpected<QString>(std::move(reason));
}

} // namespace epr
