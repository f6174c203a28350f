// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

class QWidget;

namespace epr::vfd {

class Scrubber;

/// Makes the widgets of this folder known to assistive technology: the scrubber as a slider, those with a text as that
/// text. May be called any number of times.
void installAccessibility();

void announceText(QWidget *widget);
void announceValue(Scrubber *scrubber, qint64 positionMs);

} // namespace epr::vfd
