// The service over TLS, as a client with another TLS library sees it.
#include "HttpTest.hpp"
#include "SecretFiles.hpp"

#include "cimserver/http/Http.hpp"
#include "cimserver/http/SelfSigned.hpp"
#include "support/CimClient.hpp"
#include "support/TlsClient.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include <curl/curl.h>

namespace {

namespace fs = std::filesystem;

using cimserver::http::Certificate;
using cimserver::http::CredentialError;
using cimserver::http::Request;
using cimserver::http::Server;
using cimserver::http::Settings;
using http_test::Answer;
using http_test::Pattern;
using http_test::SecretFiles;
using test_support::TlsClient;
using testing::HasSubstr;
using Outcome = test_support::TlsOutcome;

class HttpTls : public testing::Test {
protected:
    HttpTls() : certificate(std::make_shared<Certificate>(files.PairFor("first.example"))) {
        settings.port = 0;
        settings.certificate = certificate;
    }

    SecretFiles files;
    std::shared_ptr<Certificate> certificate;
    Settings settings;
};

void Echo(const Request& request, Answer& answer) {
    answer.Append(request.body);
}

TEST_F(HttpTls, CarriesLargeBodiesAndAnswersOnOneConnection) {
    settings.maxBodyBytes = 10'000'000;
    Server server(settings, &Echo);
    TlsClient client(server.Port());
    for (const std::size_t size : {0U, 1U, 100'000U, 9'000'000U, 70'000U}) {
        const std::string body = Pattern(size);
        const Outcome outcome = client.Post(body);
        ASSERT_EQ(outcome.code, CURLE_OK) << curl_easy_strerror(outcome.code);
        EXPECT_EQ(outcome.status, 200);
        EXPECT_TRUE(outcome.body == body) << outcome.body.size();
        EXPECT_EQ(outcome.connections, size == 0 ? 1 : 0);
    }
}

TEST_F(HttpTls, CarriesAnAnswerThatStreams) {
    Server server(settings, [](const Request&, Answer& answer) {
        for (std::uint32_t i = 0; i < 100; ++i) {
            answer.Append(Pattern(50'000, i * 50'000));
        }
    });
    TlsClient client(server.Port());
    curl_slist* headers = curl_slist_append(nullptr, "TE: trailers");
    curl_easy_setopt(client.Handle(), CURLOPT_HTTPHEADER, headers);
    const Outcome outcome = client.Post("");
    curl_slist_free_all(headers);
    EXPECT_EQ(outcome.code, CURLE_OK) << curl_easy_strerror(outcome.code);
    EXPECT_TRUE(outcome.body == Pattern(5'000'000)) << outcome.body.size();
}

TEST_F(HttpTls, ShowsTheCertificateThatAClientCanVerify) {
    Server server(settings, &Echo);
    TlsClient client(server.Port());
    curl_easy_setopt(client.Handle(), CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(client.Handle(), CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(client.Handle(), CURLOPT_CAINFO, files.Path("pair.pem").c_str());
    const Outcome outcome = client.Post("x");
    EXPECT_EQ(outcome.code, CURLE_OK) << curl_easy_strerror(outcome.code);
    EXPECT_THAT(outcome.certificate, HasSubstr("first.example"));
}

TEST_F(HttpTls, TheCertificateHoldsForItsNamesAndNoOther) {
    Server server(settings, &Echo);
    for (const auto& [name, code] : {std::pair{"first.example", CURLE_OK},
                                     std::pair{"other.example", CURLE_PEER_FAILED_VERIFICATION}}) {
        const std::string port = std::to_string(server.Port());
        TlsClient client(server.Port());
        curl_slist* addresses =
            curl_slist_append(nullptr, (std::string(name) + ":" + port + ":127.0.0.1").c_str());
        const std::string url = std::string("https://") + name + ":" + port + "/";
        curl_easy_setopt(client.Handle(), CURLOPT_RESOLVE, addresses);
        curl_easy_setopt(client.Handle(), CURLOPT_URL, url.c_str());
        curl_easy_setopt(client.Handle(), CURLOPT_SSL_VERIFYPEER, 1L);
        curl_easy_setopt(client.Handle(), CURLOPT_SSL_VERIFYHOST, 2L);
        curl_easy_setopt(client.Handle(), CURLOPT_CAINFO, files.Path("pair.pem").c_str());
        EXPECT_EQ(client.Post("x").code, code) << name;
        curl_slist_free_all(addresses);
    }
}

Outcome WithVersion(std::uint16_t port, long least, long most) {
    TlsClient client(port);
    curl_easy_setopt(client.Handle(), CURLOPT_SSLVERSION, least | most);
    // This machine's library would not offer old versions by itself.
    curl_easy_setopt(client.Handle(), CURLOPT_SSL_CIPHER_LIST, "ALL:@SECLEVEL=0");
    return client.Post("x");
}

TEST_F(HttpTls, TakesNoVersionBefore12) {
    Server server(settings, &Echo);
    EXPECT_EQ(WithVersion(server.Port(), CURL_SSLVERSION_TLSv1_3, CURL_SSLVERSION_MAX_TLSv1_3).code,
              CURLE_OK);
    EXPECT_EQ(WithVersion(server.Port(), CURL_SSLVERSION_TLSv1_2, CURL_SSLVERSION_MAX_TLSv1_2).code,
              CURLE_OK);
    EXPECT_EQ(WithVersion(server.Port(), CURL_SSLVERSION_TLSv1_1, CURL_SSLVERSION_MAX_TLSv1_1).code,
              CURLE_SSL_CONNECT_ERROR);
    EXPECT_EQ(WithVersion(server.Port(), CURL_SSLVERSION_TLSv1_0, CURL_SSLVERSION_MAX_TLSv1_0).code,
              CURLE_SSL_CONNECT_ERROR);
}

TEST_F(HttpTls, AReloadGivesNewConnectionsTheNewCertificateAndKeepsTheOld) {
    Server server(settings, &Echo);
    TlsClient before(server.Port());
    EXPECT_THAT(before.Post("x").certificate, HasSubstr("first.example"));
    certificate->Reload(files.PairFor("second.example"));
    const Outcome again = before.Post("y");
    EXPECT_EQ(again.body, "y");
    EXPECT_EQ(again.connections, 0);
    TlsClient after(server.Port());
    EXPECT_THAT(after.Post("x").certificate, HasSubstr("second.example"));
}

TEST_F(HttpTls, AReloadThatFailsSaysWhyAndKeepsTheOldCertificate) {
    Server server(settings, &Echo);
    files.Write("pair.pem", "nonsense\n");
    try {
        certificate->Reload({files.Path("pair.pem"), files.Path("pair.pem")});
        ADD_FAILURE() << "nothing was wrong";
    } catch (const CredentialError& error) {
        EXPECT_THAT(error.what(), HasSubstr("pair.pem: no certificate with its key in PEM"));
    }
    EXPECT_THAT(TlsClient(server.Port()).Post("x").certificate, HasSubstr("first.example"));
}

TEST_F(HttpTls, AHandshakeThatDoesNotComeIsNotWaitedForLonger) {
    settings.requestSeconds = 1;
    Server server(settings, &Echo);
    test_support::CimClient silent(server.Port());
    test_support::CimClient slow(server.Port());
    slow.Send("\x16\x03\x01\x02");
    EXPECT_TRUE(silent.IsClosedByServer());
    EXPECT_TRUE(slow.IsClosedByServer());
    EXPECT_EQ(TlsClient(server.Port()).Post("x").body, "x");
}

TEST_F(HttpTls, AConnectionAboveTheLimitIsClosedBeforeTheHandshake) {
    settings.maxConnections = 1;
    Server server(settings, &Echo);
    TlsClient first(server.Port());
    EXPECT_EQ(first.Post("x").body, "x");
    EXPECT_TRUE(test_support::CimClient(server.Port()).IsClosedByServer());
    EXPECT_EQ(first.Post("y").body, "y");
}

TEST_F(HttpTls, NoRequestIsTakenWithoutIt) {
    std::atomic<int> requests = 0;
    Server server(settings, [&](const Request&, Answer&) { ++requests; });
    test_support::CimClient plain(server.Port());
    EXPECT_THROW(plain.Request("POST", {}, "x"), std::runtime_error);
    EXPECT_EQ(requests, 0);
}

TEST_F(HttpTls, CredentialsAreAskedForThereToo) {
    settings.access.isAnonymous = false;
    settings.access.users = std::make_shared<cimserver::http::Users>(files.AnnaAndBert());
    Server server(settings, [](const Request& request, Answer& answer) {
        answer.Append("in as " + request.user);
    });
    TlsClient client(server.Port());
    EXPECT_EQ(client.Post("x").status, 401);
    curl_easy_setopt(client.Handle(), CURLOPT_USERPWD, "anna:secret");
    EXPECT_EQ(client.Post("x").body, "in as anna");
}

TEST(CertificateFile, ThatCannotBeUsedIsNamedWithTheReason) {
    const SecretFiles files;
    const auto error = [](const cimserver::http::CertificateFiles& pair) -> std::string {
        try {
            const Certificate certificate(pair);
        } catch (const CredentialError& fault) {
            return fault.what();
        }
        return "no error";
    };
    EXPECT_THAT(error({files.Path("none"), files.Path("none")}),
                HasSubstr("none: the certificate cannot be read: No such file or directory; "
                          "`cimserver certificate` makes a self-signed pair"));
    const auto one = cimserver::http::MakeSelfSigned({"one"}, 1);
    const auto two = cimserver::http::MakeSelfSigned({"two"}, 1);
    files.Write("certificate", one.certificate);
    files.Write("key", one.key);
    files.Write("other", two.key);
    EXPECT_EQ(error({files.Path("certificate"), files.Path("key")}), "no error");
    fs::permissions(files.Path("key"), fs::perms::others_read, fs::perm_options::add);
    EXPECT_THAT(error({files.Path("certificate"), files.Path("key")}),
                HasSubstr("key: the key can be read or changed by everybody; chmod o-rwx"));
    EXPECT_THAT(error({files.Path("certificate"), files.Path("absent")}),
                HasSubstr("absent: the key cannot be read"));
    EXPECT_THAT(error({files.Path("certificate"), files.Path("other")}),
                HasSubstr("no certificate with its key"));
    EXPECT_THAT(error({files.Path("certificate"), files.Path("certificate")}),
                HasSubstr("no certificate with its key"));
}

} // namespace
