// SPDX-License-Identifier: GPL-3.0-or-later
//
// The front door: what it installs, what it refuses, what it passes on.
#include <QtTest>

#include "machine.h"
#include "support/testmain.h"

class Zerl : public QObject
{
    Q_OBJECT

private slots:
    void help_lists_command_data();
    void help_lists_command();
    void misuse_data();
    void misuse();
    void installs_only_what_is_missing();
    void installs_nothing_when_all_is_there();
    void fetches_lists_when_there_are_none();
    void fetches_lists_anew_when_they_have_aged();
    void says_what_to_type_data();
    void says_what_to_type();
    void lint_packages_are_for_lint();
    void analysis_knows_no_precompiled_header();
    void link_builds_the_tree_it_leads_to();
    void tests_pass_their_status_on();
    void tests_take_turns_without_name_spaces();
    void sanitized_tests();
    void test_of_the_threads();
    void soak_walks_as_long_as_it_is_told_data();
    void soak_walks_as_long_as_it_is_told();
    void failing_walk_fails();
    void moved_tree_is_built_afresh();
    void broken_cache_is_built_afresh();
    void failing_build_ends_it();
    void run_starts_cell_and_tool();
    void run_takes_folder_from_where_it_is_called();
    void run_without_display_carries_calibration_through();
    void run_with_a_display_out_of_reach_says_what_to_type();
    void run_on_wayland_alone();
    void terminated_tour_ends_at_once();
    void failing_tour_fails();
    void benchmarks_close_with_their_ratios();
    void failing_benchmark_fails();
    void clean_keeps_sources();
};

void Zerl::help_lists_command_data()
{
    QTest::addColumn<QString>("command");
    for (const char *name :
         {"run [--cell FOLDER] [--touch] [--without-namespaces]",
          "test [--sanitize | --threads | --without-namespaces]", "soak [LENGTH] [SEED]",
          "mutate [OPTIONS]", "tour [--without-namespaces]", "build ", "bench ", "lint ", "clean ",
          "help "})
        QTest::newRow(name) << QString(name);
}

void Zerl::help_lists_command()
{
    QFETCH(QString, command);
    const Outcome outcome = Machine().zerl({"help"});
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.output.contains("\n  " + command), qPrintable(outcome.output));
}

void Zerl::misuse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("no command") << QStringList{} << "usage: ./zerl";
    QTest::newRow("unknown command") << QStringList{"fly"} << "unknown command: fly";
    QTest::newRow("unknown option") << QStringList{"run", "--fast"} << "unknown option: --fast";
    QTest::newRow("two commands") << QStringList{"test", "tour"}
                                  << "one command at a time: test or tour";
    QTest::newRow("cell without folder") << QStringList{"run", "--cell"} << "--cell needs a folder";
    QTest::newRow("touch on its own")
        << QStringList{"tour", "--touch"} << "--cell and --touch go with run";
    QTest::newRow("soak of no length")
        << QStringList{"soak", "long"} << "neither steps nor minutes (30m): long";
    QTest::newRow("soak of no steps")
        << QStringList{"soak", "0"} << "neither steps nor minutes (30m): 0";
    QTest::newRow("soak of no minutes")
        << QStringList{"soak", "m"} << "neither steps nor minutes (30m): m";
    QTest::newRow("soak with a word for a seed")
        << QStringList{"soak", "500", "lucky"} << "not a seed: lucky";
    QTest::newRow("soak with a third word")
        << QStringList{"soak", "500", "7", "8"} << "one command at a time: soak or 8";
    QTest::newRow("sanitizers with run")
        << QStringList{"run", "--sanitize"} << "--sanitize goes with test";
    QTest::newRow("thread sanitizer with tour")
        << QStringList{"tour", "--threads"} << "--threads goes with test";
    QTest::newRow("two sanitizers")
        << QStringList{"test", "--sanitize", "--threads"} << "--sanitize and --threads take turns";
    QTest::newRow("benchmarks without name spaces")
        << QStringList{"bench", "--without-namespaces"}
        << "--without-namespaces goes with run, test and tour";
    QTest::newRow("sanitizers without name spaces")
        << QStringList{"test", "--sanitize", "--without-namespaces"}
        << "--sanitize and --without-namespaces exclude each other";
}

