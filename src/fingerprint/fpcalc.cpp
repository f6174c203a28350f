// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fpcalc.h"

#include "externaltool.h"

#include <algorithm>
#include <charconv>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView durationKey = "DURATION=";
constexpr QByteArrayView fingerprintKey = "FINGERPRINT=";
constexpr qint64 maxWordBytes = 1024; // of each second; eight words of up to eleven letters are usual
constexpr qint64 maxOtherBytes = 65536;
constexpr double maxDurationMs = 9.2e18; // just below what 63 bits hold; catches infinities and, negated, NaN

QString toolName()
{
    return u"fpcalc"_s;
}

template <typename Take> void splitAt(char separator, QByteArrayView text, Take take)
{
    for (;;) {
        const qsizetype end = text.indexOf(separator);
        if (end < 0)
            return take(text);
        take(text.first(end));
        text = text.sliced(end + 1);
    }
}

qint64 durationMs(QByteArrayView seconds)
{
    const double ms = seconds.trimmed().toDouble() * 1000.0; // unreadable text reads as 0
    return ms > -maxDurationMs && ms < maxDurationMs ? static_cast<qint64>(ms) : 0;
}

// Not Qt's conversion, which takes signs.
void appendWord(QByteArrayView text, QList<quint32> &words)
{
    const QByteArrayView digits = text.trimmed();
    const char *const end = digits.data() + digits.size();
    quint32 word = 0;
    const auto [stop, failure] = std::from_chars(digits.data(), end, word);
    if (failure == std::errc() && stop == end)
        words.append(word);
}

void appendWords(QByteArrayView list, QList<quint32> &words)
{
    words.reserve(words.size() + std::count(list.begin(), list.end(), ',') + 1);
    splitAt(',', list, [&words](QByteArrayView piece) { appendWord(piece, words); });
}

// Some versions (1.5.1, say) fail on every file that ends before the length they were asked for, and say how long it is
// all the same: in whole seconds, of which the last may be short of some samples. 0 = asking again is no use.
int lengthToAskAgain(const ToolFailure &why, int asked)
{
    const qint64 seconds = parseFpcalcOutput(why.output).durationMs / 1000;
    const bool isShort = why.hasRefused && seconds > 0 && seconds <= asked && asked > 1;
    return isShort ? static_cast<int>(std::max<qint64>(seconds - 1, 1)) : 0;
}

} // namespace

FpcalcResult parseFpcalcOutput(QByteArrayView output)
{
    FpcalcResult result;
    splitAt('\n', output, [&result](QByteArrayView line) {
        if (line.startsWith(durationKey))
            result.durationMs = durationMs(line.sliced(durationKey.size()));
        else if (line.startsWith(fingerprintKey))
            appendWords(line.sliced(fingerprintKey.size()), result.fingerprint);
    });
    return result;
}

ToolRun fpcalcRun(const QString &tool, const QStringList &paths, int seconds, const ToolTimeouts &timeouts)
{
    return { .name = toolName(),
             .program = tool,
             .arguments = QStringList { u"-raw"_s, u"-length"_s, QString::number(seconds) } + paths,
             .timeouts = timeouts,
             .maxBytes = seconds * maxWordBytes + maxOtherBytes };
}

FpcalcResult runFpcalcTool(const QString &tool, const QString &path, int seconds, const ToolTimeouts &timeouts)
{
    const auto run = [&](int length) { return runTool(fpcalcRun(tool, { path }, length, timeouts)); };
    const int asked = std::max(seconds, 1);
    tl::expected<QByteArray, ToolFailure> output = run(asked);
    if (const int length = output ? 0 : lengthToAskAgain(output.error(), asked); length > 0)
        output = run(length);
    if (!output)
        return { {}, 0, output.error().text };
    FpcalcResult result = parseFpcalcOutput(*output);
    if (result.fingerprint.isEmpty())
        result.error = u"fpcalc produced no fingerprint"_s;
    return result;
}

QString findFpcalc()
{
    return findTool("EPR_FPCALC", { u"fpcalc.exe"_s, u"fpcalc"_s }, toolName());
}

QString fpcalcPath()
{
    static ToolPath path(findFpcalc);
    return path.get();
}

bool hasFpcalc()
{
    return !fpcalcPath().isEmpty();
}

FpcalcResult runFpcalc(const QString &path, int seconds)
{
    const QString tool = fpcalcPath();
    if (tool.isEmpty())
        return { {}, 0, u"fpcalc not found"_s };
    return runFpcalcTool(tool, path, seconds, toolTimeouts(seconds));
}

} // namespace epr
