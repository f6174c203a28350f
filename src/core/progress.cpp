// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "progress.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

constexpr int fewestSteps = 20;
constexpr qint64 shortestMs = 2000;
constexpr qint64 windowMs = 30000;
constexpr qint64 spacingMs = 250; // reports closer than this replace one another

QString remainingText(qint64 remainingMs)
{
    const auto minutes = static_cast<int>(std::min<qint64>((remainingMs + 30000) / 60000, qint64 { 100 } * 24 * 60));
    if (minutes < 1)
        return QCoreApplication::translate("epr::ProgressEstimate", "less than a minute left");
    if (minutes < 60)
        return QCoreApplication::translate("epr::ProgressEstimate", "about %n minute(s) left", nullptr, minutes);
    return QCoreApplication::translate("epr::ProgressEstimate", "about %1 h %2 min left")
        .arg(minutes / 60)
        .arg(minutes % 60);
}

} // namespace

QString ScanStep::text() const
{
    if (number < 1)
        return {};
    return QCoreApplication::translate("epr::ProgressEstimate", "step %1 of %2").arg(number).arg(count);
}

// Comparing has no pace before it begins, but it is short beside decoding, for which an allowance will do. Where it
// would be the larger part of the figure there is none.
std::optional<qint64> ScanStep::timeLeftMs(std::optional<qint64> ownMs) const
{
    constexpr qint64 allowanceMs = 1; // for each file
    const qint64 comparingMs = toCompare * allowanceMs;
    if (!ownMs || hasUnknownPace || comparingMs > *ownMs)
        return std::nullopt;
    return *ownMs + comparingMs;
}

void ProgressEstimate::add(int done, int total, qint64 nowMs)
{
    if (total != m_total || done < m_latest.done) // another piece of work
        restart();
    m_total = total;
    m_latest = { done, nowMs };
    if (m_reports.empty() || nowMs - m_reports.back().timeMs >= spacingMs)
        m_reports.push_back(m_latest);
    while (m_reports.size() > 2 && nowMs - m_reports[1].timeMs >= windowMs)
        m_reports.pop_front();
}

void ProgressEstimate::restart()
{
    m_reports.clear();
    m_latest = {};
    m_total = 0;
}

std::optional<double> ProgressEstimate::perSecond() const
{
    if (m_total < fewestSteps || m_reports.empty() || m_latest.timeMs - m_reports.front().timeMs < shortestMs)
        return std::nullopt;
    const Report &first = m_reports.front();
    return (m_latest.done - first.done) * 1000.0 / static_cast<double>(m_latest.timeMs - first.timeMs);
}

std::optional<qint64> ProgressEstimate::remainingMs() const
{
    const std::optional<double> rate = perSecond();
    if (!rate || *rate <= 0)
        return std::nullopt;
    return std::llround(std::max(0, m_total - m_latest.done) * 1000.0 / *rate);
}

QString ProgressEstimate::text(std::optional<qint64> leftMs) const
{
    const double rate = perSecond().value_or(0);
    if (rate <= 0)
        return {};
    const QString number = QLocale().toString(rate, 'f', rate < 10 ? 1 : 0);
    if (!leftMs)
        return QCoreApplication::translate("epr::ProgressEstimate", "%1 per second").arg(number);
    return QCoreApplication::translate("epr::ProgressEstimate", "%1 per second, %2")
        .arg(number, remainingText(*leftMs));
}

} // namespace epr
