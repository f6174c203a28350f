// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>

namespace epr::test {

/// Adds columns to a data-driven test; each call then adds a row by its name.
template <typename... Values> class Rows final {
public:
    /// Qt keeps the names' addresses, so they must be literals.
    template <typename... Names> explicit Rows(const Names &...names) { (QTest::addColumn<Values>(names), ...); }

    void operator()(const char *name, const Values &...values) const { (QTest::newRow(name) << ... << values); }
};

} // namespace epr::test
