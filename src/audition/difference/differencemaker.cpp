// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "differencemaker.h"

#include "backgroundwork.h"
#include "decoding.h"
#include "externaltool.h"
#include "result.h"
#include "subtraction.h"
#include "textfile.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QFile>
#include <QScopeGuard>
#include <QStorageInfo>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <cmath>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 frameBytes = 2 * sizeof(float);

/// Stereo floats, in a temporary file that is mapped into memory.
class DecodedSound final {
public:
    explicit DecodedSound(const QString &folder)
        : m_file(folder + u"/sound-XXXXXX"_s)
    {
    }

    /// An error, or nothing.
    QString decode(const QString &path, int sampleRate, const std::atomic<bool> &stop);

    [[nodiscard]] StereoSound sound() const { return { m_samples, m_count }; }

private:
    bool take(QByteArray &unread, qint64 mostBytes);

    QTemporaryFile m_file;
    const float *m_samples = nullptr;
    std::size_t m_count = 0;
    bool m_isTooLong = false;
    bool m_isWritten = true;
};

bool DecodedSound::take(QByteArray &unread, qint64 mostBytes)
{
    constexpr qint64 leastRoom = 1 << 28; // bytes, for others who use the drive
    m_isWritten = QStorageInfo(m_file.fileName()).bytesAvailable() > leastRoom && m_file.write(unread) == unread.size();
    unread.clear();
    m_isTooLong = m_file.pos() > mostBytes;
    return m_isWritten && !m_isTooLong;
}

QString DecodedSound::decode(const QString &path, int sampleRate, const std::atomic<bool> &stop)
{
    constexpr qint64 mostPending = 1 << 24; // bytes
    if (looksLikeText(path))
        return DifferenceMaker::tr("This file is a text, not audio.");
    if (!m_file.open())
        return m_file.errorString();
    const qint64 mostBytes = DifferenceMaker::longestSeconds * sampleRate * frameBytes;
    QByteArray messages;
    const auto output = runTool({ .name = u"ffmpeg"_s,
                                  .program = ffmpegPath(),
                                  .arguments = ffmpegInput(path)
                                      + QStringList { u"-vn"_s, u"-ac"_s, u"2"_s, u"-ar"_s, QString::number(sampleRate),
                                                      u"-f"_s, u"f32le"_s, u"-"_s },
                                  .timeouts = toolTimeouts(0),
                                  .maxBytes = mostPending,
                                  .writesAllTheTime = true,
                                  .leaveOff = &stop,
                                  .take = [&](QByteArray &unread) { return take(unread, mostBytes); },
                                  .messages = &messages });
    if (m_isTooLong)
        return DifferenceMaker::tr("The difference of files of more than %n minute(s) is not made.", nullptr,
                                   static_cast<int>(DifferenceMaker::longestSeconds / 60));
    if (!m_isWritten || !m_file.flush())
        return DifferenceMaker::tr("There is no room for the temporary files of the difference.");
    if (!output)
        return output.error().text;
    const qint64 frames = m_file.size() / frameBytes;
    m_samples = frames > 0 ? reinterpret_cast<const float *>(m_file.map(0, frames * frameBytes)) : nullptr;
    m_count = m_samples ? static_cast<std::size_t>(2 * frames) : 0;
    return m_samples ? QString() : DifferenceMaker::tr("There is no sound in this file.");
}

QByteArray waveHeader(int sampleRate, qint64 frames)
{
    constexpr quint32 headerBytes = 44;
    constexpr quint16 bytes = 4; // of a frame: two channels of 16 bits
    const auto dataBytes = static_cast<quint32>(frames * bytes);
    QByteArray header;
    QDataStream stream(&header, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(headerBytes - 8 + dataBytes);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(2) << quint32(sampleRate) << quint32(sampleRate * bytes) << bytes
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << dataBytes;
    return header;
}

QByteArray sixteenBits(const std::vector<float> &samples)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    for (const float sample : samples)
        stream << static_cast<qint16>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767));
    return bytes;
}

