// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace epr::vfd {

/// One line of text, shortened with an ellipsis where it does not fit. Only then does it have the whole text as its
/// tool tip; a tool tip of its own comes otherwise.
class ElidingLabel final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    enum class Tone { Bright, Soft, Warning };

    explicit ElidingLabel(QWidget *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] bool isShortened() const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    void setText(const QString &text); ///< line breaks become spaces
    void setElideMode(Qt::TextElideMode mode);
    void setTone(Tone tone);
    void setAlignment(Qt::Alignment alignment);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QString shownText() const;

    QString m_text;
    Qt::TextElideMode m_elideMode = Qt::ElideRight;
    Qt::Alignment m_alignment = Qt::AlignLeading | Qt::AlignVCenter;
    Tone m_tone = Tone::Bright;
};

} // namespace epr::vfd
