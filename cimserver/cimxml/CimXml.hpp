// CIM-XML (DMTF DSP0200, DSP0201): turns the body of a request into an operation call and writes
// the result as XML while it arrives. Knows nothing of sockets and providers.
#pragma once

#include "cimserver/operations/Operations.hpp"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
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
    std::string user;       ///< empty: anonymous
    bool mayChange = false; ///< what operations::Request says of it
};

/// What the transport sends before the text.
struct Status {
    int httpStatus = 200;
    HeaderList headers;
    /// Of those that may follow the text (DMTF DSP0200), as a Trailer header lists them.
    std::string trailerNames = "CIMStatusCode, CIMStatusCodeDescription";
};

/// What a client gets in place of an answer that takes too long: the text when nothing of the
/// answer has left, otherwise the trailers.
struct LateAnswer {
    std::string text;
    HeaderList trailers;
    std::string reason; ///< for the log: the call and its time, nothing that is secret
};
using MakeLateAnswer = std::function<LateAnswer(std::chrono::milliseconds limit)>;

/// Where the answer goes. One thread at a time.
class Output {
public:
    virtual ~Output() = default;
    /// Comes before any text; the last one counts.
    virtual void Head(const Status& status) = 0;
    /// Throws std::runtime_error when the text can be neither sent nor kept.
    virtual void Write(std::string_view text) = 0;
    /// True: some of the text is on its way and stays the answer's beginning.
    virtual bool HasLeft() const = 0;
    /// Forgets everything written so far, so that an error can take its place. Not once text has
    /// left.
    virtual void Restart() = 0;
    /// What follows the text. Only once text has left.
    virtual void Trailers(const HeaderList& trailers) = 0;
    /// From now on the answer may take a limited time. When that is over, `late` is called on
    /// another thread and what it makes is sent; what arrives here is dropped from then on.
    virtual void LimitTime(MakeLateAnswer late) = 0;
    /// It may take any time again.
    virtual void LiftLimit() = 0;
};

struct XmlLimits {
    std::size_t depth = 64;
    std::size_t attributes = 32; ///< of one element
    std::size_t elements = 20'000;
    std::size_t keyBindings = 32; ///< of one instance name
};

enum class XmlLimit { depth, attributes, elements, keyBindings };

/// What became of a message, for whoever keeps a record of it.
struct Outcome {
    std::string operation; ///< as the client wrote it, any bytes; empty: it was not read so far
    std::string className; ///< the same, of the object that is asked; empty: none
    std::string method;    ///< the same, when a method is called
    int httpStatus = 200;
    int cimError = 0; ///< DMTF DSP0200's number of the error in the answer; 0: none
    std::optional<XmlLimit> reached;
};

/// Answers one message: a CIM error is part of the answer, never an exception.
Outcome Answer(const Message& message, operations::Executor& executor, Output& output,
               const XmlLimits& limits = {});

/// `CIM_ERR_NOT_FOUND` of 6; `CIM_ERR_` and the number of one that the standard does not have.
std::string ErrorName(int cimError);

} // namespace cimserver::cimxml