void Zerl::misuse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    Machine machine;
    const Outcome outcome = machine.zerl(arguments);
    QCOMPARE(outcome.status, 2);
    QVERIFY2(outcome.errors.contains(complaint), qPrintable(outcome.errors));
    QVERIFY(outcome.errors.contains("./zerl help") || outcome.errors.contains("  help "));
    QCOMPARE(machine.calls("cmake"), QStringList());
}

void Zerl::installs_only_what_is_missing()
{
    Machine machine;
    machine.ordinary_user();
    machine.not_installed({"cmake", "libgsl-dev", "clang-tidy"});
    const Outcome outcome = machine.zerl({"build"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    const QStringList installs = machine.calls("apt-get install");
    QCOMPARE(installs.size(), 1);
    QVERIFY2(installs[0].endsWith(" cmake libgsl-dev"), qPrintable(installs[0]));
    QVERIFY(installs[0].contains(" --no-install-recommends "));
    QVERIFY(!machine.calls("sudo -n env DEBIAN_FRONTEND=noninteractive apt-get install").isEmpty());
    QCOMPARE(machine.calls("apt-get update"), QStringList());
}

void Zerl::installs_nothing_when_all_is_there()
{
    Machine machine;
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QCOMPARE(machine.calls("apt-get"), QStringList());
    QCOMPARE(machine.calls("sudo"), QStringList());
    QCOMPARE(machine.calls("cmake --preset default -DZERL_BENCH=OFF").size(), 1);
    QCOMPARE(machine.calls("cmake --build --preset default").size(), 1);
}

void Zerl::fetches_lists_when_there_are_none()
{
    Machine machine;
    machine.not_installed({"cmake"});
    machine.command("apt-get", "");
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QCOMPARE(machine.calls("apt-get update").size(), 1);
    QCOMPARE(machine.calls("apt-get install").size(), 1);
}

void Zerl::fetches_lists_anew_when_they_have_aged()
{
    Machine machine;
    machine.not_installed({"cmake"});
    machine.command("apt-get", "case $1 in\n"
                               "indextargets) echo some_Packages ;;\n"
                               "update) : >fetched ;;\n"
                               "install) [ -e fetched ] ;;\n"
                               "esac");
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QCOMPARE(machine.calls("apt-get update").size(), 1);
    QCOMPARE(machine.calls("apt-get install").size(), 2);
}

void Zerl::says_what_to_type_data()
{
    QTest::addColumn<QString>("absent");
    QTest::addColumn<bool>("root");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("type");
    const QString install = "apt-get install --no-install-recommends cmake bubblewrap";
    QTest::newRow("no apt") << "apt-get" << true << "apt-get was not found"
                            << "type  apt-get update && " + install;
    QTest::newRow("no sudo") << "sudo" << false << "sudo was not found"
                             << "type  su - -c 'apt-get update && " + install + "'";
    QTest::newRow("sudo refuses") << "sudo refuses" << false << "sudo wants a password"
                                  << "type  sudo apt-get update && sudo " + install;
    QTest::newRow("apt fails") << "apt fails" << true << "the packages could not be installed"
                               << "type  apt-get update && " + install;
    QTest::newRow("no Debian")
        << "dpkg-query" << true << "dpkg-query was not found here"
        << "type  cmake --preset default -DZERL_BENCH=OFF && cmake --build --preset default";
}

void Zerl::says_what_to_type()
{
    QFETCH(QString, absent);
    QFETCH(bool, root);
    QFETCH(QString, reason);
    QFETCH(QString, type);
    Machine machine;
    machine.not_installed({"bubblewrap", "cmake"});
    if (!root)
        machine.ordinary_user();
    if (absent == "sudo refuses")
        machine.command("sudo", "exit 1");
    else if (absent == "apt fails")
        machine.command("apt-get", "exit 100");
    else
        machine.without(absent);
    const Outcome outcome = machine.zerl({"build"});
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.errors.contains(reason), qPrintable(outcome.errors));
    QVERIFY2(outcome.errors.contains(type), qPrintable(outcome.errors));
    QVERIFY2(outcome.errors.contains("bubblewrap"), qPrintable(outcome.errors));
    QCOMPARE(machine.calls("cmake"), QStringList());
}

void Zerl::lint_packages_are_for_lint()
{
    Machine machine;
    machine.not_installed({"clang-format", "clang-tidy", "shellcheck"});
    machine.command("clang-format", "");
    machine.command("clang-tidy", "");
    machine.command("shellcheck", "");
    QCOMPARE(machine.zerl({"test"}).status, 0);
    QCOMPARE(machine.calls("apt-get install"), QStringList());
    machine.write("src/frame/a.cpp", "int a;\n");
    const Outcome outcome = machine.zerl({"lint"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QCOMPARE(machine.calls("apt-get install").size(), 1);
    QCOMPARE(
        machine.calls("clang-format --dry-run -Werror --ferror-limit=1 src/frame/a.cpp").size(), 1);
    QCOMPARE(machine.calls("clang-tidy").size(), 1);
    const QStringList scripts = machine.calls("shellcheck ");
    QCOMPARE(scripts.size(), 1);
    QVERIFY2(scripts[0].contains(" tools/door/lint.sh "), qPrintable(scripts[0]));
    QVERIFY2(scripts[0].endsWith(" zerl"), qPrintable(scripts[0]));
    machine.command("clang-tidy", "echo a finding; exit 1");
    const Outcome found = machine.zerl({"lint"});
    QCOMPARE(found.status, 1);
    QVERIFY2(found.output.contains("a finding"), qPrintable(found.output));
    QVERIFY2(found.errors.contains("these checks failed: clang-tidy"), qPrintable(found.errors));
}

void Zerl::analysis_knows_no_precompiled_header()
{
    Machine machine;
    machine.command("clang-format", "");
    machine.command("clang-tidy", "cat \"$2/compile_commands.json\"; exit 1");
    machine.command("shellcheck", "");
    machine.write("src/frame/a.cpp", "int a;\n");
    const QString before = R"("command": "c++ -Iinclude)";
    const QString after = R"( -o a.o -c a.cpp",)";
    machine.write("build/compile_commands.json",
                  before + " -Winvalid-pch -include /x/cmake_pch.hxx" + after + "\n" + before +
                      R"( -Winvalid-pch -include \"/x y/cmake_pch.hxx\")" + after + "\n");
    const Outcome outcome = machine.zerl({"lint"});
    QVERIFY2(outcome.output.contains(before + after + "\n" + before + after),
             qPrintable(outcome.output));
}

void Zerl::link_builds_the_tree_it_leads_to()
{
    Machine machine;
    QCOMPARE(machine.zerl_by_link({"build"}).status, 0);
    QVERIFY(machine.exists("build/configured"));
}

void Zerl::tests_pass_their_status_on()
{
    Machine machine;
    Outcome outcome = machine.zerl({"test"});
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.endsWith("100% tests passed, 0 tests failed out of 1\n"));
    QCOMPARE(machine.calls("ctest --preset default --parallel ").size(), 1);
    machine.command("ctest", "echo '50% tests passed, 1 tests failed out of 2'; exit 8");
    outcome = machine.zerl({"test"});
    QCOMPARE(outcome.status, 8);
    QVERIFY(outcome.output.endsWith("50% tests passed, 1 tests failed out of 2\n"));
}

