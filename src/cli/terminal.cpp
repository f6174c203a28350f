// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "terminal.h"

#include "analysiscache.h"
#include "checktext.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "missingpart.h"
#include "review.h"
#include "scancontroller.h"
#include "setasidestore.h"
#include "wholechecker.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#include <qt_windows.h>
#else
#include <unistd.h>
#endif

namespace epr::terminal {

using namespace Qt::StringLiterals;

namespace {

constexpr int statusColumns = 79; // one less than the narrowest usual terminal, so that the line never wraps
constexpr qint64 statusIntervalMs = 100;

bool errorIsTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(2) != 0;
#else
    return isatty(STDERR_FILENO) == 1;
#endif
}

// Joiners, which some scripts need within a word, stay.
bool isInvisibleMark(QChar c)
{
    const char16_t unit = c.unicode();
    return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x2028 && unit <= 0x202E)
        || (unit >= 0x2066 && unit <= 0x2069);
}

QString memberLine(const QList<TrackInfo> &tracks, const MatchGroup &group, qint32 member)
{
    const TrackInfo &track = tracks.at(member);
    const QString action = member == group.keep ? QCoreApplication::translate("epr::Cli", "KEEP")
                                                : QCoreApplication::translate("epr::Cli", "duplicate");
    QStringList facts { durationText(track.stream), missingText(group, member), qualityText(track),
                        sizeText(track.size), editText(group, member, tracks) };
    facts += checkTexts(group, member) + measureTexts(group, member);
    facts.removeAll(QString());
    return u"  %1  %2  (%3)\n"_s.arg(action.leftJustified(9), printable(nativePath(track.path)),
                                     printable(facts.join("; "_L1)));
}

void writeGroup(QTextStream &out, const QList<TrackInfo> &tracks, const MatchGroup &group)
{
    out << QCoreApplication::translate("epr::Cli", "Group %1 - %2 - %3 copies - %4 reclaimable")
               .arg(group.id)
               .arg(groupLabel(group))
               .arg(group.members.size())
               .arg(sizeText(group.reclaimableBytes))
        << '\n';
    for (const QString &remark : { groupCheckText(group), betterCopyText(group, tracks) }) {
        if (!remark.isEmpty())
            out << "  " << printable(remark) << '\n';
    }
    for (const qint32 member : group.members)
        out << memberLine(tracks, group, member);
    out << '\n';
}

#ifdef Q_OS_WIN
std::atomic<UINT> codePageBefore = 0; // 0 = nothing to bring back

void restoreCodePage()
{
    if (const UINT codePage = codePageBefore.exchange(0))
        SetConsoleOutputCP(codePage);
}

// Called for what no handler of a signal took: a second Ctrl-C, Ctrl-Break or the closing of the console. None of them
// runs destructors.
BOOL WINAPI onConsoleEvent(DWORD)
{
    restoreCodePage();
    return FALSE; // the system goes on to end the process
}
#endif

std::atomic<ScanController *> activeController { nullptr };
std::atomic<bool> interrupted { false };
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<ScanController *>::is_always_lock_free,
              "a signal handler must not wait for a lock");

// Both only store into an atomic, which is one of the few things that a signal handler may do.
extern "C" void onInterrupt(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    interrupted = true;
    if (ScanController *controller = activeController.load())
        controller->cancel();
}

/// While one exists, Ctrl-C (or a polite request to terminate) cancels the controller's scan, if there is one. A second
/// one ends the process at once. At most one at a time.
class InterruptGuard final {
public:
    explicit InterruptGuard(ScanController *controller)
    {
        interrupted = false;
        activeController = controller;
        std::signal(SIGINT, onInterrupt);
        std::signal(SIGTERM, onInterrupt);
    }
    Q_DISABLE_COPY_MOVE(InterruptGuard)
    ~InterruptGuard()
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        activeController = nullptr;
    }

    /// Whether a request came, however late: the controller itself takes no notice of one while it groups.
    [[nodiscard]] bool wasInterrupted() const { return interrupted; }
};

void connectStatus(ScanController &controller, StatusLine &status)
{
    QObject::connect(&controller, &ScanController::phaseChanged, &controller,
                     [&status](const QString &phase) { status.setPhase(phase); });
    QObject::connect(
        &controller, &ScanController::progress, &controller,
        [&status](int done, int total, const QString &detail) { status.setProgress(done, total, detail); });
}

void connectLog(ScanController &controller, StatusLine &status, bool verbose)
{
    if (!verbose)
        return;
    QObject::connect(&controller, &ScanController::logMessage, &controller, [&status](const QString &message) {
        status.clear();
        QTextStream(stderr) << printable(message) << '\n';
    });
}

void connectLog(WholeChecker &checker, StatusLine &status, bool verbose)
{
    if (!verbose)
        return;
    QObject::connect(&checker, &WholeChecker::logMessage, &checker, [&status](const QString &message) {
        status.clear();
        QTextStream(stderr) << printable(message) << '\n';
    });
}

void connectResults(WholeChecker &checker, StatusLine &status, ScanResult &result)
{
    QObject::connect(&checker, &WholeChecker::checked, &checker,
                     [&result](int number, const GroupCheck &check) { result.groups[number].check = check; });
    QObject::connect(&checker, &WholeChecker::progressChanged, &checker, [&status](const CheckProgress &progress) {
        status.setProgress(static_cast<int>(progress.filesDone), static_cast<int>(progress.files),
                           nativePath(progress.path));
    });
}

