// The methods of AvaliableUpdateProvider.

#include "provider/available/AvaliableProvider.hpp"

#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_DateTime.hpp"

#include <cstdlib>

using OpenWBEM::Bool;
using OpenWBEM::CIMDateTime;
using OpenWBEM::CIMException;
using OpenWBEM::CIMName;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMParamValue;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMValue;
using OpenWBEM::DateTime;
using OpenWBEM::Int8;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;

namespace {

const char* const FTP_COMMAND = "/qv/bin/patchkeeper --ftp ";
const char* const HTTP_COMMAND = "/qv/bin/patchkeeper --http ";
const char* const SAMBA_COMMAND = "/qv/bin/patchkeeper --samba ";
const char* const USB_COMMAND = "/qv/bin/patchkeeper --usb ";
const char* const HARD_DRIVE_COMMAND = "/qv/bin/patchkeeper --hd ";
const char* const ELEMENT_MANAGER_COMMAND = "/qv/bin/patchkeeper --em ";
const char* const PROGRESS_COMMAND = "/qv/bin/patchkeeper --status ";

const char* const INVALID_PARAMETERS = "Invalid Parameters";
const char* const INVALID_ADDRESS = "Invalid IP Address";

const int FIRST_PROGRESS_CODE = -1;
const int LAST_PROGRESS_CODE = 2;
const char* const NO_PROGRESS = "Failed to parse Progress status string";
const char* const WRONG_PROGRESS_CODE = "Invalid GetProgress Return Code";

const String STATUS("Status");

void RequireCount(const CIMParamValueArray& in, size_t count, CIMException::ErrNoType refusal) {
    if (in.size() != count) {
        OW_THROWCIM(refusal);
    }
}

template <typename T>
T Parameter(const CIMParamValueArray& in, size_t position) {
    T value;
    try {
        in[position].getValue().get(value);
    } catch (const OpenWBEM::Exception&) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    return value;
}

String TextParameter(const CIMParamValueArray& in, size_t position) {
    return Parameter<String>(in, position);
}

// An interval and what is no date are refused like another type.
String DateParameter(const CIMParamValueArray& in, size_t position) {
    const CIMDateTime value = Parameter<CIMDateTime>(in, position);
    String text;
    try {
        text = value.toDateTime().toString(DateTime::E_LOCAL_TIME);
    } catch (const OpenWBEM::Exception&) {
        OW_THROWCIM(CIMException::INVALID_PARAMETER);
    }
    return text.rtrim();
}

// Why a source on a server is refused; empty when it is not.
// ODDITY AV-19: a refusal is the text that the method returns, no failure.
const char* RefusalOf(const String& server, const String& first, const String& second,
                      const String& third) {
    if (hasQuote(first) || hasQuote(second) || hasQuote(third)) {
        return INVALID_PARAMETERS;
    }
    return isValidIPAddr(server) ? "" : INVALID_ADDRESS;
}

// ODDITY AV-10: the server stands unquoted and unchecked but for isValidIPAddr, which looks no
// further than the first blank: the shell sees what follows.
String SourceArguments(const String& server, const String& first, const String& second,
                       const String& third) {
    return server + " '" + first + "' '" + second + "' '" + third + "'";
}

// Where the server's array has the out-parameter it gets its value there: the client would find a
// second one of the same name useless.
void SetOutParameter(CIMParamValueArray& out, const String& name, const CIMValue& value) {
    for (size_t i = 0; i < out.size(); ++i) {
        if (out[i].getName().equalsIgnoreCase(name)) {
            out[i].setValue(value);
            return;
        }
    }
    out.push_back(CIMParamValue(CIMName(name), value));
}

} // namespace

String AvaliableUpdateProvider::GetViaFtp(const String& server, const String& first,
                                          const String& second, const String& third) const {
    const String refusal = RefusalOf(server, first, second, third);
    if (!refusal.empty()) {
        return refusal;
    }
    SpawnBackgroundThread(FTP_COMMAND + SourceArguments(server, first, second, third));
    return String();
}

String AvaliableUpdateProvider::GetViaHttp(const String& server, const String& first,
                                           const String& second, const String& third,
                                           bool flag) const {
    const String refusal = RefusalOf(server, first, second, third);
    if (!refusal.empty()) {
        return refusal;
    }
    SpawnBackgroundThread(HTTP_COMMAND + SourceArguments(server, first, second, third) +
                          (flag ? " true" : " false"));
    return String();
}

String AvaliableUpdateProvider::GetViaSamba(const String& server, const String& first,
                                            const String& second, const String& third) const {
    const String refusal = RefusalOf(server, first, second, third);
    if (!refusal.empty()) {
        return refusal;
    }
    SpawnBackgroundThread(SAMBA_COMMAND + SourceArguments(server, first, second, third));
    return String();
}

