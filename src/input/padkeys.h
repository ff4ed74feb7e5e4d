// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keys of a pad find their slots by the properties that the form gives them.
#ifndef INPUT_PADKEYS_H
#define INPUT_PADKEYS_H

#include <cstddef>

#include <QObjectList>
#include <QPushButton>

// A key of mode 2 and its slot, by what the key's btnNormal says.
template <class Pad> struct PadFunction {
    QLatin1String name;
    void (Pad::*slot)();
};

// Connects each push button among `keys`: mode 0 and 1 with `character`, mode 2
// with the slot of its function, any other with nothing.
template <class Pad, std::size_t N>
void connect_pad_keys(Pad *pad, const QObjectList &keys, void (Pad::*character)(),
                      const PadFunction<Pad> (&functions)[N])
{
    for (QObject *child : keys) {
        auto *const key = qobject_cast<QPushButton *>(child);
        if (key == nullptr)
            continue;
        const int mode = key->property("btnMode").toInt();
        if (mode == 0 || mode == 1)
            QObject::connect(key, &QPushButton::clicked, pad, character);
        if (mode != 2)
            continue;
        for (const PadFunction<Pad> &function : functions) {
            if (key->property("btnNormal").toString() == function.name)
                QObject::connect(key, &QPushButton::clicked, pad, function.slot);
        }
    }
}

#endif
