// SPDX-License-Identifier: GPL-3.0-or-later
//
// Walks over the real window in random steps, held against a model after each.
// A walk is a process: the window's monitor thread never ends, and every walk
// of a seed begins alike.
//
//   walk_new_seed [--seed N] [--steps N | --minutes N] [--verbose]
//
// The same from the environment: WALK_SEED, WALK_STEPS, WALK_MINUTES.
#include <algorithm>
#include <cstdio>
#include <random>

#include <QElapsedTimer>
#include <QPixmapCache>
#include <QProcess>
#include <QtTest>

#include "host/operations.h"
#include "hostsim/runtime/tablefile.h"
#include "support/testmain.h"
#include "walk/memoryuse.h"
#include "walk/walker.h"

namespace
{

struct Length {
    uint64_t seed = 0;
    long long steps = 1000;
    long long minutes = 0; // instead of steps, unless 0
    bool verbose = false;
};
Length length;

// TestWindow's channels but 7, and four more: 10 whose archive leaves the type
// open, 11 SCALED, 12 with 20 points, 13 that saves nothing.
QByteArray description()
{
    return TestWindow::description() + R"(
channel 10
  label "Channel Ten"
  units kPa
  table ten
  record POLY
  points 0:1 1000:11 2000:24 3000:39 4000:56 5000:75
  fit 2
  sensor kPa 0 100 MODEL10 SERIAL10
channel 11
  label "Channel Eleven"
  units kPa
  table eleven
  record SCALED
  factor 0.02
  sensor kPa 0 100 MODEL11 SERIAL11
channel 12
  label "Channel Twelve"
  units kPa
  table twelve
  input kPa 0 126
  response linear 50 10
  record INTERP
  sample 20
  sensor kPa 0 126 MODEL12 SERIAL12
channel 13
  label "Channel Thirteen"
  units kPa
  table INACTIVE
  record INTERP
  points 0:0 2500:50 5000:100
  sensor kPa 0 100 MODEL13 SERIAL13
)";
}

// The record that tells of no type: written by an older host.
void write_archive_of_open_type()
{
    TABLE_RECORD record;
    if (read_table("/cell/tables/ten.tbl", &record) != 0)
        qFatal("no table of channel 10");
    record.table_type = TABLE_TYPE_UNKNOWN;
    record.poly[0].y[0] = 2.0;
    record.last_save_type = SAVE_ADJUSTED;
    hostsim::BlockInfo info;
    info.who = "J. Doe";
    info.when = "2026-03-01T09:30:00Z";
    info.program = "1.0.0";
    info.save_type = SAVE_ADJUSTED;
    write_file(QStringLiteral("/cell/tables/ten.save"),
               QByteArray::fromStdString(hostsim::write_block(record, info)));
}

// What the heap holds over the walk. The process of each rebuild is kept for
// good by design, with the empty buffers of its two channels; so are the 64 rows
// of a give-up, which the walker takes before it is measured.
class Growth
{
public:
    static constexpr int WARM_UP = 1000;
    static constexpr int SPAN = 500; // steps over which the least is taken
    static constexpr long long SLACK = 256 * 1024;

    Growth() : m_kept_by_rebuild(kept_by_rebuild()) {}

    void after_step(const walk::Walker &walker)
    {
        m_held = walk::held_bytes();
        if (walker.steps() <= WARM_UP)
            return;
        m_rebuilds += walker.model().rebuilt ? 1 : 0;
        if (walker.steps() <= WARM_UP + SPAN)
            m_first = std::min(m_first, m_held);
        m_recent[static_cast<std::size_t>(walker.steps() % SPAN)] = m_held;
    }
    static bool measured(const walk::Walker &walker)
    {
        return walker.steps() >= WARM_UP + 2 * SPAN;
    }
    long long grown() const { return *std::min_element(m_recent, m_recent + SPAN) - m_first; }
    // A tenth more a process, since not every one ends alike.
    bool flat() const { return grown() - m_rebuilds * m_kept_by_rebuild * 11 / 10 <= SLACK; }
    QString told() const
    {
        return QStringLiteral(
                   "heap: %1 bytes held; grown by %2 since step %3, with %4 rebuilds that "
                   "keep %5 each")
            .arg(m_held)
            .arg(grown())
            .arg(WARM_UP)
            .arg(m_rebuilds)
            .arg(m_kept_by_rebuild);
    }

private:
    // Of processes that are started as the program starts one.
    static long long kept_by_rebuild()
    {
        constexpr int COUNT = 16;
        std::vector<std::unique_ptr<QProcess>> processes;
        long long former = 0;
        for (int i = 0; i <= COUNT; ++i) {
            if (i == 1) // the first brings what all share
                former = walk::held_bytes();
            processes.push_back(std::make_unique<QProcess>());
            processes.back()->start(QStringLiteral("/vornax/bin/bld_tables"), QStringList(),
                                    QIODevice::ReadWrite);
            if (!QTest::qWaitFor([&] { return processes.back()->state() == QProcess::NotRunning; },
                                 60000))
                qFatal("the rebuild does not end");
        }
        return (walk::held_bytes() - former) / COUNT;
    }

    long long m_kept_by_rebuild;
    long long m_first = INT64_MAX;
    long long m_held = 0;
    long long m_rebuilds = 0;
    long long m_recent[SPAN] = {};
};

} // namespace

