// SPDX-License-Identifier: GPL-3.0-or-later
//
// Binding a channel with 1, 1,000 and 100,000 records in its archive: the time
// must not depend on their number. Runs in a private cell.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "acquisition/channelbinding.h"
#include "bench/benchcell.h"
#include "bench/ratios.h"
#include "frame/functions.h"
#include "frame/hostlink.h"
#include "sensor/tolerances.h"

void show_information(const char *text)
{
    bench::give_up(text);
}
void show_warning(const char *, const char *text)
{
    bench::give_up(text);
}

namespace
{

std::string read_file(const char *path)
{
    std::string text;
    if (std::FILE *file = std::fopen(path, "rb")) {
        char buffer[65536];
        for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
            text.append(buffer, n);
        std::fclose(file);
    }
    return text;
}

// The archive "bench<count>" and its table: one record, as often as told.
void make_archive(long count)
{
    char stem[40];
    std::snprintf(stem, sizeof stem, "/cell/tables/bench%ld", count);
    const std::string save = std::string(stem) + ".save";
    const TABLE_RECORD table = bench::straight_table(11);
    if (create_table((std::string(stem) + ".tbl").c_str(), &table) != 0 ||
        save_table_files_poly(save.c_str(), &table, SAVE_ADJUSTED) != 0)
        bench::give_up("the table files cannot be written");
    const std::string record = read_file(save.c_str());
    std::FILE *archive = std::fopen(save.c_str(), "ab");
    for (long i = 1; i < count; ++i)
        std::fwrite(record.data(), 1, record.size(), archive);
    if (record.empty() || std::fclose(archive) != 0)
        bench::give_up("the archive cannot be written");
}

void BM_bind(benchmark::State &state)
{
    auto *transfer = const_cast<AI_TRANSFER_RECORD *>(g_ai_transfer);
    std::snprintf(transfer->table_name, sizeof transfer->table_name, "bench%ld",
                  static_cast<long>(state.range(0)));
    auto cfg = std::make_unique<ZERL_CFG>();
    for (auto run : state) {
        static_cast<void>(run);
        if (bind_channel(cfg.get()) != 0 || cfg->long_current.num_points != 11)
            state.SkipWithError("the channel was not bound");
    }
}
BENCHMARK(BM_bind)->Arg(1)->Arg(1000)->Arg(100000);

} // namespace

int main(int argc, char **argv)
{
    bench::publish_cell(1);
    for (const long count : {1L, 1000L, 100000L})
        make_archive(count);
    set_none_instance_tokens();
    if (is_failure(attach_host_memories()) || is_failure(units_init_access(1)))
        bench::give_up("the host cannot be attached");
    // The transfer record is changed between runs, so take the writable mapping.
    g_ai_transfer =
        static_cast<AI_TRANSFER_RECORD *>(hostsim::map_memory(MEMORY_AI_TRANSFER, true, nullptr));
    return bench::run(argc, argv,
                      {{"BM_bind/1000", "BM_bind/1", 1.2}, {"BM_bind/100000", "BM_bind/1", 1.2}});
}