/// How loud the difference is, relative to A, in dB.
Result<double> writeDifference(const QString &target, StereoSound a, StereoSound b, const Subtraction &how,
                               int sampleRate, const std::atomic<bool> &stop)
{
    const auto frames = static_cast<qint64>(a.size() / 2);
    QFile file(target);
    bool isWritten = file.open(QIODevice::WriteOnly) && file.write(waveHeader(sampleRate, frames)) > 0;
    Subtractor subtractor(a, b, how);
    for (qint64 at = 0; at < frames && isWritten && !stop; at += sampleRate)
        isWritten = file.write(sixteenBits(subtractor.difference(at, sampleRate))) > 0;
    if (!isWritten || !file.flush())
        return failure(file.errorString());
    return subtractor.remainderDb();
}

} // namespace

/// Lives on the maker's thread.
class DifferenceWorker final : public QObject {
    Q_OBJECT

public:
    explicit DifferenceWorker(std::shared_ptr<std::atomic<bool>> isDecoding)
        : m_isDecoding(std::move(isDecoding))
    {
    }

    void make(const DifferenceMaker::Order &order)
    {
        const Result<double> remainder = made(order);
        Q_EMIT done(order, remainder.value_or(0), remainder ? QString() : remainder.error());
    }

Q_SIGNALS:
    void done(const epr::DifferenceMaker::Order &order, double remainderDb, const QString &error);

private:
    Result<double> made(const DifferenceMaker::Order &order)
    {
        constexpr int usualRate = 44100; // Hz
        constexpr int highestRate = 96000;
        const auto &[paths, rates, offsetMs] = order.request;
        const int known = std::max(rates.a, rates.b);
        const int rate = known > 0 ? std::min(known, highestRate) : usualRate;
        const QString folder = order.target.section(u'/', 0, -2);
        PerDeck<DecodedSound> sounds { DecodedSound(folder), DecodedSound(folder) };
        for (const Deck deck : bothDecks) {
            *m_isDecoding = true; // before the question, so that whoever has stopped this and waits never comes between
            const auto closed = qScopeGuard([this] { *m_isDecoding = false; });
            const QString error = *order.stop ? u" "_s : sounds[deck].decode(paths[deck], rate, *order.stop);
            if (!error.isEmpty())
                return failure(error);
        }
        const double lag = static_cast<double>(offsetMs) * rate / 1000;
        const Result<Subtraction> how = findSubtraction(sounds.a.sound(), sounds.b.sound(), rate, lag, *order.stop);
        if (!how)
            return failure(how.error());
        return writeDifference(order.target, sounds.a.sound(), sounds.b.sound(), *how, rate, *order.stop);
    }

    std::shared_ptr<std::atomic<bool>>
        m_isDecoding; ///< shared, because a thread that cannot be joined outlives its maker
};

DifferenceMaker::DifferenceMaker(QObject *parent)
    : QObject(parent)
    , m_worker(new DifferenceWorker(m_isDecoding))
    , m_thread(createWorkerThread(u"epr-difference"_s, m_worker, this))
{
    connect(this, &DifferenceMaker::requested, m_worker, &DifferenceWorker::make, Qt::QueuedConnection);
    connect(m_worker, &DifferenceWorker::done, this, &DifferenceMaker::takeResult, Qt::QueuedConnection);
    m_thread->start();
}

DifferenceMaker::~DifferenceMaker()
{
    cancel();
    m_thread->requestInterruption();
    m_thread->quit();
    waitOrLeave(m_thread);
}

void DifferenceMaker::request(const DifferenceRequest &request)
{
    cancel();
    if (!hasFfmpeg()) {
        Q_EMIT failed(tr("The difference can be heard only with ffmpeg installed."));
    } else {
        if (!m_folder)
            m_folder.emplace();
        m_order = { request, m_folder->filePath(u"difference-%1.wav"_s.arg(++m_count)),
                    std::make_shared<std::atomic<bool>>(false) };
        Q_EMIT requested(m_order, {});
    }
}

void DifferenceMaker::cancel()
{
    if (!m_order.stop)
        return;
    *m_order.stop = true;
    QFile::remove(m_order.target);
    m_order = {};
}

bool DifferenceMaker::awaitClosed() const
{
    constexpr int lookMs = 5;
    const QDeadlineTimer deadline(1000);
    while (*m_isDecoding && !deadline.hasExpired())
        QThread::msleep(lookMs);
    return !*m_isDecoding;
}

void DifferenceMaker::takeResult(const Order &order, double remainderDb, const QString &error)
{
    if (*order.stop)
        QFile::remove(order.target);
    else if (error.isEmpty())
        Q_EMIT made(order.target, remainderDb);
    else
        Q_EMIT failed(error);
}

} // namespace epr

#include "differencemaker.moc"
