// The server as others meet it: many clients for long, clients with TLS, and a flood of connections
// that nobody let in.

#include "bench/HttpClient.hpp"
#include "bench/Measure.hpp"
#include "bench/Statistics.hpp"
#include "bench/Tool.hpp"
#include "tests/support/CimClient.hpp"
#include "tests/support/server/ServerProcess.hpp"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using bench::LeanTool;
using bench::Median;
using bench::MillisecondsSince;
using bench::Row;
using bench::Tool;
using test_support::ServerProcess;
using Clock = std::chrono::steady_clock;

std::string GetPackage() {
    return test_support::IntrinsicCall(
        "GetInstance",
        R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="ZNX_SoftwareIdentity">)"
        R"(<KEYBINDING NAME="InstanceID"><KEYVALUE VALUETYPE="string">9</KEYVALUE></KEYBINDING>)"
        R"(</INSTANCENAME></IPARAMVALUE>)");
}

std::string ListPackages() {
    return test_support::IntrinsicCall(
        "EnumerateInstances",
        R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ZNX_SoftwareIdentity"/></IPARAMVALUE>)");
}

/// What the server uses; the largest of several looks.
struct Use {
    double megabytes = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;
};

Use LargestUse(const ServerProcess& server, std::chrono::seconds time) {
    Use largest;
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
        largest.megabytes = std::max(largest.megabytes, server.ResidentMegabytes());
        largest.descriptors = std::max(largest.descriptors, server.OpenDescriptors());
        largest.threads = std::max(largest.threads, server.Threads());
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return largest;
}

double Growth(std::size_t before, std::size_t after) {
    return after > before ? static_cast<double>(after - before) : 0;
}

void MeasureManyForLong(std::vector<Row>& rows) {
    using std::chrono::seconds;
    const LeanTool tool(100);
    const ServerProcess server;
    std::atomic<bool> ends = false;
    std::atomic<int> answers = 0;
    std::atomic<int> failures = 0;
    std::vector<std::thread> clients;
    for (int i = 0; i < 64; ++i) {
        clients.emplace_back([&] {
            while (!ends) {
                try {
                    bench::Ask(server.Port(), bench::EnumerateInventory());
                    ++answers;
                } catch (const std::exception&) {
                    ++failures;
                }
            }
        });
    }
    std::this_thread::sleep_for(seconds(5));
    const Use early = LargestUse(server, seconds(25));
    const Use late = LargestUse(server, seconds(30));
    ends = true;
    for (std::thread& client : clients) {
        client.join();
    }
    const std::string who = "64 clients for 60 s: ";
    rows.push_back({who + "answers", static_cast<double>(answers), "", 1, true});
    rows.push_back({who + "not answered", static_cast<double>(failures), "", 0.5});
    rows.push_back({who + "growth of memory after half of it",
                    std::max(0.0, late.megabytes - early.megabytes), "MB", 1});
    rows.push_back(
        {who + "growth in descriptors", Growth(early.descriptors, late.descriptors), "", 4});
    rows.push_back({who + "growth in threads", Growth(early.threads, late.threads), "", 4});
}

/// A server with one user, and TLS beside plain HTTP.
class Guarded {
public:
    Guarded() {
        std::filesystem::create_directory(directory_);
        Run("printf 'secret\n' | " CIMSERVER_PROGRAM " passwd somebody --file " + File("users"));
        Run(CIMSERVER_PROGRAM " certificate --cert " + File("cert.pem") + " --key " + File("key"));
        std::ofstream(File("conf")) << "simple_auth.password_file = " << File("users")
                                    << "\nhttp_server.SSL_cert = " << File("cert.pem")
                                    << "\ncimserver.tls_key = " << File("key") << "\n";
        server_ = std::make_unique<ServerProcess>(
            std::vector<std::string>{"--config", File("conf"), "--tls-listen", "127.0.0.1:0"});
    }
    ~Guarded() {
        server_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    const ServerProcess& Server() const { return *server_; }

private:
    std::string File(const std::string& name) const { return directory_ / name; }
    static void Run(const std::string& command) {
        if (std::system((command + " >/dev/null").c_str()) != 0) {
            throw std::runtime_error("this failed: " + command);
        }
    }

    const std::filesystem::path directory_ =
        std::filesystem::temp_directory_path() / ("bench-users-" + std::to_string(getpid()));
    std::unique_ptr<ServerProcess> server_;
};

/// One connection that is kept.
class KeptConnection {
public:
    explicit KeptConnection(const std::string& url)
        : handle_(curl_easy_init()),
          headers_(curl_slist_append(nullptr, "Content-Type: application/xml; charset=\"utf-8\"")) {
        for (const char* header : {"CIMOperation: MethodCall", "CIMObject: root/cimv2"}) {
            headers_ = curl_slist_append(headers_, header);
        }
        curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle_, CURLOPT_USERPWD, "somebody:secret");
        curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 0L);
        curl_easy_setopt(handle_, CURLOPT_NOPROXY, "*");
        curl_easy_setopt(handle_, CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &Drop);
        curl_easy_setopt(handle_, CURLOPT_BUFFERSIZE, 256L * 1024);
    }
    ~KeptConnection() {
        curl_slist_free_all(headers_);
        curl_easy_cleanup(handle_);
    }
    KeptConnection(const KeptConnection&) = delete;
    KeptConnection& operator=(const KeptConnection&) = delete;

    /// In milliseconds.
    double Ask(const std::string& method, const std::string& body) {
        curl_slist* all = nullptr;
        for (const curl_slist* header = headers_; header != nullptr; header = header->next) {
            all = curl_slist_append(all, header->data);
        }
        all = curl_slist_append(all, ("CIMMethod: " + method).c_str());
        curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, all);
        curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body.c_str());
        const auto start = Clock::now();
        const CURLcode code = curl_easy_perform(handle_);
        const double time = MillisecondsSince(start);
        curl_slist_free_all(all);
        if (code != CURLE_OK) {
            throw std::runtime_error(curl_easy_strerror(code));
        }
        return time;
    }

