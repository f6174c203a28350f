// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ffmpeg.h"

#include "externaltool.h"

#include <QtEndian>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesPerSample = sizeof(float);
constexpr int maxReservedSeconds = 600; // beyond that the buffer grows with what really comes
constexpr int maxReservedRate = 48000; // Hz

QString toolName()
{
    return u"ffmpeg"_s;
}

QStringList arguments(const DecodeRequest &request)
{
    QStringList list { u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-i"_s, request.path };
    if (request.seconds > 0)
        list << u"-t"_s << QString::number(request.seconds);
    return list << u"-ac"_s << u"1"_s << u"-ar"_s << QString::number(request.sampleRate) << u"-f"_s << u"f32le"_s
                << u"-"_s;
}

qsizetype expectedBytes(const DecodeRequest &request)
{
    const qint64 seconds = std::clamp(request.seconds, 1, maxReservedSeconds);
    return static_cast<qsizetype>(seconds * std::clamp(request.sampleRate, 0, maxReservedRate) * bytesPerSample);
}

QList<float> toSamples(const QByteArray &bytes)
{
    QList<float> samples(bytes.size() / bytesPerSample);
    qFromLittleEndian<float>(bytes.constData(), samples.size(), samples.data());
    return samples;
}

} // namespace

Result<QList<float>> decodeWithFfmpegTool(const QString &tool, const DecodeRequest &request,
                                          const ToolTimeouts &timeouts)
{
    const Result<QByteArray> bytes = runTool({ .name = toolName(),
                                               .program = tool,
                                               .arguments = arguments(request),
                                               .timeouts = timeouts,
                                               .writesAllTheTime = true,
                                               .expectedBytes = expectedBytes(request) });
    if (!bytes)
        return failure(bytes.error());
    if (bytes->size() < bytesPerSample)
        return failure(u"ffmpeg produced no audio"_s);
    return toSamples(*bytes);
}

QString findFfmpeg()
{
    return findTool("EPR_FFMPEG", { u"ffmpeg/ffmpeg.exe"_s, u"ffmpeg.exe"_s, u"ffmpeg"_s }, toolName());
}

QString ffmpegPath()
{
    static ToolPath path(findFfmpeg);
    return path.get();
}

bool hasFfmpeg()
{
    return !ffmpegPath().isEmpty();
}

bool decodeWithFfmpeg(const QString &path, int sampleRate, int seconds, QList<float> &samples, qint64 &durationMs,
                      QString &error)
{
    const QString tool = ffmpegPath();
    if (tool.isEmpty()) {
        error = u"ffmpeg not found"_s;
        return false;
    }
    const Result<QList<float>> audio = decodeWithFfmpegTool(tool, { path, sampleRate, seconds }, toolTimeouts(seconds));
    error = audio ? QString() : audio.error();
    if (!audio)
        return false;
    samples = *audio;
    durationMs = sampleRate > 0 ? samples.size() * 1000 / sampleRate : 0;
    return true;
}

} // namespace epr
