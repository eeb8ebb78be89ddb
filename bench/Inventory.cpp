// The installed software, from the tool to the client: what each stage costs, and how that compares
// with the least that any program would pay for the same bytes, measured in the same run.

#include "bench/HttpClient.hpp"
#include "bench/HttpFloor.hpp"
#include "bench/Measure.hpp"
#include "bench/Statistics.hpp"
#include "bench/Table.hpp"
#include "bench/Tool.hpp"
#include "provider/common/Common.hpp"
#include "provider/master/MasterProvider.hpp"
#include "tests/support/provider/Provider.hpp"
#include "tests/support/server/ServerProcess.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using bench::Median;
using bench::Row;
using bench::Tool;

class Counter : public OpenWBEM::CIMInstanceResultHandlerIFC {
public:
    int Count() const { return count_; }

protected:
    void doHandle(const OpenWBEM::CIMInstance&) override { ++count_; }

private:
    int count_ = 0;
};

// The floor: the same output through the same shell pipe, read by lines and cut into fields.
int ReadAndCut() {
    std::FILE* pipe = popen("/qv/bin/patchkeeper  2>&1", "r");
    std::array<char, 1024> line;
    int fields = 0;
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe) != nullptr) {
        char* position = nullptr;
        for (char* field = strtok_r(line.data(), "\t\n", &position); field != nullptr;
             field = strtok_r(nullptr, "\t\n", &position)) {
            ++fields;
        }
    }
    pclose(pipe);
    return fields;
}

std::size_t ReadOnly() {
    std::FILE* pipe = popen("/qv/bin/patchkeeper  2>&1", "r");
    std::array<char, 64 * 1024> block;
    std::size_t bytes = 0;
    for (std::size_t got = 1; got > 0; bytes += got) {
        got = std::fread(block.data(), 1, block.size(), pipe);
    }
    pclose(pipe);
    return bytes;
}

// The library's own runner and tokenizer, without records and instances.
void CutWithLibrary(int expected) {
    OpenWBEM::Array<OpenWBEM::String> lines;
    Execute("/qv/bin/patchkeeper ", lines);
    int fields = 0;
    for (const OpenWBEM::String& line : lines) {
        std::string text = line.c_str();
        benchmark::DoNotOptimize(GetNextToken(text.data(), "Name", "line"));
        for (const char* field : {"Version", "Classification", "Date"}) {
            benchmark::DoNotOptimize(GetNextToken(nullptr, field, "line"));
        }
        fields += 4;
    }
    if (fields != 4 * expected) {
        throw std::runtime_error("the library did not cut every line");
    }
}

void EnumerateInProcess(SoftwareUpdateProvider& provider,
                        const OpenWBEM::ProviderEnvironmentIFCRef& env, int expected) {
    Counter counter;
    provider.enumInstances(
        env, "root/cimv2", "ZNX_SoftwareIdentity", counter, OpenWBEM::WBEMFlags::E_NOT_LOCAL_ONLY,
        OpenWBEM::WBEMFlags::E_DEEP, OpenWBEM::WBEMFlags::E_EXCLUDE_QUALIFIERS,
        OpenWBEM::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, nullptr, OpenWBEM::CIMClass(OpenWBEM::CIMNULL),
        OpenWBEM::CIMClass(OpenWBEM::CIMNULL));
    if (counter.Count() != expected) {
        throw std::runtime_error("the provider did not enumerate every package");
    }
}

std::string Named(const char* stage, int count) {
    return stage + std::to_string(count);
}

template <typename Work>
void Register(const std::string& name, Tool& tool, int count, Work work) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&tool, count, work](benchmark::State& state) {
                                     tool.List(count);
                                     for (auto iteration : state) {
                                         work();
                                     }
                                 })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

