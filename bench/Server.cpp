// The server itself: large answers, many clients at once, small calls.

#include "bench/HttpClient.hpp"
#include "bench/HttpFloor.hpp"
#include "bench/Measure.hpp"
#include "bench/Statistics.hpp"
#include "bench/Tool.hpp"
#include "tests/support/CimClient.hpp"
#include "tests/support/server/ServerProcess.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using bench::LeanTool;
using bench::Median;
using bench::MillisecondsSince;
using bench::Row;
using bench::Tool;
using test_support::CimClient;
using test_support::ServerProcess;
using Clock = std::chrono::steady_clock;

constexpr int repetitions = 9;

/// What the server has used of the processors so far, its children not counted, in milliseconds.
double CpuMilliseconds(const ServerProcess& server) {
    clockid_t clock = 0;
    timespec time{};
    if (clock_getcpuclockid(server.Pid(), &clock) != 0 || clock_gettime(clock, &time) != 0) {
        throw std::runtime_error("the server's processor time cannot be read");
    }
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void MeasureLargeAnswer(Tool& tool, std::vector<Row>& rows) {
    tool.List(100'000);
    const ServerProcess server;
    std::string answer;
    bench::Ask(server.Port(), bench::EnumerateInventory(), &answer);
    const bench::HttpFloor floor(answer);
    std::vector<double> cpu;
    std::vector<double> wall;
    std::vector<double> floorWall;
    for (int i = 0; i < repetitions; ++i) {
        const double before = CpuMilliseconds(server);
        auto start = Clock::now();
        bench::Ask(server.Port(), bench::EnumerateInventory());
        wall.push_back(MillisecondsSince(start));
        cpu.push_back(CpuMilliseconds(server) - before);
        start = Clock::now();
        bench::Ask(floor.Port(), bench::EnumerateInventory());
        floorWall.push_back(MillisecondsSince(start));
    }
    rows.push_back({"100000 instances: the server's CPU", Median(cpu), "ms", 450});
    rows.push_back({"100000 instances: the whole request over the floor",
                    Median(wall) / Median(floorWall), "times", 5});
}

/// The average of so many clients that ask again and again for `time`.
double AnswersPerSecond(const ServerProcess& server, int clients, std::chrono::seconds time) {
    std::atomic<int> answers = 0;
    std::atomic<int> failures = 0;
    const auto start = Clock::now();
    std::vector<std::thread> threads;
    for (int i = 0; i < clients; ++i) {
        threads.emplace_back([&] {
            try {
                while (Clock::now() - start < time) {
                    bench::Ask(server.Port(), bench::EnumerateInventory());
                    ++answers;
                }
            } catch (const std::exception&) {
                ++failures;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failures != 0) {
        throw std::runtime_error("one of several clients was not answered");
    }
    return answers * 1e3 / MillisecondsSince(start);
}

void MeasureManyClients(std::vector<Row>& rows) {
    const LeanTool tool(1'000);
    const ServerProcess server;
    rows.push_back({.what = "8 clients, 1000 instances each",
                    .figure = AnswersPerSecond(server, 8, std::chrono::seconds(5)),
                    .unit = "answers/s",
                    .limit = 220,
                    .isLeast = true});
}

void MeasureMillion(std::vector<Row>& rows) {
    const ServerProcess server({"--provider-dir", MILLION_PROVIDERS, "--mof", MILLION_MOF});
    CimClient(server.Port())
        .Post(test_support::IntrinsicCall(
            "GetClass",
            R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="TS_Million"/></IPARAMVALUE>)"));
    const double idle = server.ResidentMegabytes();
    const auto start = Clock::now();
    bench::Ask(server.Port(), bench::Enumerate("TS_Million"));
    rows.push_back({"1000000 instances made on the fly: time", MillisecondsSince(start), "ms"});
    rows.push_back({"1000000 instances made on the fly: memory above idle",
                    (server.PeakMegabytes() - idle) / 1.048576, "MiB", 16});
}

void RunTool() {
    std::FILE* pipe = popen("/qv/bin/patchkeeper --status ", "r");
    if (pipe == nullptr) {
        throw std::runtime_error("the tool does not start");
    }
    std::array<char, 1024> line;
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe) != nullptr) {
    }
    pclose(pipe);
}

void MeasureProgress(Tool& tool, std::vector<Row>& rows) {
    tool.ReportProgress();
    const ServerProcess server;
    CimClient client(server.Port());
    const std::string call = test_support::ExtrinsicCall(
        "GetProgress", R"(<CLASSNAME NAME="ZNX_AvailableSoftwareUpdate"/>)", "");
    std::vector<double> asked;
    std::vector<double> ran;
    for (int i = 0; i < 400; ++i) {
        auto start = Clock::now();
        if (client.Post(call).body.find("Half of it") == std::string::npos) {
            throw std::runtime_error("GetProgress does not tell what the tool says");
        }
        asked.push_back(MillisecondsSince(start));
        start = Clock::now();
        RunTool();
        ran.push_back(MillisecondsSince(start));
    }
    rows.push_back({"GetProgress: floor, the tool by popen", Median(ran), "ms"});
    rows.push_back(
        {"GetProgress, keep-alive, over the floor", Median(asked) / Median(ran), "times", 1.15});
}

void MeasureGetInstance(Tool& tool, std::vector<Row>& rows) {
    tool.List(1'000);
    const ServerProcess server;
    bench::Ask(server.Port(), bench::EnumerateInventory());
    CimClient client(server.Port());
    const std::string call = test_support::IntrinsicCall(
        "GetInstance",
        R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="ZNX_SoftwareIdentity">)"
        R"(<KEYBINDING NAME="InstanceID"><KEYVALUE VALUETYPE="string">999</KEYVALUE></KEYBINDING>)"
        R"(</INSTANCENAME></IPARAMVALUE>)");
    constexpr int calls = 2'000;
    const double before = CpuMilliseconds(server);
    const auto start = Clock::now();
    for (int i = 0; i < calls; ++i) {
        if (client.Post(call).body.find("package-999") == std::string::npos) {
            throw std::runtime_error("GetInstance does not return the package");
        }
    }
    rows.push_back({"GetInstance, keep-alive: round trip", MillisecondsSince(start) / calls, "ms"});
    rows.push_back({"GetInstance, keep-alive: the server's CPU",
                    (CpuMilliseconds(server) - before) / calls, "ms", 0.1});
}

} // namespace

std::vector<Row> bench::MeasureServer() {
    Tool tool;
    std::vector<Row> rows;
    MeasureLargeAnswer(tool, rows);
    MeasureManyClients(rows);
    MeasureMillion(rows);
    MeasureProgress(tool, rows);
    MeasureGetInstance(tool, rows);
    return rows;
}
