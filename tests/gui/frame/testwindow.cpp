// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/frame/testwindow.h"

QByteArray TestWindow::description()
{
    return TestCell::simple_description() + R"(
channel 4
  label "Channel Four"
  units kPa
  table four
  record POLY
  points 0:0 1000:11 2000:24 3000:39 4000:56 5000:75
  fit 2
  sensor kPa 0 100 MODEL4 SERIAL4
channel 5
  label "Channel Five"
  units kPa
  table five
  record POLY_RANGE
  range 2
  points 0:0 1000:20 2000:40
  fit 1
  range 5
  points 2000:40 3000:60 4000:80 5000:100
  fit 1
  sensor kPa 0 100 MODEL5 SERIAL5
channel 6
  label "Channel Six"
  units kPa
  table six
  record INTERP
  points 0:0 5000:100
  sensor kPa 100 100 MODEL6 SERIAL6
channel 7
  label "Channel Seven"
  units kPa
  table seven
  active 2
  record INTERP
  points 0:0 5000:100
  sensor kPa 0 100 MODEL7 SERIAL7
channel 8
  label "Channel Eight"
  units kPa
  table eight
  input kPa 0 126
  response linear 50
  record INTERP
  sample 64
  sensor kPa 0 126 MODEL8 SERIAL8
channel 9
  label "Channel Nine"
  units DEG_C
  table nine
  record INTERP
  points 0:0 10:100 20:200 30:300
  sensor DEG_C 0 300 MODEL9 SERIAL9
)";
}

TestWindow::TestWindow(const QByteArray &cell_description,
                       const std::function<MainWindow *()> &make)
    : cell(cell_description)
{
    clear_cell();
    if (!cell.start())
        qFatal("%s", qPrintable(cell.error()));
    keep_tables();
    // The test's own loop must not end with the window.
    QApplication::setQuitOnLastWindowClosed(false);
    g_rebuild_wait_ms = 0;
    window = make();
    set_main_window(window);
    form = form_of(window);
    // Never deleted by the window: they live as long as the process.
    static auto *const kept = new QVector<void *>;
    kept->append(window->monitor());
    kept->append(window->table_mutex());
    window->show();
}

TestWindow::~TestWindow()
{
    delete window;
    set_main_window(nullptr);
}

int TestWindow::item_of(int channel) const
{
    return form->cboCurrentChannel->findText(channel_item_prefix(channel), Qt::MatchContains);
}

void TestWindow::bind_afresh(int channel)
{
    forget_work();
    restore_tables();
    {
        const QSignalBlocker blocker(form->cboCurrentChannel);
        form->cboCurrentChannel->setCurrentIndex(0);
    }
    pick(channel);
}

void TestWindow::forget_work()
{
    g_captured_points = 0;
    g_cfg->table_dirty = 0;
    for (QLineEdit *box : {form->txtAsFound, form->txtAfterService, form->txtAdjustCalibration,
                           form->txtVerificationData, form->txtNewCorrelation})
        box->clear();
}

bool TestWindow::reading(double mv)
{
    if (!cell.mv(g_cfg->channel, mv))
        return false;
    relaxed_store(g_monitor_enabled, static_cast<uint8_t>(0));
    return QTest::qWaitFor(
        [mv] {
            return relaxed_load(g_monitor_enabled) == 1 && relaxed_load(g_sample.mv_std) == 0.0 &&
                   relaxed_load(g_sample.mv_mean) == mv && relaxed_load(g_cfg->live_mv) == mv &&
                   relaxed_load(g_sample.mv_min) == mv && relaxed_load(g_sample.mv_max) == mv;
        },
        DEADLINE_MS);
}

bool TestWindow::mutex_is_free() const
{
    bool taken = false;
    std::thread([&] {
        taken = window->table_mutex()->tryLock(1000);
        if (taken)
            window->table_mutex()->unlock();
    }).join();
    return taken;
}

QPushButton *TestWindow::button(int i) const
{
    return window->row(i)->findChild<QPushButton *>(QStringLiteral("btnCapture"));
}

bool TestWindow::capture(int i, double mv, const QString &value)
{
    if (!reading(mv))
        return false;
    window->row(i)->value_field()->setText(value);
    button(i)->click();
    return true;
}

bool TestWindow::capture(int i, double mv, double value)
{
    return capture(i, mv, QString::number(value, 'g', 17));
}

bool TestWindow::ticks(int count) const
{
    int seen = 0;
    QObject counter;
    QObject::connect(window->monitor(), &monitorThread::plotInfo, &counter,
                     [&seen](ZERL_CFG *) { ++seen; });
    return QTest::qWaitFor([&] { return seen >= count; }, DEADLINE_MS);
}

QLabel *TestWindow::number_label(int i) const
{
    return window->row(i)->findChild<QLabel *>(QStringLiteral("lblIndexNum"));
}

int TestWindow::rows_shown() const
{
    int shown = 0;
    while (shown < MAX_POINTS && window->row(shown)->children_visible())
        ++shown;
    for (int i = shown; i < MAX_POINTS; ++i) {
        if (window->row(i)->children_visible())
            return -1;
    }
    return shown;
}

QString TestWindow::table_path(const QString &name, const char *extension)
{
    return QStringLiteral("/cell/tables/") + name + QLatin1String(extension);
}

void TestWindow::restore_tables()
{
    verify_tables();
    const QDir folder(QStringLiteral("/cell/tables"));
    for (const QString &name : folder.entryList(QDir::Files)) {
        if (!m_tables.contains(name))
            QFile::remove(folder.filePath(name));
    }
    for (auto table = m_tables.cbegin(); table != m_tables.cend(); ++table) {
        if (read_file(folder.filePath(table.key())) != table.value())
            write_file(folder.filePath(table.key()), table.value());
    }
}

void TestWindow::keep_tables()
{
    const QDir folder(QStringLiteral("/cell/tables"));
    for (const QString &name : folder.entryList(QDir::Files))
        m_tables.insert(name, read_file(folder.filePath(name)));
}
