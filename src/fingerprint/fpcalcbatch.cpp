// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fpcalcbatch.h"

#include <QThread>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int maxInVain = 2; // shared processes in a row that were of no use: the files are all damaged, say
constexpr qint64 maxDeviationMs = 2000; // fpcalc tells whole seconds, and a second more or less for a broken header

bool isLine(QByteArrayView line, QByteArrayView key, QByteArrayView letters)
{
    if (!line.startsWith(key))
        return false;
    const QByteArrayView value = line.sliced(key.size()).trimmed();
    return std::ranges::all_of(value, [letters](char letter) { return letters.contains(letter); });
}

/// Where the result of one file at the beginning of the output ends: 0 = not yet, none = it begins with anything else.
std::optional<qsizetype> endOfResult(QByteArrayView output)
{
    const qsizetype first = output.indexOf('\n');
    if (first < 0)
        return 0;
    const qsizetype second = output.indexOf('\n', first + 1);
    if (!isLine(output.first(first), "DURATION=", "0123456789.")
        || (second > 0 && !isLine(output.first(second).sliced(first + 1), "FINGERPRINT=", "0123456789,")))
        return {};
    return second + 1;
}

} // namespace

FpcalcBatch::FpcalcBatch(QString tool, int seconds, const ToolTimeouts &timeouts, const std::atomic<bool> &leaveOff)
    : m_tool(std::move(tool))
    , m_seconds(std::max(seconds, 1))
    , m_timeouts(timeouts)
    , m_leaveOff(leaveOff)
{
}

bool FpcalcBatch::isToStop() const
{
    return m_leaveOff.load() || QThread::currentThread()->isInterruptionRequested();
}

ToolRun FpcalcBatch::callFor(const QStringList &paths) const
{
    ToolRun run = fpcalcRun(m_tool, paths, m_seconds, m_timeouts);
    run.leaveOff = &m_leaveOff;
    return run;
}

// The output does not say which file it is of. The n-th result is that of the n-th file only if the tool gives up at a
// file of which it has none, as 1.5.1 does; so it is given one, and must not get to the file behind that.
bool FpcalcBatch::stopsAtFailures(const QString &path) const
{
    const auto output = runTool(callFor({ path, path + "/none"_L1, path }));
    return !output && output.error().hasRefused && output.error().output.count("FINGERPRINT=") == 1;
}

// A result is sure when the next one follows, or a good end: alone, a file fails whose process ends badly after it. A
// message may be about the file before or behind it. Should the tool ever pass over a file without a word, the next
// one's length gives that away.
FpcalcBatch::Shared FpcalcBatch::share(const QList<FingerprintJob> &jobs, const Report &report)
{
    QStringList paths;
    for (const FingerprintJob &job : jobs)
        paths.append(job.path);
    qsizetype printed = 0;
    FpcalcResult unsure;
    ToolRun run = callFor(paths);
    run.take = [&](QByteArray &output) {
        for (;;) {
            const std::optional<qsizetype> end = endOfResult(output);
            if (end == 0)
                return true;
            const FpcalcResult next = parseFpcalcOutput(output.first(end.value_or(0)));
            if (next.fingerprint.isEmpty() || printed == jobs.size()
                || qAbs(next.durationMs - jobs.at(printed).durationMs) > maxDeviationMs)
                return false;
            if (printed > 0)
                report(unsure);
            unsure = next;
            ++printed;
            output.remove(0, *end);
        }
    };
    const tl::expected<QByteArray, ToolFailure> rest = runTool(run);
    const bool isAll = rest && rest->isEmpty() && printed == jobs.size();
    if (isAll)
        report(unsure);
    else if (rest)
        m_canShare = false;
    return { isAll || printed > 1, !isAll && printed > 0, !rest && rest.error().hasTimedOut };
}

qsizetype FpcalcBatch::run(const QList<FingerprintJob> &jobs, const Take &take)
{
    qsizetype done = 0;
    int inVain = 0;
    const auto report = [&](const FpcalcResult &result) { take(jobs.at(done++).id, result); };
    while (done < jobs.size() && !isToStop()) {
        const QList<FingerprintJob> left = jobs.sliced(done);
        const bool isTrial = !m_canShare && left.size() > 1;
        if (isTrial && stopsAtFailures(left.first().path))
            m_canShare = true;
        Shared shared;
        if (m_canShare.value_or(false) && left.size() > 1 && inVain < maxInVain) {
            shared = share(left, report);
            inVain = shared.isOfUse ? 0 : inVain + 1;
        }
        if (done == jobs.size() || isToStop())
            break;
        bool hangs = shared.hasTimedOut; // this file or, where this one has printed a result, the one behind it
        if (!hangs || shared.hasUnsure) {
            const FpcalcResult alone = runFpcalcTool(m_tool, jobs.at(done).path, m_seconds, m_timeouts);
            report(alone);
            hangs = hangs && alone.error.isEmpty();
            if (isTrial && !m_canShare && alone.error.isEmpty())
                m_canShare = false;
        }
        if (hangs && done < jobs.size())
            report({ {}, 0, u"fpcalc timed out"_s });
    }
    return done;
}

} // namespace epr
