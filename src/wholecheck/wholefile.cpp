// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wholefile.h"

#include "decoding.h"
#include "mediabackend.h"
#include "textfile.h"

#include <QAudioBuffer>
#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 longestFile = 43200; // seconds: 12 hours
constexpr int mostChannels = 64;
constexpr int highestRate = 3072000; // Hz

/// The sound as ffmpeg writes it into a pipe: a Sun audio file of unknown length, whose samples are big-endian floats.
class SoundStream final {
public:
    /// Takes what is complete away from the front. False for what is no such stream, or one without end.
    bool take(QByteArray &unread);

    [[nodiscard]] std::optional<SoundProfiler> &profiler() { return m_profiler; }

private:
    bool takeHeader(QByteArray &unread);

    qsizetype m_frameBytes = 0;
    qint64 m_mostFrames = 0;
    std::vector<float> m_samples;
    std::optional<SoundProfiler> m_profiler;
};

bool SoundStream::take(QByteArray &unread)
{
    if (!m_profiler && !takeHeader(unread))
        return false;
    if (!m_profiler)
        return true;
    const qsizetype bytes = unread.size() / m_frameBytes * m_frameBytes;
    m_samples.resize(static_cast<std::size_t>(bytes) / sizeof(float));
    qFromBigEndian<float>(unread.constData(), static_cast<qsizetype>(m_samples.size()), m_samples.data());
    std::ranges::replace_if(
        m_samples, [](float sample) { return !std::isfinite(sample); }, 0.0F);
    m_profiler->feed(m_samples);
    unread.remove(0, bytes);
    return m_profiler->frames() <= m_mostFrames;
}

// Magic, where the samples begin, their number, their kind, rate and channels, 32 bits each.
bool SoundStream::takeHeader(QByteArray &unread)
{
    constexpr qsizetype fields = 24;
    constexpr quint32 longestHeader = 65536;
    constexpr quint32 floats = 6;
    if (unread.size() < fields)
        return true;
    const auto field = [&unread](qsizetype index) { return qFromBigEndian<quint32>(unread.constData() + 4 * index); };
    const quint32 begin = field(1);
    const quint32 rate = field(4);
    const quint32 channels = field(5);
    if (!unread.startsWith(".snd") || begin < fields || begin > longestHeader || field(3) != floats || rate < 1
        || rate > highestRate || channels < 1 || channels > mostChannels)
        return false;
    if (unread.size() < static_cast<qsizetype>(begin))
        return true;
    unread.remove(0, begin);
    m_frameBytes = qsizetype { channels } * static_cast<qsizetype>(sizeof(float));
    m_mostFrames = longestFile * rate;
    m_profiler.emplace(static_cast<int>(channels), static_cast<int>(rate));
    return true;
}

QString failedText(const QString &reason)
{
    return QCoreApplication::translate("epr::WholeChecker", "The sound could not be decoded: %1").arg(reason);
}

Result<SoundProfile> finished(std::optional<SoundProfiler> &profiler)
{
    if (!profiler || profiler->frames() == 0)
        return failure(QCoreApplication::translate("epr::WholeChecker", "There is no sound in this file."));
    return profiler->finish();
}

Result<SoundProfile> decodedByFfmpeg(const QString &path, const std::atomic<bool> &stop)
{
    constexpr qint64 mostPending = 1 << 24; // bytes
    SoundStream stream;
    QByteArray messages;
    ToolRun run { .name = u"ffmpeg"_s,
                  .program = ffmpegPath(),
                  .arguments = ffmpegInput(path)
                      + QStringList { u"-vn"_s, u"-map_metadata"_s, u"-1"_s, u"-c:a"_s, u"pcm_f32be"_s, u"-f"_s,
                                      u"au"_s, u"-"_s },
                  .timeouts = toolTimeouts(0),
                  .maxBytes = mostPending,
                  .writesAllTheTime = true,
                  .leaveOff = &stop,
                  .take = [&stream](QByteArray &unread) { return stream.take(unread); },
                  .messages = &messages,
                  .isLowPriority = true };
    if (const auto output = runTool(run); !output)
        return failure(failedText(output.error().text));
    Result<SoundProfile> profile = finished(stream.profiler());
    if (profile)
        profile->measures.decodingErrors = static_cast<qint32>(messages.count('\n'));
    return profile;
}

Result<SoundProfile> decodedByQt(const QString &path, const std::atomic<bool> &stop)
{
    constexpr int lookMs = 100;
    constexpr int watchdogMs = 12 * 60 * 60 * 1000;
    std::optional<SoundProfiler> profiler;
    const auto take = [&](const QAudioBuffer &buffer) {
        const int channels = buffer.format().channelCount();
        const int rate = buffer.format().sampleRate();
        if (!profiler && channels > 0 && rate > 0)
            profiler.emplace(channels, rate);
        if (profiler)
            profiler->feed(interleavedSamples(buffer));
        return !stop;
    };
    FileDecoding decoding(take, watchdogMs);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &decoding, [&] {
        if (stop)
            decoding.end();
    });
    look.start(lookMs);
    const FileDecoding::End end = decoding.run(path);
    if (end != FileDecoding::End::Complete)
        return failure(failedText(decoding.error()));
    return finished(profiler);
}

} // namespace

Result<SoundProfile> profileOfFile(const QString &path, const std::atomic<bool> &stop)
{
    if (looksLikeText(path))
        return failure(QCoreApplication::translate("epr::WholeChecker", "This file is a text, not audio."));
    return hasFfmpeg() ? decodedByFfmpeg(path, stop) : decodedByQt(path, stop);
}

} // namespace epr
