// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two dialogs that write the specs file write the same lines.
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "gui/records/specsrecord.h"
#include "records/environmentdialog.h"
#include "reports/reportdialog.h"
#include "support/anytext.h"
#include "support/testmain.h"

namespace
{

rc::Gen<std::string> any_name()
{
    return rc::gen::suchThat(any_latin1_line(79), [](const std::string &text) {
        // Latin-1 that could be UTF-8 is taken for it.
        const QString name = QString::fromStdString(text);
        const QByteArray stored = name.toLatin1();
        return !text.empty() && specs_text(stored.constData(), 80) == name;
    });
}

rc::Gen<std::string> any_email()
{
    return rc::gen::suchThat(any_line(200), [](const std::string &text) {
        return !text.empty() && text.front() != '@';
    });
}

QStringList strings(const std::vector<std::string> &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

void confirm(const std::string &temperature, const std::string &barometer,
             const std::string &humidity)
{
    const EnvironmentDialog dialog(nullptr);
    part_of<QLineEdit>(dialog, "txtTempName")->setText(QString::fromStdString(temperature));
    part_of<QLineEdit>(dialog, "tmpBaroName")->setText(QString::fromStdString(barometer));
    part_of<QLineEdit>(dialog, "txtHumidityName")->setText(QString::fromStdString(humidity));
    part_of<QPushButton>(dialog, "btnOK")->click();
}

} // namespace

class TwoWriters : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init() { fresh_specs(); }
    void same_lines_from_both();
    void names_survive_dialog_file_and_dialog();
};

void TwoWriters::same_lines_from_both()
{
    QVERIFY(rc::check("any three names, any list of 0 to 25 addresses", [] {
        set_emails(strings(*any_list(0, REPORT_EMAILS, any_email())));
        confirm(*any_name(), *any_name(), *any_name());
        const QByteArray of_environment = read_file(SPECS_FILE);
        QFile::remove(SPECS_FILE);
        ReportDialog(nullptr, true).save_specs_file();
        RC_ASSERT(read_file(SPECS_FILE).toStdString() == of_environment.toStdString());
    }));
}

// Names in Latin-1's reach, as they were typed, after the file has been read.
void TwoWriters::names_survive_dialog_file_and_dialog()
{
    QVERIFY(rc::check("any three names", [] {
        const auto any_short = rc::gen::suchThat(any_name(), [](const std::string &text) {
            return text.size() < 80; // as UTF-8, in the file
        });
        const std::string temperature = *any_short;
        const std::string barometer = *any_short;
        const std::string humidity = *any_short;
        confirm(temperature, barometer, humidity);
        RC_ASSERT(read_specs(g_specs));
        const EnvironmentDialog dialog(nullptr);
        const auto shown = [&dialog](const char *field) {
            return part_of<QLineEdit>(dialog, field)->text().toStdString();
        };
        RC_ASSERT(shown("txtTempName") == temperature);
        RC_ASSERT(shown("tmpBaroName") == barometer);
        RC_ASSERT(shown("txtHumidityName") == humidity);
    }));
}

WINDOW_TEST(TwoWriters);
#include "test_twowriters.moc"
