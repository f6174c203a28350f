// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QAbstractSpinBox;
class QCheckBox;
class QFormLayout;
class QLabel;
class QScrollArea;
class QSpinBox;
class QWidget;

namespace epr {

struct SpinRange {
    int minimum = 0;
    int maximum = 0;
    QString suffix;
};

/// The common width of the dialog's spin boxes, which would otherwise follow their ranges and make a ragged column.
void alignSpinBox(QAbstractSpinBox *box);

/// Shows the value, or the nearest one in range: a hand-edited store may hold anything.
[[nodiscard]] QSpinBox *createSpinBox(const SpinRange &range, qint64 value);

[[nodiscard]] QCheckBox *createCheckBox(const QString &text, bool checked, const QString &toolTip = {});

/// A wrapped, selectable line of plain text, as paths and addresses go in.
[[nodiscard]] QLabel *createStatusLabel();

/// A form whose text fields grow with the dialog while its spin boxes keep their size.
QFormLayout *createForm(QWidget *parent);

/// The page with scroll bars when it does not fit: the dialog's buttons stay on a small or strongly scaled screen.
[[nodiscard]] QScrollArea *createScrollablePage(QWidget *page);

} // namespace epr
