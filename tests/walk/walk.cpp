// SPDX-License-Identifier: GPL-3.0-or-later
//
// Walks over the real window in random steps, held against a model after each.
// A walk is a process: the window's monitor thread never ends, and every walk
// of a seed begins alike.
//
//   walk [--seed N] [--steps N | --minutes N] [--verbose]
//
// The same from the environment: WALK_SEED, WALK_STEPS, WALK_MINUTES.
#include <algorithm>
#include <cstdio>
#include <random>

#include <QElapsedTimer>
#include <QtTest>

#include "host/operations.h"
#include "hostsim/runtime/tablefile.h"
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

// What the heap holds over the walk. Two things are kept for good by design: 64
// rows at each give-up, and the process of each rebuild.
class Growth
{
public:
    static constexpr int WARM_UP = 1000;
    static constexpr int SPAN = 500; // steps over which the least is taken
    static constexpr long long KEPT_PER_REBUILD = 8 * 1024;
    static constexpr long long KEPT_PER_GIVE_UP = 4 * 1024 * 1024;
    static constexpr long long SLACK = 256 * 1024;

    void before_step() { m_before = walk::held_bytes(); }
    void after_step(const walk::Walker &walker)
    {
        const long long now = walk::held_bytes();
        if (walker.model().gave_up || walker.model().rebuilt)
            m_excused += now - m_before;
        if (walker.steps() <= WARM_UP) {
            m_excused_before = m_excused;
            return;
        }
        (walker.model().gave_up ? m_give_ups : m_rebuilds) +=
            walker.model().gave_up || walker.model().rebuilt ? 1 : 0;
        const long long rest = now - m_excused;
        if (walker.steps() <= WARM_UP + SPAN)
            m_first = std::min(m_first, rest);
        m_recent[static_cast<std::size_t>(walker.steps() % SPAN)] = rest;
        m_last = now;
    }
    bool measured(const walk::Walker &walker) const { return walker.steps() >= WARM_UP + 2 * SPAN; }
    long long grown() const { return *std::min_element(m_recent, m_recent + SPAN) - m_first; }
    long long excused() const { return m_excused - m_excused_before; }
    bool flat() const
    {
        return grown() <= SLACK &&
               excused() <= m_give_ups * KEPT_PER_GIVE_UP + m_rebuilds * KEPT_PER_REBUILD + SLACK;
    }
    QString told() const
    {
        return QStringLiteral("heap: %1 bytes held, %2 grown since step %3; beside that %4 of %5 "
                              "rebuilds and %6 give-ups")
            .arg(m_last)
            .arg(grown())
            .arg(WARM_UP)
            .arg(excused())
            .arg(m_rebuilds)
            .arg(m_give_ups);
    }

private:
    long long m_before = 0;
    long long m_excused = 0;
    long long m_excused_before = 0;
    long long m_first = INT64_MAX;
    long long m_last = 0;
    long long m_rebuilds = 0;
    long long m_give_ups = 0;
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
    std::unique_ptr<TestWindow> m_it;
};

void Walk::initTestCase()
{
    m_it = std::make_unique<TestWindow>(description());
    write_archive_of_open_type();
}

void Walk::window_record_and_files_agree_with_the_model_after_every_step()
{
    walk::Walker walker(*m_it, length.seed);
    Growth growth;
    QElapsedTimer timer;
    timer.start();
    const auto goes_on = [&] {
        return length.minutes > 0 ? timer.elapsed() < length.minutes * 60000
                                  : walker.steps() < length.steps;
    };
    while (goes_on()) {
        growth.before_step();
        const QString wrong = walker.step();
        growth.after_step(walker);
        if (length.verbose || !wrong.isEmpty())
            std::fprintf(stderr, "%s\n", qPrintable(walker.last_steps().last()));
        if (wrong.isEmpty())
            continue;
        const QString text =
            QStringLiteral("seed %1, step %2:\n%3\nthe last steps:\n%4\nagain with: --seed %1 "
                           "--steps %2")
                .arg(length.seed)
                .arg(walker.steps())
                .arg(wrong, walker.last_steps().join(QLatin1Char('\n')));
        std::fprintf(stderr, "%s\n", qPrintable(text));
        QFAIL(qPrintable(text));
    }
    std::printf("walked %d steps, %d boxes and dialogs met, %lld ms\n", walker.steps(),
                walker.questions(), static_cast<long long>(timer.elapsed()));
    if (!growth.measured(walker))
        return;
    std::printf("%s\n", qPrintable(growth.told()));
    QVERIFY2(growth.flat(), qPrintable(growth.told()));
}

int main(int argc, char **argv)
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
    // As long as it is told; the walk itself never waits without an end.
    qputenv("QTEST_FUNCTION_TIMEOUT", "2000000000");
    std::printf("seed %llu\n", static_cast<unsigned long long>(length.seed));
    std::fflush(stdout);
    QApplication application(argc, argv);
    Walk test;
    return QTest::qExec(&test, rest);
}

#include "walk.moc"
