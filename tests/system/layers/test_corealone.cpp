// SPDX-License-Identifier: GPL-3.0-or-later
//
// The computation is whole without the windows. That this program links proves
// most of it; what it has loaded proves the rest.
#include <link.h>

#include <QStringList>
#include <QtTest>

#include "frame/functions.h"
#include "support/testmain.h"

// The two questions that computation puts to the windows.
void show_information(const char *) {}
void show_warning(const char *, const char *) {}

class CoreAlone : public QObject
{
    Q_OBJECT

private slots:
    void loads_no_windows_data();
    void loads_no_windows();
    void loads_what_it_needs();
};

namespace
{

int collect(dl_phdr_info *info, std::size_t, void *names)
{
    static_cast<QStringList *>(names)->append(QString::fromLocal8Bit(info->dlpi_name));
    return 0;
}

QStringList loaded(const QString &part)
{
    QStringList names;
    dl_iterate_phdr(collect, &names);
    return names.filter(part);
}

} // namespace

void CoreAlone::loads_no_windows_data()
{
    QTest::addColumn<QString>("library");
    QTest::newRow("widgets") << "libQt5Widgets";
    QTest::newRow("window system") << "libQt5Gui";
    QTest::newRow("plot") << "libqwt";
}

void CoreAlone::loads_no_windows()
{
    QFETCH(QString, library);
    QCOMPARE(loaded(library), QStringList());
}

void CoreAlone::loads_what_it_needs()
{
    QVERIFY(!loaded("libQt5Core").isEmpty());
}

LOOP_TEST(CoreAlone);
#include "test_corealone.moc"
