// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewprogress.h"

#include "displaytext.h"
#include "reviewtotals.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace epr {

using namespace Qt::StringLiterals;

ReviewProgress::ReviewProgress(QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel(this))
    , m_bar(new QProgressBar(this))
{
    m_text->setObjectName(u"progressText"_s);
    m_bar->setAccessibleName(tr("Groups done"));
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(12 * fontMetrics().averageCharWidth());
    m_bar->setMaximumHeight(fontMetrics().height());
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    setVisible(false);
}

void ReviewProgress::show(const ReviewTotals &totals)
{
    m_text->setText(tr("%1 of %2 groups done, %3 of %4")
                        .arg(countText(totals.doneGroups), countText(totals.groups), sizeText(totals.doneBytes),
                             sizeText(totals.redundantBytes)));
    m_bar->setMaximum(static_cast<int>(totals.groups));
    m_bar->setValue(static_cast<int>(totals.doneGroups));
    setVisible(totals.doneGroups > 0);
}

} // namespace epr
