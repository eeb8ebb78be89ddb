// The conformance table: raw requests and what comes back, a row each. The same table stands in
// docs/conformance.md.
#pragma once

#include "support/CimClient.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace conformance {

/// A request that a test changes step by step. It begins as a good one: EnumerateClassNames in
/// root/cimv2.
class Request {
public:
    Request();

    Request Method(const std::string& method) const;
    /// Target and version behind the method.
    Request Line(const std::string& rest) const;
    /// In the place of the headers of that name.
    Request With(const std::string& name, const std::string& value) const;
    Request Adding(const std::string& name, const std::string& value) const;
    Request Without(const std::string& name) const;
    /// All headers whose names begin with CIM get the prefix.
    Request Prefixed(const std::string& prefix) const;
    /// The body, and the length that belongs to it.
    Request Body(const std::string& body) const;
    /// The same and the headers that name the call.
    Request Calling(const std::string& body) const;
    Request Replacing(const std::string& from, const std::string& to) const;
    /// In the body and in CIMObject.
    Request InNameSpace(const std::string& last) const;
    /// These bytes instead of all of it.
    Request Raw(const std::string& bytes) const;

    std::string Text() const;

private:
    std::string method_ = "POST";
    std::string line_ = "/cimom HTTP/1.1";
    test_support::HeaderList headers_;
    std::string body_;
    std::string raw_;
};

/// An operation in root/cimv2 with its IPARAMVALUE elements.
Request Operation(const std::string& name, const std::string& parameters = "");
/// A method of a CLASSNAME or an INSTANCENAME with its PARAMVALUE elements.
Request MethodCall(const std::string& name, const std::string& object,
                   const std::string& parameters = "");
std::string Parameter(const std::string& name, const std::string& value);

/// What must come back: the status, and of these what is not empty.
struct Expected {
    int status = 200;
    std::string cimError = {}; ///< the CIMError header
    std::string error = {};    ///< `6 culprit`: number of the ERROR, and what its text names
    std::string holds = {};    ///< the answer's text
    std::string prefix = {};   ///< of the CIM headers
};

Expected Status(int status);
Expected Refused(int status, const std::string& cimError);
Expected Error(int number, const std::string& culprit);
/// As the good request is.
Expected Answered(const std::string& holds = R"(<CLASSNAME NAME="ET_Item">)");

struct Row {
    std::string what;
    Request request;
    Expected expected;
};

struct Section {
    std::string title;
    std::vector<Row> rows;
};

// Who answers: the HTTP library; the server's own check of the head; its check of the CIM headers;
// of the XML; the operation. The last sections are what is allowed and less usual.
Section HttpLibraryRows();
Section HttpRows();
Section HeaderRows();
Section ExtensionRows();
Section NotWellFormedRows();
Section NotValidRows();
Section VersionRows();
Section NotLooselyValidRows();
Section NotSupportedRows();
Section OperationRows();
Section OddHeaderRows();
Section OddXmlRows();

} // namespace conformance
