// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPixmap>

#include <functional>

class QPainter;
class QWidget;

namespace epr::vfd {

/// A picture as large as a widget, in device pixels, kept until the widget's size or device pixel ratio changes or the
/// owner throws it away.
class CachedPixmap final {
public:
    using Draw = std::function<void(QPainter &painter)>;

    void invalidate();

    /// Draws if need be, on a transparent ground and in the widget's coordinates. A widget without area has no picture.
    const QPixmap &pictureFor(const QWidget &widget, const Draw &draw);

private:
    QPixmap m_pixmap;
};

} // namespace epr::vfd
