// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rooms of the tree know only those that they may know.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QtTest>

#include "includescan.h"
#include "support/testmain.h"

class Includes : public QObject
{
    Q_OBJECT

private slots:
    void rule_data();
    void rule();
    void line_is_told();
    void rooms_are_there();
    void tree_data();
    void tree();
    void walk_model_shares_layouts_only();
};

namespace
{

const QDir top(PROJECT_SOURCE_DIR);

// A made-up tree, so that the rules are tested apart from the code at hand.
bool made_up(const QString &path)
{
    static const QStringList files{
        "src/host/operations.h",     "src/frame/functions.h",    "src/frame/mainwindow.h",
        "src/acquisition/monitor.h", "src/calibration/fit.h",    "src/sensor/tolerances.h",
        "src/reports/linearity.h",   "src/records/specsfile.h",  "src/views/plot.h",
        "src/input/keyboard.h",      "hostsim/runtime/blocks.h", "hostsim/cell/description.h",
        "hostsim/cell/sub/deep.h",   "tests/support/recorder.h",
    };
    return files.contains(path);
}

QStringList sources(const QString &room)
{
    QStringList found;
    QDirIterator files(top.filePath(room), {"*.h", "*.cpp", "*.c"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        found.append(top.relativeFilePath(files.next()));
    found.sort();
    return found;
}

} // namespace

void Includes::rule_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("allowed");

    const auto row = [](const char *name, const char *path, const char *line, bool allowed) {
        QTest::newRow(name) << QString(path) << QString(line) << allowed;
    };
    row("a room knows itself", "src/sensor/a.cpp", "#include \"sensor/tolerances.h\"", true);
    row("a neighbour in the same folder", "src/sensor/a.cpp", "#include \"tolerances.h\"", true);
    row("the host knows nobody", "src/host/a.h", "#include \"frame/functions.h\"", false);
    row("the host takes headers of C", "src/host/a.h", "#include <stdint.h>", true);
    row("the host takes none of C++", "src/host/a.h", "#include <cstdint>", false);
    row("the host takes none of Qt", "src/host/a.h", "#include <QString>", false);
    row("the frame's computation knows the host", "src/frame/a.cpp",
        "#include \"host/operations.h\"", true);
    row("the frame's computation knows no window", "src/frame/a.cpp", "#include \"views/plot.h\"",
        false);
    row("the window knows every room", "src/frame/mainwindow.cpp", "#include \"views/plot.h\"",
        true);
    row("its other files as well", "src/frame/mainwindow_slots.cpp",
        "#include \"records/specsfile.h\"", true);
    row("main knows the window", "src/frame/main.cpp", "#include \"frame/mainwindow.h\"", true);
    row("the window knows no test", "src/frame/mainwindow.cpp",
        "#include \"tests/support/recorder.h\"", false);
    row("the window knows no stand-in", "src/acquisition/a.cpp",
        "#include \"hostsim/runtime/blocks.h\"", false);
    row("acquisition knows calibration", "src/acquisition/a.cpp", "#include \"calibration/fit.h\"",
        true);
    row("acquisition knows no view", "src/acquisition/a.cpp", "#include \"views/plot.h\"", false);
    row("calibration knows no acquisition", "src/calibration/a.cpp",
        "#include \"acquisition/monitor.h\"", false);
    row("sensors know calibration", "src/sensor/a.cpp", "#include \"calibration/fit.h\"", true);
    row("sensors know no report", "src/sensor/a.cpp", "#include \"reports/linearity.h\"", false);
    row("reports know records", "src/reports/a.cpp", "#include \"records/specsfile.h\"", true);
    row("records know reports", "src/records/a.cpp", "#include \"reports/linearity.h\"", true);
    row("records know no calibration", "src/records/a.cpp", "#include \"calibration/fit.h\"",
        false);
    row("views know acquisition", "src/views/a.cpp", "#include \"acquisition/monitor.h\"", true);
    row("views know no host", "src/views/a.cpp", "#include \"host/operations.h\"", false);
    row("the keyboard knows no frame", "src/input/keyboard.cpp", "#include \"frame/functions.h\"",
        false);
    row("the routing of input does", "src/input/inputdevice.cpp", "#include \"frame/functions.h\"",
        true);
    row("the runtime knows the host's header", "hostsim/runtime/a.cpp",
        "#include \"host/operations.h\"", true);
    row("the runtime knows no cell", "hostsim/runtime/a.cpp",
        "#include \"hostsim/cell/description.h\"", false);
    row("the cell knows the runtime", "hostsim/cell/a.cpp", "#include \"hostsim/runtime/blocks.h\"",
        true);
    row("the cell knows nothing of the program", "hostsim/cell/a.cpp",
        "#include \"frame/functions.h\"", false);
    row("a folder within a room is that room", "hostsim/cell/a.cpp", "#include \"sub/deep.h\"",
        true);
    row("a form's header is made by the build", "src/sensor/a.cpp", "#include \"ui_dialog.h\"",
        true);
    row("a class's own file as well", "src/sensor/a.cpp", "#include \"a.moc\"", true);
    row("a header that is nowhere", "src/sensor/a.cpp", "#include \"sensor/gone.h\"", false);
    row("blanks around the sign", "src/sensor/a.cpp", "  #  include  \"views/plot.h\"", false);
    row("what is no include", "src/sensor/a.cpp", "// see #include \"views/plot.h\"", true);
    row("a folder that no rule knows", "src/extras/a.cpp", "", false);
}

void Includes::rule()
{
    QFETCH(QString, path);
    QFETCH(QString, line);
    QFETCH(bool, allowed);
    QCOMPARE(violations(path, line, made_up).isEmpty(), allowed);
}

void Includes::line_is_told()
{
    const QString text = "#include <cmath>\n\n#include \"views/plot.h\"\n";
    QCOMPARE(violations("src/sensor/a.cpp", text, made_up),
             QStringList{"src/sensor/a.cpp:3 includes views/plot.h"});
}

void Includes::rooms_are_there()
{
    for (const char *room :
         {"src/host", "src/frame", "src/acquisition", "src/calibration", "src/sensor",
          "hostsim/runtime", "hostsim/cell", "hostsim/bld_tables", "hostsim/tools"})
        QVERIFY2(!sources(room).isEmpty(), room);
}

void Includes::tree_data()
{
    QTest::addColumn<QString>("room");
    for (const char *half : {"src", "hostsim"}) {
        const QDir folder(top.filePath(half));
        for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QString room = QString(half) + '/' + name;
            QTest::newRow(qPrintable(room)) << room;
        }
    }
}

void Includes::tree()
{
    QFETCH(QString, room);
    QStringList found;
    for (const QString &path : sources(room)) {
        QFile file(top.filePath(path));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
        found += violations(path, QString::fromUtf8(file.readAll()), [](const QString &other) {
            return QFile::exists(top.filePath(other));
        });
    }
    QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
}

// What the random walk holds the program against must not be the program.
void Includes::walk_model_shares_layouts_only()
{
    const QRegularExpression allowed(
        "^#include (<.*>|\"(host/.*|frame/zerl_cfg\\.h|walk/(files|model|view)\\.h)\")$");
    const QDir folder(top.filePath("tests/walk"));
    const QStringList names = folder.entryList({"model*.cpp", "model.h", "files.*"}, QDir::Files);
    QVERIFY(names.contains("model.h") && names.contains("modelprocess.cpp"));
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(name));
        for (const QString &line : QString::fromUtf8(file.readAll()).split('\n')) {
            if (line.startsWith("#include"))
                QVERIFY2(allowed.match(line).hasMatch(), qPrintable(name + ": " + line));
        }
    }
}

LOOP_TEST(Includes);
#include "test_includes.moc"
