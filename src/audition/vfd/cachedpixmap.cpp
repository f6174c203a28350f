// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cachedpixmap.h"

#include <QPainter>
#include <QWidget>

#include <cmath>

namespace epr::vfd {

namespace {

QSize deviceSizeOf(const QWidget &widget)
{
    const QSizeF size = QSizeF(widget.size()) * widget.devicePixelRatioF();
    return QSize(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
}

} // namespace

void CachedPixmap::invalidate()
{
    m_pixmap = QPixmap();
}

const QPixmap &CachedPixmap::pictureFor(const QWidget &widget, const Draw &draw)
{
    const QSize size = deviceSizeOf(widget);
    const qreal ratio = widget.devicePixelRatioF();
    if (m_pixmap.size() == size && qFuzzyCompare(m_pixmap.devicePixelRatio(), ratio))
        return m_pixmap;
    m_pixmap = QPixmap(size);
    if (m_pixmap.isNull())
        return m_pixmap;
    m_pixmap.setDevicePixelRatio(ratio);
    m_pixmap.fill(Qt::transparent);
    QPainter painter(&m_pixmap);
    draw(painter);
    return m_pixmap;
}

} // namespace epr::vfd
