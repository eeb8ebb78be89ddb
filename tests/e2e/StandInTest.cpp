// The stand-in tool in its place: what dpkg knows is what a CIM client sees.

#include "e2e/OverHttp.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace {

std::multiset<std::string> InstalledPackages() {
    std::FILE* pipe = popen("dpkg-query -W -f='${db:Status-Status} ${Package}\\n'", "re");
    std::multiset<std::string> names;
    std::array<char, 4096> line;
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe) != nullptr) {
        const std::string text = line.data();
        if (text.rfind("installed ", 0) == 0) {
            names.insert(text.substr(10, text.size() - 11));
        }
    }
    pclose(pipe);
    return names;
}

std::string NameOf(const std::string& line) {
    const std::string before = "Name=\"";
    const std::size_t start = line.find(before) + before.size();
    return line.substr(start, line.find('"', start) - start);
}

class StandIn : public e2e::OverHttp {
protected:
    void SetUp() override {
        setenv("PATCHKEEPER_ROOT", testing::TempDir().c_str(), 1);
        StartServer();
    }
};

TEST_F(StandIn, EveryInstalledPackageIsAnInstance) {
    std::multiset<std::string> served;
    for (const std::string& line : Wbemcli("ei", "ZNX_SoftwareIdentity").Lines()) {
        served.insert(NameOf(line));
    }
    EXPECT_GT(served.size(), 50U);
    EXPECT_EQ(served, InstalledPackages());
}

} // namespace
