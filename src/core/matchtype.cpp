// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matchtype.h"

#include <QCoreApplication>

#include <array>

namespace epr {

namespace {

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
