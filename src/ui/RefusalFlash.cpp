// SPDX-License-Identifier: MIT
#include "ui/RefusalFlash.h"

#include <QPainter>

namespace
{
constexpr QRgb borderColor = 0xffbb6600;
constexpr int borderWidth = 2;
} // namespace

RefusalFlash::RefusalFlash(QWidget *window)
    : QWidget(window)
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("refusalFlash"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    m_timer->setSingleShot(true);
    m_timer->setInterval(durationMs);
    connect(m_timer, &QTimer::timeout, this, &QWidget::hide);
}

void RefusalFlash::flashOver(const QWidget *target)
{
    setGeometry(QRect(target->mapTo(parentWidget(), QPoint()), target->size()));
    raise();
    show();
    m_timer->start();
}

void RefusalFlash::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect inner = rect().adjusted(borderWidth, borderWidth, -borderWidth, -borderWidth);
    painter.setClipRegion(QRegion(rect()).subtracted(inner));
    painter.fillRect(rect(), QColor(borderColor));
}