// ODDITY AV-11: a path stands unquoted, and & back-quote < > quotes blank and newline pass its
// check: the shell sees them.
String AvaliableUpdateProvider::GetViaUsb(const String& path) const {
    if (hasSpecialChars(path)) {
        return INVALID_PARAMETERS;
    }
    SpawnBackgroundThread(USB_COMMAND + path);
    return String();
}

String AvaliableUpdateProvider::GetViaHardDrive(const String& path) const {
    if (hasSpecialChars(path)) {
        return INVALID_PARAMETERS;
    }
    SpawnBackgroundThread(HARD_DRIVE_COMMAND + path);
    return String();
}

String AvaliableUpdateProvider::GetViaElementManager() const {
    SpawnBackgroundThread(ELEMENT_MANAGER_COMMAND);
    return String();
}

Int8 AvaliableUpdateProvider::GetProgress(String& text) const {
    String output;
    const int exitCode = Execute(PROGRESS_COMMAND, output);
    if (exitCode != 0) {
        ThrowPatchKeeperError(exitCode);
    }
    const StringArray pieces = output.tokenize("\n\t");
    if (pieces.size() < 2) {
        text = NO_PROGRESS;
        return -1;
    }
    // ODDITY AV-12: a first piece that is no number counts as 0.
    const int code = atoi(pieces[0].c_str());
    if (code < FIRST_PROGRESS_CODE || code > LAST_PROGRESS_CODE) {
        text = WRONG_PROGRESS_CODE;
        return -1;
    }
    text = pieces[1];
    return static_cast<Int8>(code);
}

CIMValue AvaliableUpdateProvider::InvokeOnUpdate(const CIMObjectPath& path,
                                                 const String& methodName,
                                                 const CIMParamValueArray& in) const {
    const List list = ListSnapshot(gAvaliableList);
    // ODDITY AV-13: looked for before the name is: an unknown method on an unknown update is an
    // unknown update.
    const AvaliableUpdate& update = list[static_cast<size_t>(GetIndexFromObjectPath(path, list))];
    if (methodName == "Apply") {
        RequireCount(in, 0, CIMException::INVALID_PARAMETER);
        return CIMValue(update.Apply());
    }
    if (methodName == "Warnings") {
        RequireCount(in, 0, CIMException::INVALID_PARAMETER);
        return CIMValue(update.Warnings());
    }
    if (methodName == "HasOptionalComponents") {
        RequireCount(in, 0, CIMException::INVALID_PARAMETER);
        return CIMValue(update.HasOptionalComponents());
    }
    if (methodName == "AddToSchedule") {
        RequireCount(in, 2, CIMException::INVALID_PARAMETER);
        const String date = DateParameter(in, 0);
        const String time = DateParameter(in, 1);
        return CIMValue(update.Schedule(date, time));
    }
    OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
}

CIMValue AvaliableUpdateProvider::invokeMethod(const ProviderEnvironmentIFCRef&, const String&,
                                               const CIMObjectPath& path, const String& methodName,
                                               const CIMParamValueArray& in,
                                               CIMParamValueArray& out) {
    if (methodName == "GetViaFtp") {
        RequireCount(in, 4, CIMException::INVALID_PARAMETER);
        return CIMValue(GetViaFtp(TextParameter(in, 0), TextParameter(in, 1), TextParameter(in, 2),
                                  TextParameter(in, 3)));
    }
    if (methodName == "GetViaHttp") {
        RequireCount(in, 5, CIMException::INVALID_PARAMETER);
        return CIMValue(GetViaHttp(TextParameter(in, 0), TextParameter(in, 1), TextParameter(in, 2),
                                   TextParameter(in, 3), Parameter<Bool>(in, 4)));
    }
    if (methodName == "GetViaSamba") {
        // ODDITY AV-14: FAILED for a wrong count here and in two more methods, where the others
        // say INVALID_PARAMETER; clients tell the methods' refusals apart by it.
        RequireCount(in, 4, CIMException::FAILED);
        return CIMValue(GetViaSamba(TextParameter(in, 0), TextParameter(in, 1),
                                    TextParameter(in, 2), TextParameter(in, 3)));
    }
    if (methodName == "GetViaUsb") {
        RequireCount(in, 1, CIMException::INVALID_PARAMETER);
        return CIMValue(GetViaUsb(TextParameter(in, 0)));
    }
    if (methodName == "GetViaHardDrive") {
        RequireCount(in, 1, CIMException::FAILED);
        return CIMValue(GetViaHardDrive(TextParameter(in, 0)));
    }
    if (methodName == "GetViaElementManager") {
        RequireCount(in, 0, CIMException::FAILED);
        return CIMValue(GetViaElementManager());
    }
    if (methodName == "GetProgress") {
        // ODDITY AV-15: parameters are neither counted nor read.
        String text;
        const Int8 code = GetProgress(text);
        OutputDebug("GetProgress: %d %s", code, text.c_str());
        SetOutParameter(out, STATUS, CIMValue(text));
        return CIMValue(code);
    }
    return InvokeOnUpdate(path, methodName, in);
}
