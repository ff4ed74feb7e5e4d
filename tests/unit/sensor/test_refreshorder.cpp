// SPDX-License-Identifier: GPL-3.0-or-later
//
// The order in which the six values are refreshed: bias before tolerance, class
// by class. Seen by the tokens that the host is asked to convert.
#include <memory>

#include <dlfcn.h>

#include <QTest>

#include "frame/zerl_cfg.h"
#include "host/operations.h"
#include "sensor/tolerances.h"
#include "support/testmain.h"

namespace
{
QStringList converted;
}

extern "C" int32_t units_token_convert(const char *token, const char *to, double *out)
{
    using Convert = int32_t (*)(const char *, const char *, double *);
    static const auto host = reinterpret_cast<Convert>(dlsym(RTLD_NEXT, "units_token_convert"));
    converted.append(QString::fromUtf8(token));
    return host(token, to, out);
}

class RefreshOrder : public QObject
{
    Q_OBJECT

private slots:
    void bias_before_tolerance_class_by_class();
};

void RefreshOrder::bias_before_tolerance_class_by_class()
{
    QVERIFY(units_init_access(1) != -1);
    set_none_instance_tokens();
    ooa_bias_token = QStringLiteral("1[PCT]");
    ooa_tolerance_token = QStringLiteral("2[PCT]");
    oot_bias_token = QStringLiteral("3[PCT]");
    oot_tolerance_token = QStringLiteral("4[PCT]");
    soot_bias_token = QStringLiteral("5[PCT]");
    soot_tolerance_token = QStringLiteral("6[PCT]");
    const auto cfg = std::make_unique<ZERL_CFG>();
    qstrcpy(cfg->table.sensor_units, "kPa");
    qstrcpy(cfg->table.eng_units, "kPa");
    cfg->table.sensor_range_max = 100.0;
    load_tolerances_and_biases(cfg.get());
    QCOMPARE(converted, QStringList({"1[PCT]", "2[PCT]", "3[PCT]", "4[PCT]", "5[PCT]", "6[PCT]"}));
    QCOMPARE(cfg->table.ooa_bias, 0.01);
    QCOMPARE(cfg->table.ooa_tol, 2.0);
    QCOMPARE(cfg->table.oot_bias, 0.03);
    QCOMPARE(cfg->table.oot_tol, 4.0);
    QCOMPARE(cfg->table.soot_bias, 0.05);
    QCOMPARE(cfg->table.soot_tol, 6.0);
}

LOOP_TEST(RefreshOrder);
#include "test_refreshorder.moc"