class Walk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void window_record_and_files_agree_with_the_model_after_every_step();

private:
    static void every_question_was_met(const walk::Walker &walker);

    std::unique_ptr<TestWindow> m_it;
};

// A walk of so many steps has been everywhere.
constexpr int ALL_ASKED = 10000;
constexpr int PROGRESS = 5000; // steps from one sign of life to the next

void Walk::every_question_was_met(const walk::Walker &walker)
{
    const auto met = [&walker](const char *part) {
        for (const auto &[text, count] : walker.asked()) {
            if (text.contains(QLatin1String(part)))
                return true;
        }
        return false;
    };
    for (const char *part : {"enter the Technician Name",
                             "without all points being captured",
                             "being\ncollected again",
                             "describe the service",
                             "already been serviced or adjusted",
                             "already been adjusted.",
                             "No adjustment has been made",
                             "does not require adjustment",
                             "adjust the calibration anyway",
                             "needs to be adjusted",
                             "re-use last calibration anyway",
                             "for calibration.\n\nDo you want to adjust anyway",
                             "update cal anyway",
                             "been recorded.\n\nClick OK to exit",
                             "incomplete.\n\nClick OK to exit",
                             "calibration table.\n\nClick OK to exit",
                             "been recorded.\n\nClick OK to leave",
                             "incomplete.\n\nClick OK to leave",
                             "calibration table.\n\nClick OK to leave",
                             "value for Calibration Points",
                             "Averaging Time must be",
                             "select a valid channel",
                             "Range Values are the same",
                             "Changes may affect",
                             "SCALED table type",
                             "The new Mv"})
        QVERIFY2(met(part), part);
}

void Walk::initTestCase()
{
    m_it = std::make_unique<TestWindow>(description());
    write_archive_of_open_type();
}

void Walk::window_record_and_files_agree_with_the_model_after_every_step()
{
    Growth growth;
    walk::Walker walker(*m_it, length.seed);
    QElapsedTimer timer;
    timer.start();
    const auto goes_on = [&] {
        return length.minutes > 0 ? timer.elapsed() < length.minutes * 60000
                                  : walker.steps() < length.steps;
    };
    while (goes_on()) {
        const QString wrong = walker.step();
        growth.after_step(walker);
        if (length.verbose || !wrong.isEmpty())
            std::fprintf(stderr, "%s\n", qPrintable(walker.last_steps().last()));
        if (walker.steps() % PROGRESS == 0) {
            std::printf("%d steps\n", walker.steps());
            std::fflush(stdout);
        }
        if (wrong.isEmpty())
            continue;
        const QString text =
            QStringLiteral("seed %1, step %2:\n%3\nthe last steps:\n%4\nagain with: "
                           "./zerl soak %2 %1")
                .arg(length.seed)
                .arg(walker.steps())
                .arg(wrong, walker.last_steps().join(QLatin1Char('\n')));
        std::fprintf(stderr, "%s\n", qPrintable(text));
        QFAIL(qPrintable(text));
    }
    std::printf("walked %d steps, %d boxes and dialogs met, %lld ms\n", walker.steps(),
                walker.questions(), static_cast<long long>(timer.elapsed()));
    if (length.verbose) {
        for (const auto &[text, count] : walker.asked())
            std::printf("%6d  %s\n", count, qPrintable(text.simplified()));
    }
    if (!growth.measured(walker))
        return;
    std::printf("%s\n", qPrintable(growth.told()));
    QVERIFY2(growth.flat(), qPrintable(growth.told()));
    if (walker.steps() >= ALL_ASKED)
        every_question_was_met(walker);
}

static int run(int argc, char **argv)
{
    const auto from_environment = [](const char *name, long long otherwise) {
        const QByteArray text = qgetenv(name);
        return text.isEmpty() ? otherwise : text.toLongLong();
    };
    const long long seed = from_environment("WALK_SEED", -1);
    length.seed = seed >= 0 ? static_cast<uint64_t>(seed) : std::random_device{}();
    length.steps = from_environment("WALK_STEPS", length.steps);
    length.minutes = from_environment("WALK_MINUTES", 0);
    QStringList rest;
    for (int i = 0; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        const bool valued = i + 1 < argc;
        if (argument == QLatin1String("--seed") && valued)
            length.seed = QString::fromLocal8Bit(argv[++i]).toULongLong();
        else if (argument == QLatin1String("--steps") && valued)
            length.steps = QString::fromLocal8Bit(argv[++i]).toLongLong();
        else if (argument == QLatin1String("--minutes") && valued)
            length.minutes = QString::fromLocal8Bit(argv[++i]).toLongLong();
        else if (argument == QLatin1String("--verbose"))
            length.verbose = true;
        else
            rest.append(argument);
    }
    // The platform without a display warns at every box.
    rest << QStringLiteral("-maxwarnings") << QStringLiteral("10");
    // As long as it is told; the walk itself never waits without an end.
    qputenv("QTEST_FUNCTION_TIMEOUT", "2000000000");
    std::printf("seed %llu\n", static_cast<unsigned long long>(length.seed));
    std::fflush(stdout);
    QApplication application(argc, argv);
    QPixmapCache::setCacheLimit(0); // it fills over thousands of steps
    Walk test;
    return QTest::qExec(&test, rest);
}
TEST_WITH_MAIN(run);

#include "walk.moc"
