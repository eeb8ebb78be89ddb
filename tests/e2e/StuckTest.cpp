// A call that runs too long when part of its answer is on its way.
#include "support/CimClient.hpp"
#include "support/server/ServerProcess.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

namespace {

using test_support::CimClient;
using test_support::HeaderList;
using test_support::HttpAnswer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

class StuckCall : public testing::Test {
protected:
    StuckCall() {
        std::string name = (std::filesystem::temp_directory_path() / "stuck.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory_ = name;
        server_.emplace(std::vector<std::string>{"--provider-dir", SHELF_PROVIDERS, "--mof",
                                                 TEST_DATA_DIRECTORY "/shelf/shelf.mof"},
                        "cimserver.call_seconds = 1\nstuck.release = " +
                            (directory_ / "release").string() + "\n");
    }
    ~StuckCall() override {
        Release();
        EXPECT_EQ(server_->Stop(), 0);
        std::filesystem::remove_all(directory_);
    }
    void Release() const { std::ofstream(directory_ / "release") << "go\n"; }
    HttpAnswer Names(const HeaderList& moreHeaders) {
        return CimClient(server_->Port())
            .Post(
                test_support::IntrinsicCall(
                    "EnumerateInstanceNames",
                    R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="ET_Stuck"/></IPARAMVALUE>)"),
                moreHeaders);
    }

private:
    std::filesystem::path directory_;
    std::optional<test_support::ServerProcess> server_;
};

const std::string reason = "general error (EnumerateInstanceNames of ET_Stuck has been running for "
                           "1 s; it is left to finish)";

TEST_F(StuckCall, EndsItsAnswerWithTheErrorAsTrailers) {
    const HttpAnswer answer = Names({{"TE", "trailers"}, {"Connection", "TE"}});
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.body, HasSubstr("<KEYVALUE VALUETYPE=\"string\">0xxx"));
    EXPECT_THAT(answer.body, Not(HasSubstr("</CIM>")));
    EXPECT_THAT(answer.trailers,
                ElementsAre(Pair("CIMStatusCode", "1"), Pair("CIMStatusCodeDescription", reason)));
    Release();
    const HttpAnswer whole = Names({{"TE", "trailers"}, {"Connection", "TE"}});
    EXPECT_THAT(whole.body, HasSubstr(">1999xxx"));
    EXPECT_TRUE(whole.trailers.empty());
}

TEST_F(StuckCall, IsAnErrorForAClientWithoutTrailers) {
    const HttpAnswer answer = Names({});
    EXPECT_THAT(answer.body, HasSubstr("<ERROR CODE=\"1\" DESCRIPTION=\"" + reason + "\">"));
    EXPECT_THAT(answer.body, Not(HasSubstr("INSTANCENAME")));
}

} // namespace
