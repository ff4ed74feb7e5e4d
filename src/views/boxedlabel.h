// SPDX-License-Identifier: GPL-3.0-or-later
//
// A boxed label of plain text and of the size that the form gives it, made for
// views with some hundred of them: it measures its text only when it paints it,
// and it fills its box, which a style strokes pixel by pixel. What does not fit
// is in smaller type; what could not be read then is cut with an ellipsis and
// stands whole in a tool tip.
#ifndef VIEWS_BOXEDLABEL_H
#define VIEWS_BOXEDLABEL_H

#include <QLabel>

#include "views/fittedtext.h"

class BoxedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit BoxedLabel(QWidget *parent = nullptr);

    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSizeHint() const override { return minimumSize(); }

    // Width of a label that shows the text in its own type.
    static int width_for(const QFont &font, const QString &text);
    // The text as it is painted at the present size.
    FittedText shown() const;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRect text_place() const;
};

#endif
