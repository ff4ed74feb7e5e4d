// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the tests of the table information dialog share: a session with one
// pressure sensor, and the parts of the form.
#ifndef TESTS_TABLEINFORMATION_H
#define TESTS_TABLEINFORMATION_H

#include <cstring>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "frame/zerl_cfg.h"
#include "sensor/configdialog2.h"
#include "sensor/sensorrange.h"
#include "sensor/tolerances.h"
#include "support/boxanswerer.h"

// Every box of the dialog is answered by its one button and cannot be closed.
inline bool is_ok_box(const MetBox &box)
{
    return box.buttons == QStringList(QStringLiteral("OK")) &&
           box.default_button == box.buttons[0] && BoxAnswerer::has_title_bar_only(box);
}

template <std::size_t Size> void set_text(char (&field)[Size], const char *text)
{
    qstrncpy(field, text, Size);
}

template <typename Widget> Widget *part(const QDialog &dialog, const char *name)
{
    auto *const found = dialog.findChild<Widget *>(QLatin1String(name));
    if (found == nullptr)
        qFatal("the form has no %s", name);
    return found;
}

inline void press(const QDialog &dialog, const char *button)
{
    part<QPushButton>(dialog, button)->click();
}

inline void type(const QDialog &dialog, const char *field, const QString &text)
{
    part<QLineEdit>(dialog, field)->setText(text);
}

// Sets what a field or the units button shows.
inline void show_on(const QDialog &dialog, const QString &name, const QString &text)
{
    if (name == QLatin1String("btnSensorUnits"))
        part<QPushButton>(dialog, "btnSensorUnits")->setText(text);
    else
        part<QLineEdit>(dialog, name.toLatin1())->setText(text);
}

inline QString text_of(const QDialog &dialog, const QString &name)
{
    return dialog.findChild<QWidget *>(name)->property("text").toString();
}

// 0 to 100 kPa in a table of kPa; the instance's index stands at 7, which no
// operation writes.
inline void fresh_session()
{
    set_none_instance_tokens();
    mua_instance_index = 7;
    g_touch_input = false;
    if (g_cfg == nullptr)
        allocate_session();
    std::memset(g_cfg, 0, sizeof *g_cfg);
    set_cfg_pointer(g_cfg);
    TABLE_RECORD &table = g_cfg->table;
    set_text(table.description, "Intake pressure");
    set_text(table.sensor_serial_no, "SN-204");
    set_text(table.sensor_model, "Model 7");
    set_text(table.sensor_units, "kPa");
    set_text(table.eng_units, "kPa");
    set_text(g_cfg->table_units, "kPa");
    table.sensor_range_min = 0.0;
    table.sensor_range_max = 100.0;
}

// A fresh session, and what answers its boxes; the next finds another session.
class SessionBoxes : public BoxAnswerer
{
public:
    SessionBoxes() { fresh_session(); }
    ~SessionBoxes() override
    {
        fresh_session();
        mua_instance_index = 0;
    }
};

#endif
