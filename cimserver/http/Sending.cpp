#include "cimserver/http/Sending.hpp"

#include <cstdint>
#include <vector>

namespace cimserver::http {

namespace {

/// The HTTP library takes no empty value; a blank means the same (RFC 9110, 5.5).
const char* ValueOf(const Header& header) {
    return header.value.empty() ? " " : header.value.c_str();
}

/// What the HTTP library keeps until the response is sent or given up.
struct Source {
    std::shared_ptr<AnswerInTransit> answer;
    MHD_Response* response = nullptr;
};

void ReleaseSource(void* source) {
    delete static_cast<Source*>(source);
}

ssize_t ReadOn(void* argument, std::uint64_t /*position*/, char* target,
               std::size_t room) noexcept {
    const Source& source = *static_cast<const Source*>(argument);
    const AnswerQueue::Portion portion = source.answer->Read(target, room);
    if (portion.end == AnswerQueue::End::none) {
        return static_cast<ssize_t>(portion.size);
    }
    if (portion.end == AnswerQueue::End::broken) {
        return MHD_CONTENT_READER_END_WITH_ERROR;
    }
    for (const Header& trailer : source.answer->Trailers()) {
        MHD_add_response_footer(source.response, trailer.name.c_str(), ValueOf(trailer));
    }
    return MHD_CONTENT_READER_END_OF_STREAM;
}

MHD_Response* FromMemory(const std::vector<std::string_view>& pieces, Source* source) {
    std::vector<MHD_IoVec> vectors;
    vectors.reserve(pieces.size());
    for (const std::string_view piece : pieces) {
        vectors.push_back({piece.data(), piece.size()});
    }
    return MHD_create_response_from_iovec(vectors.data(), static_cast<unsigned>(vectors.size()),
                                          &ReleaseSource, source);
}

MHD_Response* MakeResponse(const std::shared_ptr<AnswerInTransit>& answer) {
    AnswerQueue& bytes = answer->Bytes();
    const std::uint64_t size = answer->Streams() ? MHD_SIZE_UNKNOWN : bytes.Size();
    if (size == 0) {
        return MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    }
    auto source = std::make_unique<Source>(Source{answer, nullptr});
    const auto pieces = answer->Streams() ? std::vector<std::string_view>() : bytes.Pieces();
    MHD_Response* response =
        pieces.empty() ? MHD_create_response_from_callback(size, AnswerQueue::blockSize, &ReadOn,
                                                           source.get(), &ReleaseSource)
                       : FromMemory(pieces, source.get());
    if (response != nullptr) {
        source->response = response;
        static_cast<void>(source.release());
    }
    return response;
}

MHD_Result Queue(MHD_Connection* connection, unsigned status, MHD_Response* response) {
    const MHD_Result result = MHD_queue_response(connection, status, response);
    MHD_destroy_response(response);
    return result;
}

} // namespace

MHD_Result SendBareStatus(MHD_Connection* connection, unsigned status) {
    MHD_Response* response = MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    return response == nullptr ? MHD_NO : Queue(connection, status, response);
}

MHD_Result Send(MHD_Connection* connection, const std::shared_ptr<AnswerInTransit>& answer) {
    MHD_Response* response = MakeResponse(answer);
    if (response == nullptr) {
        return MHD_NO;
    }
    const Head& head = answer->ItsHead();
    for (const Header& header : head.headers) {
        MHD_add_response_header(response, header.name.c_str(), ValueOf(header));
    }
    if (answer->Streams() && !head.trailerNames.empty()) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_TRAILER, head.trailerNames.c_str());
    }
    return Queue(connection, static_cast<unsigned>(head.status), response);
}

} // namespace cimserver::http
