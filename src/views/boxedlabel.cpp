// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/boxedlabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace
{

constexpr int PADDING = 3;      // pixels between box and text
constexpr qreal SMALLEST = 6.0; // points that can still be read
constexpr int TIP_LINE = 60;    // characters; a tool tip does not break a number

QString in_lines(const QString &text)
{
    QStringList lines;
    for (int start = 0; start < text.size(); start += TIP_LINE)
        lines += text.mid(start, TIP_LINE);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

BoxedLabel::BoxedLabel(QWidget *parent) : QLabel(parent)
{
    setFrameShape(QFrame::Box);
    setTextFormat(Qt::PlainText);
}

int BoxedLabel::width_for(const QFont &font, const QString &text)
{
    return QFontMetrics(font).horizontalAdvance(text) + 2 * (PADDING + 1);
}

QRect BoxedLabel::text_place() const
{
    return contentsRect().adjusted(PADDING, 0, -PADDING, 0);
}

FittedText BoxedLabel::shown() const
{
    return fitted_text(font(), text(), text_place().width(), SMALLEST);
}

bool BoxedLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || !shown().cut)
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), in_lines(text().trimmed()),
                       this);
    return true;
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
    const FittedText fitted = shown();
    painter.setFont(fitted.font);
    style()->drawItemText(&painter, text_place(), static_cast<int>(alignment()), palette(),
                          isEnabled(), fitted.text, foregroundRole());
}
