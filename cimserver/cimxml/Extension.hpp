// M-POST: a request that demands an extension of HTTP by its Man header, which gives the headers of
// the extension a numbered prefix (RFC 2774; DMTF DSP0200, 6.2).
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include <string>

namespace cimserver::cimxml {

struct Extension {
    bool isDemanded = false; ///< by an M-POST
    std::string prefix;      ///< of all CIM headers, such as `23-`; empty for POST
};

/// Throws ProtocolError: 405 for another method, 510 for an M-POST that demands nothing or an
/// extension that is not CIM-XML.
Extension ExtensionOf(const Message& message);

/// Passes an answer on and makes it one to that extension: the CIM headers get the prefix, and the
/// headers that confirm the extension are added. `output` must outlive it.
class ExtendedOutput final : public Output {
public:
    ExtendedOutput(Output& output, Extension extension);

    void Head(const Status& status) override;
    void Write(std::string_view text) override { output_.Write(text); }
    bool HasLeft() const override { return output_.HasLeft(); }
    void Restart() override { output_.Restart(); }
    void Trailers(const HeaderList& trailers) override;
    void LimitTime(MakeLateAnswer late) override;
    void LiftLimit() override { output_.LiftLimit(); }

private:
    Output& output_;
    const Extension extension_;
};

} // namespace cimserver::cimxml
