// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/boxedlabel.h"

#include <QPainter>
#include <QStyle>

namespace
{

constexpr int PADDING = 3; // pixels between box and text

} // namespace

BoxedLabel::BoxedLabel(QWidget *parent) : QLabel(parent)
{
    setFrameShape(QFrame::Box);
    setTextFormat(Qt::PlainText);
}

void BoxedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor line = palette().color(foregroundRole());
    const int right = width() - 1;
    const int bottom = height() - 1;
    painter.fillRect(0, 0, width(), 1, line);
    painter.fillRect(0, bottom, width(), 1, line);
    painter.fillRect(0, 0, 1, height(), line);
    painter.fillRect(right, 0, 1, height(), line);
    style()->drawItemText(&painter, contentsRect().adjusted(PADDING, 0, -PADDING, 0),
                          static_cast<int>(alignment()), palette(), isEnabled(), text(),
                          foregroundRole());
}
