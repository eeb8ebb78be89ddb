// Where the server may listen and whom it lets in: what the items mean together, and which starts
// are refused.
#include "cimserver/AccessItems.hpp"
#include "cimserver/Settings.hpp"
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"
#include "cimserver/http/SafeFile.hpp"
#include "cimserver/http/SelfSigned.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

namespace {

using namespace std::chrono_literals;
using cimserver::Configuration;
using cimserver::Mistake;
using cimserver::ReadSettings;
using cimserver::Settings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string mof = "cimserver.mof_files = " TEST_DATA_DIRECTORY "/program/test.mof\n";

class AccessItems : public testing::Test {
protected:
    AccessItems() {
        std::string name = (std::filesystem::temp_directory_path() / "access.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
    }
    ~AccessItems() override { std::filesystem::remove_all(directory); }

    /// The item that names a file with one user.
    std::string Users() const {
        const auto file = directory / "passwords";
        cimserver::http::SetPassword(file, "anna", cimserver::http::HashOf("secret", 1));
        return "simple_auth.password_file = " + file.string() + "\n";
    }
    /// The item that names a file with certificate and key.
    std::string Pair() const {
        const auto pair = cimserver::http::MakeSelfSigned({"localhost"}, 1);
        cimserver::http::ReplaceFile(directory / "pair.pem", pair.certificate + pair.key, 0600);
        return "http_server.SSL_cert = " + (directory / "pair.pem").string() + "\n";
    }
    static Settings Read(const std::string& text, std::vector<std::string>& mistakes) {
        Configuration configuration;
        configuration.AddText(mof + text, "my.conf");
        std::vector<Mistake> found;
        Settings settings = ReadSettings(configuration, "/providers", found);
        for (const auto& mistake : found) {
            mistakes.push_back(mistake.text);
        }
        return settings;
    }
    static std::vector<std::string> Mistakes(const std::string& text) {
        std::vector<std::string> mistakes;
        Read(text, mistakes);
        return mistakes;
    }

    std::filesystem::path directory;
};

TEST_F(AccessItems, ByDefaultNobodyIsLetInAndNothingIsExposed) {
    std::vector<std::string> mistakes;
    const Settings settings = Read("", mistakes);
    EXPECT_THAT(mistakes,
                ElementsAre("nobody could log in: make a user with `cimserver passwd USER --file "
                            "FILE` and name the file in simple_auth.password_file, or let "
                            "everybody on this machine in with owcimomd.allow_anonymous = true"));
    EXPECT_THAT(settings.addresses, ElementsAre("127.0.0.1"));
    EXPECT_FALSE(settings.access.tlsPort.has_value());
    EXPECT_FALSE(settings.access.allowsAnonymous);
    EXPECT_FALSE(settings.access.allowsAnonymousFromAnywhere);
    EXPECT_FALSE(settings.access.allowsPlainFromAnywhere);
    EXPECT_THAT(settings.access.allowedUsers, ElementsAre("*"));
    EXPECT_THAT(settings.access.writers, IsEmpty());
    EXPECT_EQ(settings.access.failureDelay, 1s);
    EXPECT_EQ(settings.access.maxRefusedBodyBytes, 4096U);
}

TEST_F(AccessItems, EveryItemCounts) {
    std::vector<std::string> mistakes;
    const Settings settings =
        Read(Users() + Pair() +
                 "http_server.http_port = -1\nhttp_server.https_port = 0\n"
                 "cimserver.tls_addresses = 127.0.0.2 ::1\ncimserver.tls_key = " +
                 (directory / "pair.pem").string() +
                 "\nowcimomd.allowed_users = anna bert\ncimserver.writers = anna\n"
                 "cimserver.failure_milliseconds = 20\ncimserver.max_refused_body_bytes = 0\n"
                 "owcimomd.allow_anonymous = true\ncimserver.anonymous_from_anywhere = true\n"
                 "cimserver.plain_from_anywhere = true\n",
             mistakes);
    EXPECT_THAT(mistakes, IsEmpty());
    EXPECT_FALSE(settings.port.has_value());
    EXPECT_EQ(settings.access.tlsPort, 0);
    EXPECT_THAT(settings.access.tlsAddresses, ElementsAre("127.0.0.2", "::1"));
    EXPECT_EQ(settings.access.certificate, directory / "pair.pem");
    EXPECT_EQ(settings.access.KeyFile(), directory / "pair.pem");
    EXPECT_EQ(settings.access.passwordFile, directory / "passwords");
    EXPECT_THAT(settings.access.allowedUsers, ElementsAre("anna", "bert"));
    EXPECT_THAT(settings.access.writers, ElementsAre("anna"));
    EXPECT_EQ(settings.access.failureDelay, 20ms);
    EXPECT_EQ(settings.access.maxRefusedBodyBytes, 0U);
    EXPECT_TRUE(settings.access.allowsAnonymous);
    EXPECT_TRUE(settings.access.allowsAnonymousFromAnywhere);
    EXPECT_TRUE(settings.access.allowsPlainFromAnywhere);
}

TEST_F(AccessItems, LoopbackNeedsUsersOrTheWordThatNobodyIsAsked) {
    EXPECT_THAT(Mistakes(Users()), IsEmpty());
    EXPECT_THAT(Mistakes("owcimomd.allow_anonymous = true\n"), IsEmpty());
    EXPECT_THAT(Mistakes("owcimomd.allow_anonymous = true\n"
                         "http_server.listen_addresses = 127.0.0.1 127.3.2.1 ::1\n"),
                IsEmpty());
    EXPECT_THAT(Mistakes("cimserver.anonymous_from_anywhere = true\n"),
                ElementsAre(StartsWith("nobody could log in: ")));
}

TEST_F(AccessItems, AnAddressThatOthersReachNeedsUsers) {
    for (const std::string address : {"0.0.0.0", "::", "10.0.0.1", "128.0.0.1", "fe80::1",
                                      "::ffff:127.0.0.1", "127.0.0.1 192.0.2.1"}) {
        const std::string exposed = "http_server.listen_addresses = " + address +
                                    "\nowcimomd.allow_anonymous = true\n"
                                    "cimserver.plain_from_anywhere = true\n";
        const std::string last = address.substr(address.rfind(' ') + 1);
        EXPECT_THAT(
            Mistakes(exposed),
            ElementsAre(testing::AllOf(
                StartsWith("my.conf:2: http_server.listen_addresses = " + address + ": `" + last +
                           "` can be reached from other machines, and nobody would "
                           "have to log in: make a user with `cimserver passwd`"),
                HasSubstr("cimserver.anonymous_from_anywhere = true"))));
        EXPECT_THAT(Mistakes(exposed + Users()), IsEmpty());
        EXPECT_THAT(Mistakes(exposed + "cimserver.anonymous_from_anywhere = true\n"), IsEmpty());
    }
}

TEST_F(AccessItems, AnAddressThatOthersReachNeedsTls) {
    const std::string exposed = "http_server.listen_addresses = 0.0.0.0\n" + Users();
    EXPECT_THAT(
        Mistakes(exposed),
        ElementsAre(testing::AllOf(
            StartsWith("my.conf:2: http_server.listen_addresses = 0.0.0.0: `0.0.0.0` can be "
                       "reached from other machines, and without TLS anybody on the way reads "
                       "along, passwords too: use --tls-listen"),
            HasSubstr("cimserver.plain_from_anywhere = true"))));
    EXPECT_THAT(Mistakes(exposed + "cimserver.plain_from_anywhere = true\n"), IsEmpty());
    const std::string tls = Pair() + "http_server.https_port = 0\n";
    EXPECT_THAT(Mistakes(exposed + tls), ElementsAre(HasSubstr("without TLS")));
    EXPECT_THAT(Mistakes(exposed + tls + "http_server.http_port = -1\n"), IsEmpty());
    EXPECT_THAT(Mistakes(Users() + tls + "cimserver.tls_addresses = 0.0.0.0\n"), IsEmpty());
}

TEST_F(AccessItems, TlsAloneDoesNotReplaceUsers) {
    EXPECT_THAT(Mistakes("cimserver.tls_addresses = 0.0.0.0\nhttp_server.https_port = 0\n"
                         "owcimomd.allow_anonymous = true\n" +
                         Pair()),
                ElementsAre(StartsWith("my.conf:2: cimserver.tls_addresses = 0.0.0.0: `0.0.0.0` "
                                       "can be reached from other machines, and nobody")));
}

TEST_F(AccessItems, TlsNeedsACertificateThatCanBeUsed) {
    const std::string tls = "owcimomd.allow_anonymous = true\nhttp_server.https_port = 5989\n";
    EXPECT_THAT(Mistakes(tls),
                ElementsAre(StartsWith("my.conf:3: http_server.https_port = 5989: TLS needs a "
                                       "certificate: make one with `cimserver certificate`")));
    EXPECT_THAT(
        Mistakes(tls + "http_server.SSL_cert = /absent.pem\n"),
        ElementsAre(StartsWith("my.conf:4: http_server.SSL_cert = /absent.pem: /absent.pem: the "
                               "certificate cannot be read: No such file")));
    std::ofstream(directory / "bad.pem") << "nonsense\n";
    EXPECT_THAT(Mistakes(tls + "http_server.SSL_cert = " + (directory / "bad.pem").string() + "\n"),
                ElementsAre(HasSubstr("no certificate with its key in PEM")));
}

TEST_F(AccessItems, ThePasswordFileMustBeGood) {
    const std::string users = Users();
    chmod((directory / "passwords").c_str(), 0644);
    EXPECT_THAT(Mistakes(users), ElementsAre(HasSubstr(
                                     "group or others have access to these passwords; chmod 600")));
    EXPECT_THAT(Mistakes("simple_auth.password_file = /absent\n"),
                ElementsAre("my.conf:2: simple_auth.password_file = /absent: /absent: there is no "
                            "such file; make it with `cimserver passwd USER --file /absent`"));
}

TEST_F(AccessItems, WithoutAnyPortThereIsNothingToListenOn) {
    EXPECT_THAT(Mistakes("owcimomd.allow_anonymous = true\nhttp_server.http_port = -1\n"),
                ElementsAre("my.conf:3: http_server.http_port = -1: there is nothing to listen on; "
                            "give a port here or in http_server.https_port"));
}

TEST_F(AccessItems, ValuesOfTheWrongFormAreRefused) {
    const std::string open = "owcimomd.allow_anonymous = true\n";
    EXPECT_THAT(Mistakes("owcimomd.allow_anonymous = perhaps\n" + Users()),
                ElementsAre(HasSubstr("expected true or false")));
    EXPECT_THAT(Mistakes(open + "http_server.https_port = 65536\n"),
                ElementsAre(HasSubstr("expected a whole number from -1 to 65535")));
    EXPECT_THAT(Mistakes(open + "cimserver.tls_addresses = localhost\n"),
                ElementsAre(HasSubstr("`localhost` is no numeric IPv4 or IPv6 address")));
    EXPECT_THAT(Mistakes(open + "cimserver.failure_milliseconds = -1\n"),
                ElementsAre(HasSubstr("expected a whole number from 0 to 60000")));
}

TEST(AccessSettings, AnonymousClientsComeInOnLoopbackOnly) {
    cimserver::AccessSettings access;
    EXPECT_FALSE(access.IsAnonymousOn("127.0.0.1"));
    access.allowsAnonymousFromAnywhere = true;
    EXPECT_FALSE(access.IsAnonymousOn("127.0.0.1"));
    access.allowsAnonymousFromAnywhere = false;
    access.allowsAnonymous = true;
    EXPECT_TRUE(access.IsAnonymousOn("127.0.0.1"));
    EXPECT_TRUE(access.IsAnonymousOn("::1"));
    EXPECT_FALSE(access.IsAnonymousOn("0.0.0.0"));
    EXPECT_FALSE(access.IsAnonymousOn("192.0.2.1"));
    access.allowsAnonymousFromAnywhere = true;
    EXPECT_TRUE(access.IsAnonymousOn("192.0.2.1"));
}

TEST(AccessSettings, AListOfUsersMeansThoseItNames) {
    using cimserver::ListsUser;
    EXPECT_FALSE(ListsUser({}, "anna"));
    EXPECT_FALSE(ListsUser({}, ""));
    EXPECT_TRUE(ListsUser({"bert", "anna"}, "anna"));
    EXPECT_FALSE(ListsUser({"bert", "anna"}, "Anna"));
    EXPECT_FALSE(ListsUser({"bert", "anna"}, ""));
    EXPECT_TRUE(ListsUser({"*"}, "anna"));
    EXPECT_TRUE(ListsUser({"*"}, ""));
}

} // namespace