void Zerl::tests_take_turns_without_name_spaces()
{
    Machine machine;
    machine.command("nproc", "echo 4");
    QCOMPARE(machine.zerl({"test"}).status, 0);
    QCOMPARE(machine.calls("ctest --preset default --parallel 4").size(), 1);
    machine.command("bwrap", "exit 1");
    QCOMPARE(machine.zerl({"test"}).status, 0);
    QCOMPARE(machine.calls("ctest --preset default --parallel 1").size(), 1);
}

void Zerl::sanitized_tests()
{
    Machine machine;
    machine.command("ctest", "echo \"$ASAN_OPTIONS\"");
    const Outcome outcome = machine.zerl({"test", "--sanitize"});
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.contains("detect_stack_use_after_return=1"));
    QCOMPARE(machine.calls("cmake --preset sanitize").size(), 1);
    QCOMPARE(machine.calls("cmake --build --preset sanitize").size(), 1);
    QCOMPARE(machine.calls("ctest --preset sanitize").size(), 1);
}

// With the addresses that the sanitizer needs, where the machine gives them.
void Zerl::test_of_the_threads()
{
    Machine machine;
    machine.command("setarch", "shift; \"$@\"");
    QCOMPARE(machine.zerl({"test", "--threads"}).status, 0);
    QCOMPARE(machine.calls("cmake --preset tsan").size(), 1);
    QCOMPARE(machine.calls("cmake --build --preset tsan").size(), 1);
    QCOMPARE(machine.calls("setarch -R ctest --preset tsan").size(), 1);
    machine.command("setarch", "exit 1");
    QCOMPARE(machine.zerl({"test", "--threads"}).status, 0);
    QCOMPARE(machine.calls("setarch -R ctest").size(), 1);
    QCOMPARE(machine.calls("ctest --preset tsan").size(), 2);
}

