// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "optionstab.h"

#include "notices.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

// One width for all, which would otherwise follow their ranges and make a ragged column.
void alignSpinBox(QAbstractSpinBox *box)
{
    constexpr int characters = 16;
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * characters);
}

} // namespace

OptionsTab::OptionsTab(const ScanOptions &options, QWidget *parent)
    : QWidget(parent)
    , m_stored(options)
{
}

void OptionsTab::applyTo(ScanOptions &options) const
{
    for (const auto &store : m_bindings)
        store(options);
}

QCheckBox *OptionsTab::checkBox(bool ScanOptions::*option, const QString &text, const QString &toolTip)
{
    auto *box = new QCheckBox(text);
    box->setChecked(m_stored.*option);
    box->setToolTip(toolTip);
    bind([=](ScanOptions &options) { options.*option = box->isChecked(); });
    return box;
}

QComboBox *OptionsTab::comboBox(qint32 ScanOptions::*option, const QList<Choice> &choices)
{
    auto *box = new QComboBox;
    for (const Choice &choice : choices)
        box->addItem(choice.text, choice.value);
    box->setCurrentIndex(std::max(0, box->findData(m_stored.*option)));
    bind([=](ScanOptions &options) { options.*option = box->currentData().toInt(); });
    return box;
}

QDoubleSpinBox *OptionsTab::spinBox(double ScanOptions::*option, const DecimalRange &range)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(range.minimum, range.maximum);
    box->setSingleStep(range.step);
    box->setDecimals(range.decimals);
    alignSpinBox(box);
    // "nan" is a number to the settings store, but has no nearest value in range.
    box->setValue(std::isnan(m_stored.*option) ? ScanOptions().*option : m_stored.*option);
    bind([=](ScanOptions &options) { options.*option = box->value(); });
    return box;
}

QLineEdit *OptionsTab::listEdit(QStringList ScanOptions::*option, const Separator &separator, const QString &toolTip)
{
    auto *edit = new QLineEdit((m_stored.*option).join(separator.character + QChar::Space));
    edit->setCursorPosition(0); // a long list shows its beginning
    edit->setToolTip(toolTip);
    bind([=, parse = separator.parse](ScanOptions &options) { options.*option = parse(edit->text()); });
    return edit;
}

QSpinBox *OptionsTab::createSpinBox(qint64 value, const Range &range)
{
    auto *box = new QSpinBox;
    box->setRange(range.minimum, range.maximum);
    box->setSuffix(range.suffix);
    // Clamped in 64 bits, before the value could be cut to the width of an int.
    box->setValue(static_cast<int>(std::clamp<qint64>(value, range.minimum, range.maximum)));
    alignSpinBox(box);
    return box;
}

int OptionsTab::valueOf(const QSpinBox *box)
{
    return box->value();
}

QFormLayout *createForm(QWidget *parent)
{
    auto *form = new QFormLayout(parent);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    return form;
}

QLabel *createStatusLabel()
{
    QLabel *label = plainLabel();
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    label->setSizePolicy(policy);
    return label;
}

} // namespace epr
