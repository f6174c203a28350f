// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoding.h"

#include "analyser.h"
#include "fingerprintpool.h"
#include "mediabackend.h"

#include <QAudioBuffer>
#include <QtEndian>

#include <algorithm>
#include <span>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesPerSample = sizeof(float);
constexpr int maxReservedSeconds = 600; // beyond that the buffer grows with what really comes
constexpr int maxReservedRate = 48000; // Hz
constexpr qint64 longestFile = 43200; // seconds: 12 hours
constexpr qint64 outputFactor = 4; // timestamps that jump make ffmpeg write more than was asked for

QString toolName()
{
    return u"ffmpeg"_s;
}

// A playlist or a stream description under an audio file's name would have ffmpeg open the files and addresses in it,
// so it reads nothing but files, and of these only containers that hold their audio themselves.
const QString &containers()
{
    static const QString names =
        u"aac,ac3,aiff,amr,amrnb,amrwb,ape,asf,asf_o,au,avi,caf,dsf,dts,dtshd,eac3,flac,flv,gsm,iff,loas,matroska,mlp,"
        "mov,mp3,mpc,mpc8,mpeg,mpegts,nut,ogg,oma,qcp,rm,shn,sox,tak,truehd,tta,voc,w64,wav,wv,xwma"_s;
    return names;
}

QStringList arguments(const DecodeRequest &request)
{
    QStringList list = ffmpegInput(request.path);
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

qint64 maxBytes(const DecodeRequest &request)
{
    const qint64 seconds = request.seconds > 0 ? request.seconds * outputFactor : longestFile;
    return seconds * std::max(request.sampleRate, 0) * bytesPerSample;
}

QList<float> toSamples(const QByteArray &bytes)
{
    QList<float> samples(bytes.size() / bytesPerSample);
    qFromLittleEndian<float>(bytes.constData(), samples.size(), samples.data());
    return samples;
}

constexpr qint64 limitRate = 48000; // Hz

QString errorText(FileDecoding::End end, const QString &error)
{
    switch (end) {
    case FileDecoding::End::Impossible:
        return FingerprintWorker::tr("No audio decoder available");
    case FileDecoding::End::TimedOut:
        return FingerprintWorker::tr("Timed out decoding audio");
    default:
        return error;
    }
}

float scaled(quint8 value)
{
    return (static_cast<float>(value) - 128.0F) * 0.0078125F; // 1 / 2^7
}

float scaled(qint16 value)
{
    return static_cast<float>(value) * 3.0517578e-05F; // 1 / 2^15
}

float scaled(qint32 value)
{
    return static_cast<float>(value) * 4.656613e-10F; // 1 / 2^31
}

float scaled(float value)
{
    return value;
}

template <typename Sample> QList<float> scaledSamples(const QAudioBuffer &buffer)
{
    const std::span<const Sample> source(buffer.constData<Sample>(), static_cast<std::size_t>(buffer.sampleCount()));
    QList<float> samples(buffer.sampleCount());
    std::ranges::transform(source, samples.begin(), [](Sample sample) { return scaled(sample); });
    return samples;
}

} // namespace

QStringList ffmpegInput(const QString &path)
{
    return {
        u"-nostdin"_s, u"-loglevel"_s, u"error"_s, u"-protocol_whitelist"_s, u"file,pipe"_s, u"-format_whitelist"_s,
        containers(),  u"-i"_s,        path
    };
}

tl::expected<QList<float>, ToolFailure> decodeWithFfmpegTool(const QString &tool, const DecodeRequest &request,
                                                             const ToolTimeouts &timeouts)
{
    const tl::expected<QByteArray, ToolFailure> bytes = runTool({ .name = toolName(),
                                                                  .program = tool,
                                                                  .arguments = arguments(request),
                                                                  .timeouts = timeouts,
                                                                  .maxBytes = maxBytes(request),
                                                                  .writesAllTheTime = true,
                                                                  .expectedBytes = expectedBytes(request) });
    if (!bytes)
        return tl::unexpected(bytes.error());
    if (bytes->size() < bytesPerSample)
        return tl::unexpected(ToolFailure { u"ffmpeg produced no audio"_s, {}, true });
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
                      QString &error, bool *hasRefused)
{
    const QString tool = ffmpegPath();
    if (tool.isEmpty()) {
        error = u"ffmpeg not found"_s;
        return false;
    }
    const auto audio = decodeWithFfmpegTool(tool, { path, sampleRate, seconds }, toolTimeouts(seconds));
    error = audio ? QString() : audio.error().text;
    if (hasRefused != nullptr)
        *hasRefused = !audio && audio.error().hasRefused;
    if (!audio)
        return false;
    samples = *audio;
    durationMs = sampleRate > 0 ? samples.size() * 1000 / sampleRate : 0;
    return true;
}

QList<float> interleavedSamples(const QAudioBuffer &buffer)
{
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return scaledSamples<quint8>(buffer);
    case QAudioFormat::Int16:
        return scaledSamples<qint16>(buffer);
    case QAudioFormat::Int32:
        return scaledSamples<qint32>(buffer);
    case QAudioFormat::Float:
        return scaledSamples<float>(buffer);
    default:
        return {};
    }
}

QList<float> monoSamples(const QAudioBuffer &buffer)
{
    const int channels = buffer.format().channelCount();
    if (channels <= 0 || buffer.frameCount() <= 0)
        return {};
    const QList<float> samples = interleavedSamples(buffer);
    const float share = 1.0F / static_cast<float>(channels);
    QList<float> mono(samples.size() / channels);
    for (auto sample = samples.cbegin(); float &value : mono) {
        float sum = 0.0F;
        for (int channel = 0; channel < channels; ++channel)
            sum += *sample++;
        value = sum * share;
    }
    return mono;
}

QtDecodeLimits qtDecodeLimits(int seconds)
{
    return { seconds * limitRate, toolTimeouts(seconds).waitMs };
}

QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser)
{
    QtDecodeOutcome outcome;
    bool isStarted = false;
    const auto take = [&](const QAudioBuffer &buffer) {
        if (!buffer.isValid())
            return true;
        if (!std::exchange(isStarted, true))
            analyser.reset(buffer.format().sampleRate());
        const QList<float> samples = monoSamples(buffer);
        analyser.feed(samples.constData(), samples.size());
        outcome.frames += samples.size();
        return outcome.frames < limits.frames;
    };
    FileDecoding decoding(take, limits.watchdogMs);
    const FileDecoding::End end = decoding.run(path);
    outcome.durationMs = decoding.durationMs();
    outcome.error = errorText(end, decoding.error());
    return outcome;
}

void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error)
{
    const QtDecodeOutcome outcome = decodeWithQt(path, qtDecodeLimits(worker.seconds()), analyser);
    if (outcome.durationMs > 0)
        durationMs = outcome.durationMs;
    if (!outcome.error.isEmpty())
        error = outcome.error;
}

} // namespace epr
