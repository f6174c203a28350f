// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingswidgets.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSpinBox>

#include <algorithm>

namespace epr {

void alignSpinBox(QAbstractSpinBox *box)
{
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * 16);
}

QSpinBox *createSpinBox(const SpinRange &range, qint64 value)
{
    auto *box = new QSpinBox;
    box->setRange(range.minimum, range.maximum);
    box->setSuffix(range.suffix);
    // Clamped in 64 bits, before the value could be cut to the width of an int.
    box->setValue(static_cast<int>(std::clamp<qint64>(value, range.minimum, range.maximum)));
    alignSpinBox(box);
    return box;
}

QCheckBox *createCheckBox(const QString &text, bool checked, const QString &toolTip)
{
    auto *box = new QCheckBox(text);
    box->setChecked(checked);
    box->setToolTip(toolTip);
    return box;
}

QLabel *createStatusLabel()
{
    auto *label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    label->setSizePolicy(policy);
    return label;
}

QFormLayout *createForm(QWidget *parent)
{
    auto *form = new QFormLayout(parent);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    return form;
}

QScrollArea *createScrollablePage(QWidget *page)
{
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // or Tab would stop at something that nobody sees
    area->setWidget(page);
    // The tab widget paints the background; styles give it another colour than a window's.
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return area;
}

} // namespace epr
