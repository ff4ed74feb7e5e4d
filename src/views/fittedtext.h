// SPDX-License-Identifier: GPL-3.0-or-later
//
// One line of text made to fit: in smaller type first, and cut only when that
// could no longer be read.
#ifndef VIEWS_FITTEDTEXT_H
#define VIEWS_FITTEDTEXT_H

#include <QFont>
#include <QString>

struct FittedText {
    QFont font;
    QString text; // ends in an ellipsis when it was cut
    bool cut;
};

// The text in the largest type, up to the font's own, in which it is at most
// `width` pixels wide. Below `smallest` points it is cut instead; with 0 it is
// never cut.
FittedText fitted_text(const QFont &font, const QString &text, qreal width, qreal smallest);

#endif
