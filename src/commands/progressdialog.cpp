// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "progressdialog.h"

#include "cleanupprogress.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace epr {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto refreshInterval = 50ms;

QLabel *createPlainLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

ProgressDialog::ProgressDialog(const QString &title, CleanupProgress *progress, QWidget *parent)
    : QDialog(parent)
    , m_title(title)
    , m_windowTitle(parent ? parent->window()->windowTitle() : QString())
    , m_progress(progress)
    , m_count(createPlainLabel(tr("Checking the files...")))
    , m_file(createPlainLabel({}))
    , m_bar(new QProgressBar)
{
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    layOutWidgets();
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ProgressDialog::refresh);
    timer->start(refreshInterval);
    m_clock.start();
}

ProgressDialog::~ProgressDialog()
{
    if (parentWidget())
        parentWidget()->window()->setWindowTitle(m_windowTitle);
}

void ProgressDialog::reject()
{
    m_progress->requestStop();
    m_stop->setEnabled(false);
    m_stop->setText(tr("Stopping..."));
}

void ProgressDialog::layOutWidgets()
{
    constexpr int width = 520;
    setFixedWidth(width); // file names of all lengths come by; a dialog that follows them dances
    m_bar->setRange(0, 0);
    m_bar->setTextVisible(false);
    m_file->setObjectName(u"currentFile"_s);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_stop = buttons->button(QDialogButtonBox::Cancel);
    m_stop->setText(tr("Stop")); // what is done stays done
    connect(buttons, &QDialogButtonBox::rejected, this, &ProgressDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_count);
    layout->addWidget(m_bar);
    layout->addWidget(m_file);
    layout->addWidget(buttons);
}

void ProgressDialog::refresh()
{
    const CleanupProgress::State state = m_progress->state();
    if (state.total == 0)
        return;
    const auto done = static_cast<int>(state.index);
    const auto total = static_cast<int>(state.total);
    m_bar->setRange(0, total);
    m_bar->setValue(done);
    m_estimate.add(done, total, m_clock.elapsed());
    const QString count = tr("File %1 of %2").arg(done + 1).arg(total);
    const QString rest = m_estimate.text();
    m_count->setText(rest.isEmpty() ? count : tr("%1 - %2", "the count of a clean-up and its speed").arg(count, rest));
    showInTitles(static_cast<int>(qint64 { 100 } * done / total));
    m_file->setText(m_file->fontMetrics().elidedText(state.path, Qt::ElideMiddle, m_file->width()));
    m_file->setToolTip("<span>"_L1 + state.path.toHtmlEscaped() + "</span>"_L1); // escapes show without a tag
}

// Also in the title of the window behind, which is what a task bar shows.
void ProgressDialog::showInTitles(int percent)
{
    const QString brief = tr("%1 %2 %").arg(m_title).arg(percent);
    setWindowTitle(brief);
    if (parentWidget())
        parentWidget()->window()->setWindowTitle(tr("%1 - %2").arg(brief, m_windowTitle));
}

} // namespace epr
