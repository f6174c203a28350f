// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

class QAbstractScrollArea;

namespace epr {

/// A quiet line of text in the middle of a list or tree that has nothing to show. Shown and hidden by its owner; the
/// mouse reaches the view through it.
class EmptyHint final : public QLabel {
    Q_OBJECT

public:
    explicit EmptyHint(QAbstractScrollArea *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace epr
