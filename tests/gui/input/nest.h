// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef GUI_INPUT_NEST_H
#define GUI_INPUT_NEST_H

#include "gui/input/touchscreen.h"

// A field under that many windows within each other; the outermost is "Owner".
struct Nest {
    explicit Nest(int depth)
    {
        window.setObjectName(QStringLiteral("Owner"));
        QWidget *parent = &window;
        for (int i = 1; i < depth; ++i)
            parent = new QWidget(parent);
        field = new QLineEdit(parent);
        field->setProperty("keyboard", true);
        window.show();
    }
    QWidget window;
    QLineEdit *field;
};

#endif