void Zerl::moved_tree_is_built_afresh()
{
    Machine machine;
    machine.write("build/CMakeCache.txt", "CMAKE_HOME_DIRECTORY:INTERNAL=/nowhere/tree\n");
    machine.write("build/left.over", "");
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QVERIFY(!machine.exists("build/left.over"));
    machine.write("build/CMakeCache.txt", "CMAKE_HOME_DIRECTORY:INTERNAL=" + machine.tree() + '\n');
    machine.write("build/kept", "");
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QVERIFY(machine.exists("build/kept"));
}

void Zerl::broken_cache_is_built_afresh()
{
    Machine machine;
    machine.write("build/CMakeCache.txt", "CMAKE_HOME_DIRECTORY:INTERNAL=" + machine.tree() + '\n');
    machine.command("cmake", "case \"$*\" in\n"
                             "*--fresh*) exit 0 ;;\n"
                             "'--preset default '*) exit 1 ;;\n"
                             "esac");
    QCOMPARE(machine.zerl({"build"}).status, 0);
    QCOMPARE(machine.calls("cmake --preset default --fresh").size(), 1);
}

void Zerl::failing_build_ends_it()
{
    Machine machine;
    machine.command("cmake", "case $1 in --build) exit 1 ;; esac");
    const Outcome outcome = machine.zerl({"test"});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.contains("the build failed"));
    QCOMPARE(machine.calls("ctest"), QStringList());
}

namespace
{

// Lets the build leave a launcher behind that shows what it is given, and a
// panel that starts when the display can be reached.
void launcher(Machine &machine, int status, bool reached = true)
{
    machine.command(
        "cmake", "mkdir -p build/bin\n"
                 "printf '#!/bin/sh\\necho \"launched $* on $DISPLAY $QT_QPA_PLATFORM\"\\nexit " +
                     QString::number(status) +
                     "\\n' >build/bin/privatecell\n"
                     "printf '#!/bin/sh\\necho no such display >&2\\nexit " +
                     (reached ? "0" : "134") +
                     "\\n' >build/bin/cellpanel\n"
                     "chmod +x build/bin/privatecell build/bin/cellpanel");
}

} // namespace