private:
    static std::size_t Drop(const char* /*bytes*/, std::size_t size, std::size_t count,
                            void* /*user*/) {
        return size * count;
    }

    CURL* handle_;
    curl_slist* headers_;
};

std::string Url(const char* scheme, std::uint16_t port) {
    return std::string(scheme) + "://127.0.0.1:" + std::to_string(port) + "/cimom";
}

/// In turn, so that a slow moment of the machine hits both alike.
double TlsOverPlain(const ServerProcess& server, const std::string& method, const std::string& body,
                    int calls) {
    KeptConnection plain(Url("http", server.Port()));
    KeptConnection tls(Url("https", server.TlsPort()));
    std::vector<double> plainTimes;
    std::vector<double> tlsTimes;
    for (int i = 0; i < calls; ++i) {
        plainTimes.push_back(plain.Ask(method, body));
        tlsTimes.push_back(tls.Ask(method, body));
    }
    return Median(tlsTimes) / Median(plainTimes);
}

void MeasureTls(const ServerProcess& server, std::vector<Row>& rows) {
    KeptConnection(Url("http", server.Port())).Ask("EnumerateInstances", ListPackages());
    rows.push_back({"TLS over plain, kept connection: GetInstance",
                    TlsOverPlain(server, "GetInstance", GetPackage(), 1'000), "times", 1.5});
    rows.push_back({"TLS over plain, kept connection: 1000 instances",
                    TlsOverPlain(server, "EnumerateInstances", ListPackages(), 100), "times", 1.5});
}

/// Opens connections from an address of its own, one after the other, asks without credentials, and
/// goes when the refusal is there.
void Flood(std::uint16_t port, unsigned number, const std::atomic<bool>& ends,
           std::atomic<int>& connections) {
    const std::string request =
        "POST /cimom HTTP/1.1\r\nHost: localhost\r\nContent-Length: 0\r\n\r\n";
    while (!ends) {
        const int flooding = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in own{};
        own.sin_family = AF_INET;
        own.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1 + number);
        sockaddr_in server = own;
        server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        server.sin_port = htons(port);
        if (bind(flooding, reinterpret_cast<const sockaddr*>(&own), sizeof own) == 0 &&
            connect(flooding, reinterpret_cast<const sockaddr*>(&server), sizeof server) == 0 &&
            send(flooding, request.data(), request.size(), MSG_NOSIGNAL) > 0) {
            char answer[1024];
            if (recv(flooding, answer, sizeof answer, 0) > 0) {
                ++connections;
            }
        }
        close(flooding);
    }
}

double MedianOfCalls(KeptConnection& client, std::chrono::seconds time) {
    std::vector<double> times;
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
        times.push_back(client.Ask("EnumerateInstances", ListPackages()));
    }
    return Median(times);
}

void MeasureFlood(const ServerProcess& server, std::vector<Row>& rows) {
    constexpr std::chrono::seconds time{5};
    KeptConnection client(Url("http", server.Port()));
    const double alone = MedianOfCalls(client, time);
    std::atomic<bool> ends = false;
    std::atomic<int> connections = 0;
    std::vector<std::jthread> floods;
    for (unsigned number = 0; number < 4; ++number) {
        floods.emplace_back([&, number] { Flood(server.Port(), number, ends, connections); });
    }
    double among = 0;
    try {
        among = MedianOfCalls(client, time);
    } catch (...) {
        ends = true;
        throw;
    }
    ends = true;
    floods.clear();
    rows.push_back({"flood: refused connections per second",
                    connections / std::chrono::duration<double>(time).count(), ""});
    rows.push_back({"flood: 1000 instances over the time without", among / alone, "times", 2});
}

} // namespace

std::vector<Row> bench::MeasureExposure() {
    std::vector<Row> rows;
    MeasureManyForLong(rows);
    const LeanTool tool(1'000);
    const Guarded guarded;
    MeasureTls(guarded.Server(), rows);
    MeasureFlood(guarded.Server(), rows);
    return rows;
}
