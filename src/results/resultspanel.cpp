// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "resultspanel.h"

#include "checkbar.h"
#include "displaytext.h"
#include "filterbar.h"
#include "resultsheader.h"
#include "resultsmodel.h"
#include "resultsview.h"
#include "review.h"
#include "reviewplace.h"
#include "reviewprogress.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// On X11 a line edit keeps some keys for editing as in Emacs, which are commands of ours.
class FilterEdit final : public QLineEdit {
public:
    using QLineEdit::QLineEdit;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::ShortcutOverride)
            return QLineEdit::event(event);
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool isCommand = key->modifiers() == Qt::ControlModifier
            && (key->key() == Qt::Key_D || key->key() == Qt::Key_E || key->key() == Qt::Key_K);
        return isCommand ? false : QLineEdit::event(event);
    }
};

} // namespace

ResultsPanel::ResultsPanel(Review &review, QWidget *parent)
    : QWidget(parent)
    , m_review(review)
    , m_model(new ResultsModel(review, this))
{
    createFilterRow();
    createTree();
    layOutWidgets();
    connect(&m_review, &Review::totalsChanged, this, &ResultsPanel::refreshSummary);
    connect(&m_review, &Review::totalsChanged, this, &ResultsPanel::refreshHint);
    setState(State::NotScanned);
}

void ResultsPanel::setState(State state)
{
    m_state = state;
    m_restored = 0;
    if (state == State::Scanning)
        m_unreadableFolders = 0;
    m_foundGroups = !m_review.groups().isEmpty();
    refreshSummary();
    refreshHint();
}

void ResultsPanel::setHasFolders(bool hasFolders)
{
    m_hasFolders = hasFolders;
    refreshHint();
}

void ResultsPanel::setKeepsAnalyses(bool keeps)
{
    m_keepsAnalyses = keeps;
}

void ResultsPanel::setUnreadableFolders(int count)
{
    m_unreadableFolders = count;
}

void ResultsPanel::addRestored(int files)
{
    m_restored += files;
    refreshSummary();
    refreshHint();
}

void ResultsPanel::goToGroup(int step)
{
    m_place->goToGroup(step);
}

bool ResultsPanel::goToUndecided(int group)
{
    return goToNext(group, [this](int other) { return m_review.state(other) == GroupState::Undecided; });
}

bool ResultsPanel::goToNext(int group, const std::function<bool(int group)> &isWanted)
{
    return m_place->goToNext(group, isWanted);
}

void ResultsPanel::goToShownGroup(int group)
{
    if (m_model->groupIndex(group).isValid())
        m_view->setCurrentIndex(m_model->groupIndex(group));
}

void ResultsPanel::setLoaded(const PerDeck<QString> &paths)
{
    m_model->setLoaded(paths);
}

void ResultsPanel::focusFilter()
{
    m_filterEdit->setFocus(Qt::ShortcutFocusReason);
    m_filterEdit->selectAll();
}

void ResultsPanel::focusResults()
{
    m_view->setFocus(Qt::OtherFocusReason);
}

QList<std::pair<int, int>> ResultsPanel::placesAtHand() const
{
    return m_model->placesOf(m_view->rowsAtHand());
}

QList<int> ResultsPanel::groupsAtHand() const
{
    QList<int> groups;
    for (const QModelIndex &row : m_view->rowsAtHand())
        groups << m_model->groupOf(row);
    std::ranges::sort(groups);
    groups.erase(std::unique(groups.begin(), groups.end()), groups.end());
    return groups;
}

const ReviewFilter &ResultsPanel::shown() const
{
    return m_model->rows();
}

void ResultsPanel::addToSummary(QWidget *note)
{
    m_summaryRow->insertWidget(1, note);
}

void ResultsPanel::addTreeAction(QAction *action)
{
    m_view->addAction(action);
}

void ResultsPanel::showGroup(int group)
{
    if (!m_model->groupIndex(group).isValid())
        clearFilters();
    m_view->setCurrentIndex(m_model->groupIndex(group));
}

void ResultsPanel::showMember(int group, int member)
{
    if (!m_model->memberIndex(group, member).isValid())
        clearFilters();
    m_view->setCurrentIndex(m_model->memberIndex(group, member));
}

void ResultsPanel::createFilterRow()
{
    m_filterEdit = new FilterEdit(this);
    m_filterEdit->setObjectName(u"filterEdit"_s);
    m_filterEdit->setPlaceholderText(tr("Artist, title, file name or folder..."));
    m_filterEdit->setClearButtonEnabled(true);
    m_filterEdit->setAccessibleName(tr("Filter"));
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), m_filterEdit);
    escape->setContext(Qt::WidgetShortcut);
    connect(escape, &QShortcut::activated, m_filterEdit, &QLineEdit::clear);
    connect(m_filterEdit, &QLineEdit::textChanged, this, &ResultsPanel::onFilterChanged);
    m_filterBar = new FilterBar(m_review, this);
    connect(m_filterBar, &FilterBar::applied, this, [this] {
        m_model->setCriteria(m_filterBar->criteria());
        followFilter();
    });
}