void Zerl::soak_walks_as_long_as_it_is_told_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("walk");
    QTest::newRow("by itself") << QStringList{} << "--minutes 10";
    QTest::newRow("minutes") << QStringList{"30m"} << "--minutes 30";
    QTest::newRow("steps") << QStringList{"50000"} << "--steps 50000";
    QTest::newRow("steps and seed") << QStringList{"812", "23"} << "--steps 812 --seed 23";
}

void Zerl::soak_walks_as_long_as_it_is_told()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, walk);
    Machine machine;
    launcher(machine, 0);
    const Outcome outcome = machine.zerl(QStringList{"soak"} + arguments);
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    const QString expected = "launched --no-cell -- " + machine.path("build/tests/walk_new_seed") +
                             ' ' + walk + " on  offscreen\n";
    QVERIFY2(outcome.output.endsWith(expected), qPrintable(outcome.output));
    QCOMPARE(machine.calls("cmake --build --preset default").size(), 1);
}

void Zerl::failing_walk_fails()
{
    Machine machine;
    launcher(machine, 1);
    QCOMPARE(machine.zerl({"soak", "100"}).status, 1);
}

void Zerl::run_starts_cell_and_tool()
{
    Machine machine;
    launcher(machine, 3);
    machine.environment("DISPLAY", ":7");
    const QString cell = machine.path("a cell's folder");
    const Outcome outcome = machine.zerl({"run", "--touch", "--cell", cell});
    QCOMPARE(outcome.status, 3);
    const QString expected = "launched --cell " + cell + " --start --panel --touch -- " +
                             machine.path("build/bin/zerl_util") + " on :7 \n";
    QVERIFY2(outcome.output.endsWith(expected), qPrintable(outcome.output));
    QCOMPARE(machine.calls("ctest"), QStringList());
    QCOMPARE(machine.calls("Xvfb"), QStringList());
}

void Zerl::run_takes_folder_from_where_it_is_called()
{
    Machine machine;
    launcher(machine, 0);
    machine.environment("DISPLAY", ":7");
    Outcome outcome = machine.zerl({"run", "--cell", "mine"});
    const QString mine = QDir::cleanPath(machine.tree() + "/../mine");
    QVERIFY2(outcome.output.contains("launched --cell " + mine + " --start"),
             qPrintable(outcome.output));
    QVERIFY(QFileInfo(mine).isDir());
    outcome = machine.zerl({"run"});
    const QString standard =
        QDir::cleanPath(machine.tree() + "/../home/.local/share/zerl_util/cell");
    QVERIFY2(outcome.output.contains("launched --cell " + standard + " --start"),
             qPrintable(outcome.output));
    QVERIFY(QFileInfo(standard).isDir());
}

