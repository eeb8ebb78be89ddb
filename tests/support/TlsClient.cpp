#include "support/TlsClient.hpp"

namespace test_support {

namespace {

std::size_t Keep(char* data, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

} // namespace

TlsClient::TlsClient(std::uint16_t port) : curl_(curl_easy_init()) {
    const std::string url = "https://127.0.0.1:" + std::to_string(port) + "/";
    curl_easy_setopt(curl_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl_, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(curl_, CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(curl_, CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(curl_, CURLOPT_CERTINFO, 1L);
    curl_easy_setopt(curl_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl_, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl_, CURLOPT_WRITEFUNCTION, &Keep);
}

TlsClient::~TlsClient() {
    curl_easy_cleanup(curl_);
}

TlsOutcome TlsClient::Post(const std::string& body) {
    TlsOutcome outcome;
    curl_easy_setopt(curl_, CURLOPT_WRITEDATA, &outcome.body);
    curl_easy_setopt(curl_, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(curl_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    outcome.code = curl_easy_perform(curl_);
    curl_easy_getinfo(curl_, CURLINFO_RESPONSE_CODE, &outcome.status);
    curl_easy_getinfo(curl_, CURLINFO_NUM_CONNECTS, &outcome.connections);
    curl_certinfo* info = nullptr;
    curl_easy_getinfo(curl_, CURLINFO_CERTINFO, &info);
    for (int i = 0; info != nullptr && i < info->num_of_certs; ++i) {
        for (const curl_slist* line = info->certinfo[i]; line != nullptr; line = line->next) {
            outcome.certificate += std::string(line->data) + "\n";
        }
    }
    return outcome;
}

} // namespace test_support
