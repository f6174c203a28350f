// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"

#include <optional>

namespace epr {

/// Chooses the copies to keep of the results once more, by the policy or the rules of the settings as they are now. The
/// operator sees first how much would change.
class KeeperCommand final : public Command {
    Q_OBJECT

public:
    KeeperCommand(Review &review, QWidget *window);

    void chooseAgain(); ///< says so when nothing would change
    void offer(); ///< after the settings were edited: asks only if something would change that was not asked before

private:
    bool ask(const ScanOptions &options);

    Review &m_review;
    std::optional<ScanOptions> m_offered; ///< what the operator was asked about for these results
};

} // namespace epr
