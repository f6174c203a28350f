// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace epr {

/// Fusion with outlines that can be seen. Its own are darker than the window, so that on a dark one an empty check box
/// is a black spot on black, and the tick is what decides over a file here.
class OutlineStyle final : public QProxyStyle {
    Q_OBJECT

public:
    OutlineStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};

} // namespace epr
