// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cachedpixmap.h"

#include <QWidget>

namespace epr::vfd {

/// A time or number in seven-segment digits, as large as the widget allows. The segments that are off stay faintly
/// visible. Digits run left to right in every layout direction.
class SevenSegment final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit SevenSegment(QWidget *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] bool isDim() const { return m_isDim; }
    [[nodiscard]] QRectF digitArea() const; ///< what the digits are fitted into
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    void setText(const QString &text);
    void setDim(bool isDim); ///< digits of second rank: softer, and the dark segments fainter
    void setDigitHeight(int height); ///< the preferred one, in device-independent pixels

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QSize sizeFor(int digitHeight) const;
    void drawDigits(QPainter &painter) const;

    QString m_text;
    int m_digitHeight = 30;
    bool m_isDim = false;
    CachedPixmap m_picture;
};

} // namespace epr::vfd