/// The groups to check, numbered by their positions.
QList<CheckItem> checkItems(const ScanResult &result)
{
    QList<CheckItem> items;
    for (int number = 0; number < result.groups.size(); ++number) {
        const MatchGroup &group = result.groups.at(number);
        if (!isWorthChecking(group))
            continue;
        CheckItem item { number, group.keep, group.members, {} };
        for (const qint32 member : group.members)
            item.tracks << result.tracks.at(member);
        items << item;
    }
    return items;
}

void connectOutcome(ScanController &controller, ScanResult &result)
{
    QObject::connect(&controller, &ScanController::finished, &controller,
                     [&result](const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled) {
                         result.tracks = tracks;
                         result.groups = groups;
                         result.cancelled = cancelled;
                     });
    QObject::connect(&controller, &ScanController::foldersUnreadable, &controller,
                     [&result](int count) { result.unreadableFolders = count; });
    QObject::connect(&controller, &ScanController::failed, &controller,
                     [&result](const QString &error) { result.failure = error; });
}

} // namespace

Utf8Console::Utf8Console()
{
#ifdef Q_OS_WIN
    codePageBefore = GetConsoleOutputCP();
    if (codePageBefore == 0) // there is no console
        return;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
    SetConsoleOutputCP(CP_UTF8);
#endif
}

Utf8Console::~Utf8Console()
{
#ifdef Q_OS_WIN
    std::fflush(stdout); // it is UTF-8 too
    restoreCodePage();
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
#endif
}

QString printable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control)
            result += u"\\x%1"_s.arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else if (isInvisibleMark(c))
            result += u"\\u%1"_s.arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

void StatusLine::setPhase(const QString &phase)
{
    m_phase = phase;
    show(phase, true);
}

void StatusLine::setProgress(int done, int total, const QString &detail)
{
    const QString percent = total > 0 ? u" %1 %"_s.arg(100LL * done / total) : QString();
    show(m_phase + percent + (detail == m_phase ? QString() : u": "_s + detail), false);
}

void StatusLine::clear()
{
    show({}, true);
}

void StatusLine::show(const QString &text, bool now)
{
    static const bool isShown = errorIsTerminal();
    if (!isShown || (!now && m_sinceShown.isValid() && m_sinceShown.elapsed() < statusIntervalMs))
        return;
    m_sinceShown.start();
    // Overwritten with spaces instead of an erase sequence, which older Windows consoles would print.
    m_err << '\r' << printable(text).left(statusColumns).leftJustified(statusColumns) << '\r' << Qt::flush;
}

ScanResult runScan(const ScanOptions &options, bool verbose)
{
    ScanResult result;
    StatusLine status;
    ScanController controller;
    connectStatus(controller, status);
    connectLog(controller, status, verbose);
    connectOutcome(controller, result);

    const InterruptGuard guard(&controller);
    controller.start(options);
    // Groups that lack a method must not pass for the whole answer, least of all when there are none.
    result.cancelled = result.cancelled || guard.wasInterrupted();
    status.clear();
    return result;
}

Result<> leaveOutSetAside(ScanResult &result)
{
    SetAsideStore store(SetAsideStore::defaultFilePath());
    if (!QFileInfo::exists(SetAsideStore::defaultFilePath()))
        return {};
    if (const Result<> opened = store.open(); !opened)
        return opened;
    result.setAside = result.groups.removeIf(
        [&](const MatchGroup &group) { return store.all().areAllApart(contentsOf(group, result.tracks)); });
    return {};
}

bool checkWholeLength(ScanResult &result, const ScanOptions &options, bool verbose)
{
    StatusLine status;
    WholeChecker checker(options.useCache ? AnalysisCache::defaultFilePath() : QString());
    connectLog(checker, status, verbose);
    connectResults(checker, status, result);
    QEventLoop loop;
    bool wasStopped = false;
    QObject::connect(&checker, &WholeChecker::finished, &loop, [&](bool stopped) {
        wasStopped = stopped;
        loop.quit();
    });
    const InterruptGuard guard(nullptr);
    QTimer interruption; // a signal handler must not call the checker
    QObject::connect(&interruption, &QTimer::timeout, &checker, [&] {
        if (guard.wasInterrupted())
            checker.stop();
    });
    constexpr std::chrono::milliseconds interval { 100 };
    interruption.start(interval);
    status.setPhase(QCoreApplication::translate("epr::Cli", "Checking whole files"));
    checker.check(checkItems(result));
    if (checker.isRunning())
        loop.exec();
    status.clear();
    return !wasStopped;
}

void writeTextReport(QTextStream &out, const ScanResult &result)
{
    for (const MatchGroup &group : result.groups)
        writeGroup(out, result.tracks, group);
    const ReviewTotals totals = totalsOf(result.tracks.size(), result.groups);
    if (result.groups.isEmpty())
        out << QCoreApplication::translate("epr::Cli", "Scanned %1 files - no duplicates found.").arg(totals.files);
    else
        out << QCoreApplication::translate("epr::Cli",
                                           "%1 files scanned - %2 duplicate groups - %3 redundant copies (%4).")
                   .arg(totals.files)
                   .arg(totals.groups)
                   .arg(totals.redundantCopies)
                   .arg(sizeText(totals.redundantBytes));
    if (result.setAside > 0)
        out << ' ' << setAsideText(result.setAside) << ' '
            << QCoreApplication::translate("epr::Cli", "--include-set-aside shows them.");
    if (result.unreadableFolders > 0)
        out << " (" << incompleteText(result.unreadableFolders) << ')';
    out << '\n';
}

} // namespace epr::terminal
