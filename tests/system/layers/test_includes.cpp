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
using Tree = QHash<QString, QString>;

const Tree &made_up()
{
    static const Tree files{
        {"src/host/operations.h", ""},
        {"src/frame/functions.h", ""},
        {"src/frame/mainwindow.h", ""},
        {"src/window/messagebox.h", "#include \"frame/functions.h\"\n"},
        {"src/window/bad.h", "#include <cmath>\n#include \"views/plot.h\"\n"},
        {"src/acquisition/pointinfo.h", ""},
        {"src/calibration/fit.h", ""},
        {"src/calibration/zerl_util.h", ""},
        {"src/sensor/tolerances.h", ""},
        {"src/reports/linearity.h", "#include \"records/specsfile.h\"\n"},
        {"src/records/specsfile.h", ""},
        {"src/views/plot.h", ""},
        {"src/input/keyboard.h", ""},
        {"hostsim/runtime/blocks.h", ""},
        {"hostsim/cell/description.h", ""},
        {"hostsim/cell/sub/deep.h", ""},
        {"tests/support/recorder.h", ""},
    };
    return files;
}

ReadFile reader(Tree tree)
{
    return [tree = std::move(tree)](const QString &path) -> std::optional<QString> {
        const auto file = tree.constFind(path);
        return file == tree.constEnd() ? std::nullopt : std::optional<QString>(*file);
    };
}

QStringList found_in(const QString &path, const QString &text)
{
    Tree tree = made_up();
    tree.insert(path, text);
    return violations(path, reader(tree));
}

std::optional<QString> file_of_the_tree(const QString &path)
{
    QFile file(top.filePath(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.readAll());
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
    row("the frame knows no window", "src/frame/a.cpp", "#include \"views/plot.h\"", false);
    row("the frame's helpers know no main window", "src/frame/a.cpp",
        "#include \"frame/mainwindow.h\"", false);
    row("the boxes know no main window", "src/window/a.cpp", "#include \"frame/mainwindow.h\"",
        false);
    row("the roof knows every room", "src/frame/mainwindow.cpp", "#include \"views/plot.h\"", true);
    row("its slots as well, where they stand", "src/sensor/mainwindow_units.cpp",
        "#include \"records/specsfile.h\"", true);
    row("main knows the roof", "src/frame/main.cpp", "#include \"frame/mainwindow.h\"", true);
    row("what works on the whole window is of the roof", "src/calibration/zerl_util.cpp",
        "#include \"acquisition/pointinfo.h\"", true);
    row("the roof knows no test", "src/frame/mainwindow.cpp",
        "#include \"tests/support/recorder.h\"", false);
    row("the program knows no stand-in", "src/acquisition/a.cpp",
        "#include \"hostsim/runtime/blocks.h\"", false);
    row("acquisition knows calibration", "src/acquisition/a.cpp", "#include \"calibration/fit.h\"",
        true);
    row("acquisition knows no view", "src/acquisition/a.cpp", "#include \"views/plot.h\"", false);
    row("a row knows no main window", "src/acquisition/a.cpp", "#include \"frame/mainwindow.h\"",
        false);
    row("calibration knows no rows", "src/calibration/a.cpp",
        "#include \"acquisition/pointinfo.h\"", false);
    row("calibration knows no main window", "src/calibration/a.cpp",
        "#include \"frame/mainwindow.h\"", false);
    row("calibration's computation is not of the roof", "src/calibration/a.cpp",
        "#include \"calibration/zerl_util.h\"", false);
    row("sensors know no calibration", "src/sensor/a.cpp", "#include \"calibration/fit.h\"", false);
    row("sensors know no report", "src/sensor/a.cpp", "#include \"reports/linearity.h\"", false);
    row("reports know records", "src/reports/a.cpp", "#include \"records/specsfile.h\"", true);
    row("records know no reports", "src/records/a.cpp", "#include \"reports/linearity.h\"", false);
    row("records know no calibration", "src/records/a.cpp", "#include \"calibration/fit.h\"",
        false);
    row("views know acquisition", "src/views/a.cpp", "#include \"acquisition/pointinfo.h\"", true);
    row("the pads know no calibration", "src/input/a.cpp", "#include \"calibration/fit.h\"", false);
    row("a header brings what it may", "src/views/a.cpp", "#include \"reports/linearity.h\"", true);
    row("a header brings what it may not", "src/sensor/a.cpp", "#include \"window/bad.h\"", false);
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
    QCOMPARE(found_in(path, line).isEmpty(), allowed);
}

void Includes::line_is_told()
{
    QCOMPARE(found_in("src/sensor/a.cpp", "#include <cmath>\n\n#include \"views/plot.h\"\n"),
             QStringList{"src/sensor/a.cpp:3 includes views/plot.h"});
    QCOMPARE(
        found_in("src/sensor/a.cpp", "#include \"window/bad.h\"\n"),
        QStringList{"src/window/bad.h:2 includes views/plot.h, reached from src/sensor/a.cpp"});
}

void Includes::rooms_are_there()
{
    for (const char *room :
         {"src/host", "src/frame", "src/window", "src/sensor", "src/calibration", "src/acquisition",
          "src/records", "src/reports", "src/views", "src/input", "hostsim/runtime", "hostsim/cell",
          "hostsim/bld_tables", "hostsim/tools"})
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
    for (const QString &path : sources(room))
        found += violations(path, file_of_the_tree);
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
