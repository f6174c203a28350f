// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vfdpaint.h"

#include <QWidget>

#include <array>

namespace epr::vfd {

/// Two bars of segments, left above right. A bar rises at once and falls by a fixed part per call, with the highest
/// segment of late held for some calls; so what it shows depends on the calls alone and not on a clock.
class LevelMeter final : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeter(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void setLevels(float left, float right); ///< each a part of the full bar, from 0 to 1
    void reset(); ///< dark at once

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    struct Bar {
        float level = 0;
        float peak = 0;
        int callsToHold = 0;

        bool operator==(const Bar &) const = default;

        void follow(float newLevel);
    };

    QRectF segmentBox(int bar, int segment) const;
    void drawLabels(QPainter &painter) const;
    void drawSegments(QPainter &painter, bool isLit) const;
    void paintBar(QPainter &painter, int bar, const QPixmap &lit) const;

    std::array<Bar, 2> m_bars;
    CachedPixmap m_dark;
    CachedPixmap m_lit;
};

} // namespace epr::vfd
