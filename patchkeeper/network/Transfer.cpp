#include "patchkeeper/network/Transfer.hpp"

#include <array>
#include <charconv>
#include <exception>
#include <utility>

namespace patchkeeper {

namespace {

constexpr long mostRedirects = 5;

// What the functions that libcurl calls back need.
struct Running {
    CURL* handle;
    const Transfer::Body& body;
    Answer answer;
    std::exception_ptr thrown;
};

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return lower;
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void ReadStatus(Running& running) {
    char* url = nullptr;
    curl_easy_getinfo(running.handle, CURLINFO_RESPONSE_CODE, &running.answer.status);
    curl_easy_getinfo(running.handle, CURLINFO_EFFECTIVE_URL, &url);
    running.answer.url = url == nullptr ? "" : url;
}

std::size_t TakeHeader(char* data, std::size_t, std::size_t size, void* argument) noexcept {
    auto& running = *static_cast<Running*>(argument);
    try {
        const std::string_view line(data, size);
        const auto colon = line.find(':');
        if (line.starts_with("HTTP/")) {
            running.answer.headers.clear(); // another answer begins
        } else if (colon != std::string_view::npos) {
            running.answer.headers[LowerCase(line.substr(0, colon))] = Trim(line.substr(colon + 1));
        }
        return size;
    } catch (...) {
        running.thrown = std::current_exception();
        return 0;
    }
}

std::size_t TakeBody(char* data, std::size_t, std::size_t size, void* argument) noexcept {
    auto& running = *static_cast<Running*>(argument);
    try {
        ReadStatus(running);
        running.body(running.answer, {data, size});
        return size;
    } catch (...) {
        running.thrown = std::current_exception();
        return 0; // ends the transfer
    }
}

long Seconds(std::chrono::seconds time) {
    return static_cast<long>(time.count());
}

std::string ReasonOf(CURLcode code, const char* details) {
    if (code == CURLE_OK) {
        return "";
    }
    return code == CURLE_LOGIN_DENIED ? "the user name or the password is not accepted"
           : *details != '\0'         ? std::string(details)
                                      : curl_easy_strerror(code);
}

} // namespace

std::string Answer::Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
}

std::uint64_t Answer::Length() const {
    const std::string text = Header("content-length");
    std::uint64_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return length;
}

Transfer::Transfer(const Place& place, const TransferSettings& settings)
    : protocol_(place.url.substr(0, place.url.find(':'))) {
    if (curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK) {
        handle_.reset(curl_easy_init());
    }
    if (!handle_) {
        throw TransferFailed("libcurl cannot be used");
    }
    SetUp(place, settings);
}

void Transfer::SetUp(const Place& place, const TransferSettings& settings) {
    CURL* handle = handle_.get();
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, protocol_.c_str()); // of redirects too
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, mostRedirects);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, Seconds(settings.connectTimeout));
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, Seconds(settings.stallTimeout));
    curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, Seconds(settings.stallTimeout));
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!settings.authorities.empty()) {
        curl_easy_setopt(handle, CURLOPT_CAINFO, settings.authorities.c_str());
        curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
    }
    if (!place.credentials.user.empty()) {
        curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
        curl_easy_setopt(handle, CURLOPT_USERNAME, place.credentials.user.c_str());
        curl_easy_setopt(handle, CURLOPT_PASSWORD, place.credentials.password.c_str());
    }
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, TakeHeader);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, TakeBody);
    curl_easy_setopt(handle, CURLOPT_FILETIME, 1L); // the date of an FTP file
}

Transfer::Ended Transfer::Perform(const Request& request, const Body& body) {
    CURL* handle = handle_.get();
    std::array<char, CURL_ERROR_SIZE> details{};
    Running running{handle, body, {}, nullptr};
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(nullptr,
                                                                        curl_slist_free_all);
    for (const auto& line : request.headers) {
        headers.reset(curl_slist_append(headers.release(), line.c_str()));
    }
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, details.data());
    curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(handle, CURLOPT_NOBODY, request.onlyHead ? 1L : 0L);
    if (!request.onlyHead) {
        curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);
    }
    curl_easy_setopt(handle, CURLOPT_DIRLISTONLY, request.names ? 1L : 0L);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle, CURLOPT_RESUME_FROM_LARGE,
                     static_cast<curl_off_t>(request.ftpPosition));
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &running);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &running);
    const CURLcode code = curl_easy_perform(handle);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, nullptr);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, nullptr);
    if (running.thrown) {
        std::rethrow_exception(running.thrown);
    }
    ReadStatus(running);
    return {code, ReasonOf(code, details.data()), std::move(running.answer)};
}

std::string Transfer::Resolve(const std::string& page, const std::string& link) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    char* text = nullptr;
    if (!url || curl_url_set(url.get(), CURLUPART_URL, page.c_str(), 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_URL, link.c_str(), CURLU_URLENCODE) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_FRAGMENT, nullptr, 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_USER, nullptr, 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0) != CURLUE_OK ||
        curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) {
        return "";
    }
    std::string whole(text);
    curl_free(text);
    return whole;
}

} // namespace patchkeeper
