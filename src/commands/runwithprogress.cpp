// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "runwithprogress.h"

#include "backgroundwork.h"
#include "displaytext.h"
#include "notices.h"
#include "progress.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <mutex>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds refreshInterval { 50 };
constexpr std::chrono::milliseconds patience { 400 }; // of somebody who waits without being told for what

class WaitCursor final {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

// How far a clean-up has come, between the thread that does it and the window that shows it. The window looks when it
// paints; a signal for each of 50,000 files would only pile up.
class CleanupProgress final {
public:
    struct State {
        qsizetype index = 0; // from 0
        qsizetype total = 0; // 0 before the first file
        QString path;
    };

    State state() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_state;
    }

    // Whether a file was held back because of requestStop().
    bool hasStopped() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_hasStopped;
    }

    void requestStop() // before the next file
    {
        const std::scoped_lock lock(m_mutex);
        m_stopRequested = true;
    }

    // For the working thread: notes the file that comes next. False if it must not be touched.
    bool advance(const State &next)
    {
        const std::scoped_lock lock(m_mutex);
        m_hasStopped = m_stopRequested;
        if (!m_stopRequested)
            m_state = next;
        return !m_stopRequested;
    }

private:
    mutable std::mutex m_mutex;
    State m_state;
    bool m_stopRequested = false;
    bool m_hasStopped = false;
};

} // namespace

// Shows the file that a clean-up is at and lets the operator stop before the next one. It cannot be closed before the
// clean-up has ended: its button, Escape and the window's own cross all ask for the stop.
class ProgressDialog final : public QDialog {
    Q_OBJECT

public:
    ProgressDialog(const QString &title, CleanupProgress &progress, QWidget *parent);
    ~ProgressDialog() override;

    void reject() override;

private:
    void layOutWidgets();
    void refresh();
    void showInTitles(int percent);

    const QString m_title;
    const QString m_windowTitle; // of the window behind, which has the progress in its title meanwhile
    CleanupProgress &m_progress;
    QElapsedTimer m_clock;
    ProgressEstimate m_estimate;
    QLabel *m_count;
    QLabel *m_file;
    QProgressBar *m_bar;
    QPushButton *m_stop = nullptr;
};

ProgressDialog::ProgressDialog(const QString &title, CleanupProgress &progress, QWidget *parent)
    : QDialog(parent)
    , m_title(title)
    , m_windowTitle(parent ? parent->window()->windowTitle() : QString())
    , m_progress(progress)
    , m_count(plainLabel(tr("Checking the files...")))
    , m_file(plainLabel({}))
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
    m_progress.requestStop();
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
    const CleanupProgress::State state = m_progress.state();
    if (state.total == 0)
        return;
    const auto done = static_cast<int>(state.index);
    const auto total = static_cast<int>(state.total);
    m_bar->setRange(0, total);
    m_bar->setValue(done);
    m_estimate.add(done, total, m_clock.elapsed());
    const QString count = tr("File %1 of %2").arg(countText(done + 1), countText(total));
    const QString rest = m_estimate.text();
    m_count->setText(rest.isEmpty() ? count : tr("%1 - %2", "the count of a clean-up and its speed").arg(count, rest));
    showInTitles(static_cast<int>(qint64 { 100 } * done / total));
    const QString path = nativePath(state.path);
    m_file->setText(m_file->fontMetrics().elidedText(path, Qt::ElideMiddle, m_file->width()));
    m_file->setToolTip("<span>"_L1 + path.toHtmlEscaped() + "</span>"_L1); // escapes show without a tag
}

// Also in the title of the window behind, which is what a task bar shows.
void ProgressDialog::showInTitles(int percent)
{
    const QString brief = tr("%1 %2 %").arg(m_title).arg(percent);
    setWindowTitle(brief);
    if (parentWidget())
        parentWidget()->window()->setWindowTitle(tr("%1 - %2").arg(brief, m_windowTitle));
}

bool runWithProgress(const QString &title, const CleanupJob &job, QWidget *parent)
{
    const WaitCursor cursor;
    CleanupProgress progress;
    ProgressDialog dialog(title, progress, parent);
    BackgroundJob worker([&] {
        job([&progress](qsizetype index, qsizetype total, const QString &path) {
            return progress.advance({ index, total, path });
        });
    });
    // Input waits while there is no dialog to keep it from the other windows. Most clean-ups are over before there is
    // one, and a dialog that flashes up tells nobody anything.
    if (!worker.wait(QEventLoop::ExcludeUserInputEvents, patience)) {
        dialog.show();
        worker.wait(QEventLoop::AllEvents);
    }
    // A wait that ended for another reason ended with the program, which then waits for one file at most.
    progress.requestStop();
    worker.finish();
    return !progress.hasStopped();
}

void runWaiting(const std::function<void()> &job)
{
    const WaitCursor cursor;
    BackgroundJob worker(job);
    worker.wait(QEventLoop::ExcludeUserInputEvents);
    worker.finish();
}

} // namespace epr

#include "runwithprogress.moc"