// Server start to first answer: an enumeration of ten packages, in milliseconds.
double StartToFirstAnswer(Tool& tool) {
    tool.List(10);
    const auto before = std::chrono::steady_clock::now();
    const test_support::ServerProcess server;
    bench::Ask(server.Port(), bench::EnumerateInventory());
    const std::chrono::duration<double, std::milli> time =
        std::chrono::steady_clock::now() - before;
    return time.count();
}

void AddRows(std::vector<Row>& rows, const bench::Times& times, int count,
             std::size_t answerBytes) {
    const double floor = times.Median(Named("floor/", count));
    const double tool = times.Median(Named("tool/", count));
    const double cutting = times.Median(Named("cut/", count));
    const double inProcess = times.Median(Named("enumerate/", count));
    const double http = times.Median(Named("http/", count));
    const double httpFloor = times.Median(Named("httpfloor/", count));
    const std::string of = std::to_string(count) + " packages";
    rows.push_back({of + ": floor, the pipe read and cut", floor, "ms"});
    rows.push_back({of + ": tool and pipe alone", tool, "ms"});
    rows.push_back({of + ": cutting, beyond the tool", cutting - tool, "ms"});
    rows.push_back({of + ": records and instances, beyond the cutting", inProcess - cutting, "ms"});
    rows.push_back({of + ": in process, all of it, over the floor", inProcess / floor, "times", 6});
    rows.push_back({of + ": the answer's size", static_cast<double>(answerBytes) / 1e6, "MB"});
    rows.push_back({of + ": floor, these bytes from memory over HTTP", httpFloor, "ms"});
    rows.push_back({of + ": over HTTP beyond in process", http - inProcess, "ms"});
    rows.push_back({of + ": the same over the floor", (http - inProcess) / httpFloor, "times", 3});
}

} // namespace

std::vector<Row> bench::MeasureInventory() {
    Tool tool;
    std::vector<double> starts;
    double idle = 0;
    for (int i = 0; i < 9; ++i) {
        starts.push_back(StartToFirstAnswer(tool));
    }

    const OpenWBEM::ProviderEnvironmentIFCRef env(
        new test_support::Environment(std::make_shared<test_support::LogLines>()));
    SoftwareUpdateProvider provider;
    provider.initialize(env);
    const test_support::ServerProcess server;
    tool.List(10);
    bench::Ask(server.Port(), bench::EnumerateInventory());
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    idle = server.ResidentMegabytes();

    const std::array<int, 2> counts = {10'000, 100'000};
    std::vector<std::unique_ptr<bench::HttpFloor>> floors;
    std::vector<std::size_t> sizes;
    for (const int count : counts) {
        tool.List(count);
        std::string answer;
        sizes.push_back(bench::Ask(server.Port(), bench::EnumerateInventory(), &answer));
        floors.push_back(std::make_unique<bench::HttpFloor>(answer));
        const std::uint16_t floorPort = floors.back()->Port();
        Register(Named("floor/", count), tool, count, [count] {
            if (ReadAndCut() != 4 * count) {
                throw std::runtime_error("the floor did not see every field");
            }
        });
        Register(Named("tool/", count), tool, count, [] { ReadOnly(); });
        Register(Named("cut/", count), tool, count, [count] { CutWithLibrary(count); });
        Register(Named("enumerate/", count), tool, count,
                 [&provider, &env, count] { EnumerateInProcess(provider, env, count); });
        Register(Named("http/", count), tool, count,
                 [&server] { bench::Ask(server.Port(), bench::EnumerateInventory()); });
        Register(Named("httpfloor/", count), tool, count,
                 [floorPort] { bench::Ask(floorPort, bench::EnumerateInventory()); });
    }

    bench::Times times;
    benchmark::RunSpecifiedBenchmarks(&times);

    std::vector<Row> rows;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        AddRows(rows, times, counts[i], sizes[i]);
    }
    rows.push_back({"server start to first answer, median of 9", Median(starts), "ms", 50});
    rows.push_back({"idle resident memory after a first answer", idle, "MB", 9});
    return rows;
}