void Zerl::run_without_display_carries_calibration_through()
{
    Machine machine;
    launcher(machine, 0);
    machine.not_installed({"xvfb"});
    const Outcome outcome = machine.zerl({"run"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QVERIFY2(outcome.output.contains("There is no display"), qPrintable(outcome.output));
    QVERIFY(machine.calls("apt-get install").value(0).endsWith(" xvfb"));
    const QString tour = "--writable " + machine.path("build/tour") + " -- " +
                         machine.path("build/bin/zerl_tour") + ' ' + machine.path("build/tour") +
                         " on :42 xcb\n";
    QVERIFY2(outcome.output.contains(tour), qPrintable(outcome.output));
    QVERIFY(machine.exists("build/tour"));
    QVERIFY2(outcome.output.contains("DISPLAY=:0 ./zerl run"), qPrintable(outcome.output));
}

void Zerl::run_with_a_display_out_of_reach_says_what_to_type()
{
    Machine machine;
    launcher(machine, 0, false);
    machine.environment("DISPLAY", ":7");
    const Outcome outcome = machine.zerl({"run"});
    QCOMPARE(outcome.status, 1);
    for (const char *text : {"the display :7 cannot be reached", "no such display", "ssh -X",
                             "xhost", "DISPLAY=:0 ./zerl run", "./zerl tour"})
        QVERIFY2(outcome.errors.contains(text), qPrintable(outcome.errors));
    QVERIFY(!outcome.output.contains("launched"));
}

void Zerl::run_on_wayland_alone()
{
    Machine machine;
    launcher(machine, 0);
    machine.environment("DISPLAY", "");
    machine.environment("WAYLAND_DISPLAY", "wayland-0");
    machine.not_installed({"qtwayland5"});
    const Outcome outcome = machine.zerl({"run"});
    QVERIFY2(outcome.output.endsWith(" on  wayland\n"), qPrintable(outcome.output));
    QVERIFY(machine.calls("apt-get install").value(0).endsWith(" qtwayland5"));
}

// The tour's launcher terminates the script that started it, and is stopped in
// order by it.
void Zerl::terminated_tour_ends_at_once()
{
    Machine machine;
    machine.command("cmake", "mkdir -p build/bin\n"
                             "cat >build/bin/privatecell <<'END'\n"
                             "#!/bin/sh\n"
                             "trap 'echo stopped; exit 0' TERM\n"
                             "kill -TERM \"$ZERL\"\n"
                             "while :; do sleep 0.1; done\n"
                             "END\n"
                             "chmod +x build/bin/privatecell");
    machine.command("Xvfb", "echo 42 >&3; echo \"export ZERL=$PPID\" >zerl.pid; exec sleep 600");
    machine.command("timeout", "shift 2; . ./zerl.pid; exec \"$@\"");
    const Outcome outcome = machine.zerl({"tour"});
    QCOMPARE(outcome.status, 143);
    QVERIFY2(outcome.output.endsWith("stopped\n"), qPrintable(outcome.output));
}

void Zerl::failing_tour_fails()
{
    Machine machine;
    launcher(machine, 5);
    const Outcome outcome = machine.zerl({"tour"});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.contains("the scripted calibration failed (status 5)"));
}

namespace
{

// Lets the build leave one benchmark behind, and a launcher that runs it.
void benchmark(Machine &machine, int status)
{
    machine.command("cmake",
                    "mkdir -p build/bin build/bench\n"
                    "printf '#!/bin/sh\\nshift 2\\nexec \"$@\"\\n' >build/bin/privatecell\n"
                    "printf '#!/bin/sh\\necho ratio a/b: 1.5\\necho more\\nexit " +
                        QString::number(status) +
                        "\\n' >build/bench/bench_a\n"
                        "chmod +x build/bin/privatecell build/bench/bench_a");
}

} // namespace

void Zerl::benchmarks_close_with_their_ratios()
{
    Machine machine;
    benchmark(machine, 0);
    const Outcome outcome = machine.zerl({"bench"});
    QVERIFY2(outcome.status == 0, qPrintable(outcome.errors));
    QVERIFY2(outcome.output.endsWith("more\n==> Ratios\nratio a/b: 1.5\n"),
             qPrintable(outcome.output));
    QCOMPARE(machine.calls("cmake --preset default -DZERL_BENCH=ON").size(), 1);
}

void Zerl::failing_benchmark_fails()
{
    Machine machine;
    benchmark(machine, 1);
    const Outcome outcome = machine.zerl({"bench"});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.output.endsWith("==> Ratios\nratio a/b: 1.5\n"));
    QVERIFY2(outcome.errors.contains("benchmarks that failed: bench_a"),
             qPrintable(outcome.errors));
}

void Zerl::clean_keeps_sources()
{
    Machine machine;
    machine.write("build/a", "");
    machine.write("build-sanitize/a", "");
    machine.write("build-tsan/a", "");
    machine.write("build-mine/a", "");
    QCOMPARE(machine.zerl({"clean"}).status, 0);
    QVERIFY(!machine.exists("build"));
    QVERIFY(!machine.exists("build-sanitize"));
    QVERIFY(!machine.exists("build-tsan"));
    QVERIFY(machine.exists("build-mine/a"));
    QVERIFY(machine.exists("zerl"));
}

LOOP_TEST(Zerl);
#include "test_zerl.moc"
