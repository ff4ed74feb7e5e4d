// SPDX-License-Identifier: GPL-3.0-or-later
//
// A boxed label of plain text and of the size that the form gives it, made for
// views with some hundred of them: it does not measure its text, and it fills
// its box, which a style strokes pixel by pixel.
#ifndef VIEWS_BOXEDLABEL_H
#define VIEWS_BOXEDLABEL_H

#include <QLabel>

class BoxedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit BoxedLabel(QWidget *parent = nullptr);

    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSizeHint() const override { return minimumSize(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

#endif
