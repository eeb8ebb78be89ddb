// Hands answers to the HTTP library.
#pragma once

#include "cimserver/http/Exchange.hpp"

#include <memory>

#include <microhttpd.h>

namespace cimserver::http {

/// An answer without text.
MHD_Result SendBareStatus(MHD_Connection* connection, unsigned status);

/// An answer that is ready: one that streams in chunks, with the trailers behind the last; one that
/// is whole with its length, in one write where it lies in memory. What is not sent when this
/// returns is read later by the connection's thread.
MHD_Result Send(MHD_Connection* connection, const std::shared_ptr<AnswerInTransit>& answer);

} // namespace cimserver::http