void ResultsPanel::createTree()
{
    m_view = new ResultsView(this);
    m_view->setObjectName(u"resultsView"_s);
    m_view->setAccessibleName(tr("Duplicate groups"));
    m_view->setModel(m_model);
    m_place = new ReviewPlace(m_review, *m_model, m_view);
    connect(m_place, &ReviewPlace::changed, this, &ResultsPanel::currentChanged);
    connect(&m_review, &Review::checkChanged, m_view->headings(), &ResultsHeader::fit); // its words need more room
    connect(m_view, &ResultsView::rowsAtHandChanged, this, [this] {
        const QItemSelection selected = m_view->selectionModel()->selection();
        Q_EMIT atHandChanged(selected.size() > 1 || (selected.size() == 1 && selected.first().height() > 1));
    });
    connect(m_view, &ResultsView::memberMenuRequested, this, &ResultsPanel::memberMenuRequested);
    connect(m_view, &ResultsView::memberActivated, this, &ResultsPanel::onTreeDoubleClicked);
}

void ResultsPanel::layOutWidgets()
{
    auto *label = new QLabel(tr("Filter:"), this);
    label->setBuddy(m_filterEdit);
    auto *filterRow = new QHBoxLayout;
    filterRow->addWidget(label);
    filterRow->addWidget(m_filterEdit, 1);
    filterRow->addWidget(m_filterBar);

    m_checkBar = new CheckBar(this);
    connect(m_checkBar, &CheckBar::focusGivenUp, this, &ResultsPanel::focusResults);
    m_summary = new QLabel(this);
    m_summary->setObjectName(u"summaryLabel"_s);
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_summary->setWordWrap(true);
    m_summary->setMinimumHeight(m_summary->fontMetrics().lineSpacing());

    m_progress = new ReviewProgress(this);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addLayout(filterRow);
    layout->addWidget(m_checkBar);
    layout->addWidget(m_view, 1);
    m_summaryRow = new QHBoxLayout;
    m_summaryRow->addWidget(m_summary, 1);
    m_summaryRow->addWidget(m_progress);
    layout->addLayout(m_summaryRow);
}

void ResultsPanel::onFilterChanged(const QString &text)
{
    m_model->setFilter(text);
    followFilter();
}

void ResultsPanel::clearFilters()
{
    m_filterEdit->clear();
    m_filterBar->clear();
}

void ResultsPanel::followFilter()
{
    refreshSummary();
    refreshHint();
}

void ResultsPanel::onTreeDoubleClicked()
{
    const QModelIndex current = m_view->currentIndex();
    if (const TrackInfo *track = m_review.track(m_model->groupOf(current), m_model->memberOf(current)))
        Q_EMIT memberActivated(TrackInfo(*track));
}

void ResultsPanel::refreshSummary()
{
    m_progress->show(m_review.totals());
    switch (m_state) {
    case State::NotScanned:
        m_summary->setText(tr("No scan has been run yet."));
        break;
    case State::Scanning: // nothing is known yet, and the figures of the last scan are gone
    case State::Cancelled: // nothing was compared, so "no duplicates found" would be untrue
        m_summary->clear();
        break;
    case State::Finished:
        m_summary->setText(withGaps(outcomeText()));
        break;
    }
}

void ResultsPanel::refreshHint()
{
    m_view->setHint(hintText());
}

QString ResultsPanel::hintText() const
{
    switch (m_state) {
    case State::NotScanned:
        return m_hasFolders ? tr("Press Start Scan to look for duplicates.")
                            : tr("Add a folder with music, then press Start Scan.");
    case State::Scanning:
        return tr("Scanning. Duplicate groups appear here as soon as the scan is complete.");
    case State::Cancelled:
        return m_keepsAnalyses
            ? tr(
                "The scan was cancelled before its files were compared. What was analysed is kept: press Start Scan to "
                "go on from there.")
            : tr("The scan was cancelled before its files were compared. Press Start Scan to begin again.");
    case State::Finished:
        break;
    }
    if (m_review.totals().groups > 0)
        return tr("No copy matches the filter.");
    if (m_review.totals().setAside > 0)
        return tr("Every group is set aside as not duplicates. Tools > Not Duplicates lists them.");
    if (m_restored > 0)
        return tr("%Ln file(s) were put back since the scan. Press Start Scan to see them.", nullptr, m_restored);
    if (m_foundGroups)
        return tr("No duplicates are left.");
    return withGaps(m_review.totals().files > 0
                        ? tr("No duplicates in these folders.")
                        : tr("No music files were found. The activity log says whether a folder is missing, and "
                             "Settings choose which files are looked at."));
}

// "No duplicates found" would be untrue of a scan whose duplicates were removed, and half the truth once files came
// back.
QString ResultsPanel::outcomeText() const
{
    const ReviewTotals &totals = m_review.totals();
    QString text = totals.groups == 0 && m_foundGroups
        ? (tr("%1 files scanned - no duplicates are left.").arg(countText(totals.files)) + u' '
           + setAsideText(totals.setAside))
              .trimmed()
        : summaryText(totals);
    if (shown().isActive() && totals.groups > 0)
        text += u' ' + tr("%1 of %2 groups shown.").arg(countText(shown().groupCount()), countText(totals.groups));
    if (m_restored > 0)
        text += u' ' + tr("%Ln file(s) were put back since; the next scan shows them.", nullptr, m_restored);
    return text;
}

// Without it "no duplicates" would be said of files that nobody has seen.
QString ResultsPanel::withGaps(const QString &outcome) const
{
    return m_unreadableFolders > 0 ? u"%1 (%2)"_s.arg(outcome, incompleteText(m_unreadableFolders)) : outcome;
}

} // namespace epr
