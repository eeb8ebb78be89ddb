// CIM-XML (DMTF DSP0200, DSP0201): turns the body of a request into an operation call and writes
// the result as XML while it arrives. Knows nothing of sockets and providers.
#pragma once

#include "cimserver/operations/Operations.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cimserver::cimxml {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// A request as the transport delivered it.
struct Message {
    std::string method; ///< POST or M-POST
    HeaderList headers;
    std::string_view body;
    std::string user; ///< empty: anonymous
};

/// Where the answer's text goes. One thread at a time.
class Output {
public:
    virtual ~Output() = default;
    virtual void Write(std::string_view text) = 0;
    /// Forgets everything written so far, so that an error can take its place.
    virtual void Restart() = 0;
};

/// What the transport sends beside the text.
struct Status {
    int httpStatus = 200;
    HeaderList headers;
};

/// Answers one message: a CIM error is part of the answer, never an exception.
Status Answer(const Message& message, operations::Executor& executor, Output& output);

} // namespace cimserver::cimxml
