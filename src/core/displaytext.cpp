// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "displaytext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString twoDigits(qint64 value)
{
    return u"%1"_s.arg(value, 2, 10, QLatin1Char('0'));
}

QString channelText(qint32 channels)
{
    switch (channels) {
    case 1:
        return QCoreApplication::translate("epr::TrackInfo", "mono");
    case 2:
        return QCoreApplication::translate("epr::TrackInfo", "stereo");
    default:
        return QCoreApplication::translate("epr::TrackInfo", "%1 ch").arg(channels);
    }
}

struct MatchText {
    const char *label;
    const char *explanation;
};

constexpr std::array<MatchText, 4> matchTexts { {
    { QT_TRANSLATE_NOOP("epr::MatchType", "Identical file"),
      QT_TRANSLATE_NOOP("epr::MatchType", "Byte-for-byte identical copies. Safe to remove all but one.") },
    { QT_TRANSLATE_NOOP("epr::MatchType", "Same audio, different tags"),
      QT_TRANSLATE_NOOP(
          "epr::MatchType",
          "The audio data is identical; only tags or artwork differ. Keep the copy with the best metadata.") },
    { QT_TRANSLATE_NOOP("epr::MatchType", "Same recording"),
      QT_TRANSLATE_NOOP("epr::MatchType",
                        "Acoustically the same recording, encoded differently. Keep the highest quality copy.") },
    { QT_TRANSLATE_NOOP("epr::MatchType", "Same song (metadata)"),
      QT_TRANSLATE_NOOP(
          "epr::MatchType",
          "Artist, title and duration agree. Review before removing - these may be legitimately different "
          "versions.") },
} };

const MatchText *textOf(MatchType type)
{
    const auto index = static_cast<qint32>(type);
    return index >= 0 && index < static_cast<qint32>(matchTexts.size()) ? &matchTexts[static_cast<std::size_t>(index)]
                                                                        : nullptr;
}

} // namespace

QString displayTitle(const TrackInfo &track)
{
    return track.tags.title.isEmpty() ? QFileInfo(track.fileName).completeBaseName() : track.tags.title;
}

QString displayArtist(const TrackInfo &track)
{
    if (!track.tags.artist.isEmpty())
        return track.tags.artist;
    if (!track.tags.albumArtist.isEmpty())
        return track.tags.albumArtist;
    return QCoreApplication::translate("epr::TrackInfo", "(unknown artist)");
}

QString qualityText(const TrackInfo &track)
{
    QStringList pieces;
    if (track.stream.bitrateKbps > 0)
        pieces << QCoreApplication::translate("epr::TrackInfo", "%1 kbps").arg(track.stream.bitrateKbps);
    if (track.stream.sampleRate > 0) {
        pieces << QCoreApplication::translate("epr::TrackInfo", "%1 kHz")
                      .arg(QLocale().toString(track.stream.sampleRate / 1000.0, 'g', 6));
    }
    if (track.stream.channels > 0)
        pieces << channelText(track.stream.channels);
    return pieces.join(", "_L1);
}

QString durationText(qint64 durationMs)
{
    if (durationMs < 1)
        return u"-"_s;
    const qint64 seconds = durationMs / 1000;
    if (durationMs < 3600000)
        return u"%1:%2"_s.arg(seconds / 60).arg(twoDigits(seconds % 60));
    return positionText(durationMs);
}

QString durationText(const StreamFacts &stream)
{
    const QString text = durationText(stream.durationMs);
    return stream.durationIsGuess ? QCoreApplication::translate("epr::TrackInfo", "~%1").arg(text) : text;
}

QString durationExplanation(const StreamFacts &stream)
{
    return stream.durationIsGuess ? QCoreApplication::translate(
               "epr::TrackInfo", "A guess from the beginning of the file, which does not say how long it is.")
                                  : QString();
}

QString lengthText(qint64 ms)
{
    if (ms >= 60000)
        return durationText(ms);
    return QCoreApplication::translate("epr::MatchType", "%1 s")
        .arg(QLocale().toString(static_cast<double>(ms) / 1000, 'f', ms < 10000 ? 1 : 0));
}

QString positionText(qint64 positionMs)
{
    const qint64 seconds = std::max<qint64>(positionMs, 0) / 1000;
    return u"%1:%2:%3"_s.arg(seconds / 3600).arg(twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
}

QString countText(qint64 count)
{
    return QLocale().toString(count);
}

QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 2, QLocale::DataSizeTraditionalFormat);
}

QString dateTimeText(const QDateTime &time)
{
    return QLocale().toString(time.toLocalTime(),
                              QCoreApplication::translate("epr::ResultsModel", "d MMM yyyy h:mm ap"));
}

QString folderOf(const TrackInfo &track)
{
    return QFileInfo(track.path).absolutePath();
}

QString nativePath(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString withReason(const QString &message, const QString &reason)
{
    return reason.isEmpty() ? message : message + ": "_L1 + reason;
}

QString matchTypeLabel(MatchType type)
{
    const MatchText *text = textOf(type);
    return QCoreApplication::translate("epr::MatchType",
                                       text ? text->label : QT_TRANSLATE_NOOP("epr::MatchType", "Unmatched"));
}

QString matchTypeExplanation(MatchType type)
{
    const MatchText *text = textOf(type);
    return text ? QCoreApplication::translate("epr::MatchType", text->explanation) : QString();
}

} // namespace epr
