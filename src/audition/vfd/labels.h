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

    QString text() const { return m_text; }
    bool isShortened() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void setText(const QString &text); ///< line breaks become spaces
    void setElideMode(Qt::TextElideMode mode);
    void setTone(Tone tone);
    void setAlignment(Qt::Alignment alignment);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString shownText() const;

    QString m_text;
    Qt::TextElideMode m_elideMode = Qt::ElideRight;
    Qt::Alignment m_alignment = Qt::AlignLeading | Qt::AlignVCenter;
    Tone m_tone = Tone::Bright;
};

/// A few letters in a fine frame: a format, a difference. Without text there is no frame.
class Badge final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit Badge(QWidget *parent = nullptr);

    QString text() const { return m_text; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void setText(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
};

} // namespace epr::vfd
