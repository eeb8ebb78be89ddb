#include "provider/available/AvaliableProvider.hpp"

#include "provider/common/Common.hpp"
#include "provider/common/SharedList.hpp"
#include "provider/component/ComponentProvider.hpp"

#include "OW_CIMDateTime.hpp"
#include "OW_DateTime.hpp"

#include <cstdlib>
#include <string>

using OpenWBEM::Array;
using OpenWBEM::Bool;
using OpenWBEM::CIMClass;
using OpenWBEM::CIMDateTime;
using OpenWBEM::CIMException;
using OpenWBEM::CIMInstance;
using OpenWBEM::CIMInstanceResultHandlerIFC;
using OpenWBEM::CIMName;
using OpenWBEM::CIMObjectPath;
using OpenWBEM::CIMObjectPathResultHandlerIFC;
using OpenWBEM::CIMParamValue;
using OpenWBEM::CIMParamValueArray;
using OpenWBEM::CIMPropertyArray;
using OpenWBEM::CIMValue;
using OpenWBEM::DateTime;
using OpenWBEM::Int8;
using OpenWBEM::ProviderEnvironmentIFCRef;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt16;
using OpenWBEM::UInt32;
using OpenWBEM::UInt8;
using namespace OpenWBEM::WBEMFlags;

Array<AvaliableUpdate> gAvaliableList;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper --cache ";
const char* const DESCRIPTION_COMMAND = "/qv/bin/patchkeeper -l ";
const char* const APPLY_COMMAND = "/qv/bin/patchkeeper --apply ";
const char* const WARNINGS_COMMAND = "/qv/bin/patchkeeper --warnings ";
const char* const COMPONENTS_COMMAND = "/qv/bin/patchkeeper --hascomponents ";
const char* const SCHEDULE_COMMAND = "/qv/bin/patchkeeper --sched ";

const UInt16 MOST_RECORDS = 65535;
const char* const TOO_MANY_RECORDS =
    "Too many records: more than 65535 lines from /qv/bin/patchkeeper --cache ";

const CIMName UPDATE_CLASS("ZNX_AvailableSoftwareUpdate");
const String INSTANCE_ID("InstanceID");
const CIMName NAME("Name");
const CIMName SHORT_DESCRIPTION("ShortDescription");
const CIMName VERSION_STRING("VersionString");
const CIMName SIZE("Size");
const CIMName REBOOT_REQUIRED("RebootRequired");
const CIMName STATUS("Status");
const String UPDATE_DESCRIPTION("UpdateDescription");

struct StatusRow {
    const char* text;
    UInt8 value;
};

const StatusRow STATUSES[] = {
    {"Obsolete", 0}, {"Applied", 1}, {"Schedule", 2}, {"Available", 3}, {"Invalid", 4},
};
// ODDITY AV-2: 154 for any other word; clients compare with it.
const UInt8 UNKNOWN_STATUS = 154;

UInt8 StatusOf(const String& text) {
    for (const StatusRow& row : STATUSES) {
        if (text == row.text) {
            return row.value;
        }
    }
    return UNKNOWN_STATUS;
}

AvaliableUpdate ReadRecord(UInt16 position, char* line) {
    AvaliableUpdate record;
    record.InstanceID = String(static_cast<UInt32>(position));
    record.Name = GetNextToken(line, "Name", COMMAND);
    record.Version = GetNextToken(nullptr, "Version", COMMAND);
    record.ShortDescription = GetNextToken(nullptr, "Short Description", COMMAND);
    record.Size = GetNextToken(nullptr, "Size", COMMAND);
    record.RebootRequired = GetNextToken(nullptr, "Reboot Required", COMMAND) == "reboot";
    // ODDITY AV-3: the label in a failure is "Category", although the field is the state.
    record.Status = StatusOf(GetNextToken(nullptr, "Category", COMMAND));
    return record;
}

String DescriptionOf(const AvaliableUpdate& record) {
    String description;
    if (Execute(DESCRIPTION_COMMAND + record.Name + "-" + record.Version, description) != 0) {
        // ODDITY AV-4: any -l failure is reported as exit code 1; clients rely on the message id.
        ThrowPatchKeeperError(1);
    }
    return description;
}

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

const String STATUS_PARAMETER("Status");

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

String AvaliableUpdate::Apply() const {
    // ODDITY AV-5: a blank ends the line when no component is chosen.
    // ODDITY AV-6: the chosen components are those of the update that was selected last, whichever
    // update is applied.
    SpawnBackgroundThread(APPLY_COMMAND + Name + " " + Version + " " + GetOptionalComponentList());
    return String();
}

String AvaliableUpdate::Warnings() const {
    String output;
    const int code = Execute(WARNINGS_COMMAND + Name + " " + Version, output);
    // ODDITY AV-7: 1 says that there are warnings; -1, a tool that was not started, passes too.
    if (code > 1) {
        ThrowPatchKeeperError(code);
    }
    return output;
}

bool AvaliableUpdate::HasOptionalComponents() const {
    // ODDITY AV-16: a question that changes something: the update is selected before the tool is
    // asked, also when it then fails.
    SelectComponentsOf(Name, Version);
    const int code = Execute(COMPONENTS_COMMAND + Name + " " + Version);
    if (code > 1) {
        ThrowPatchKeeperError(code);
    }
    return code == 0;
}

String AvaliableUpdate::Schedule(const String& date, const String& time) const {
    // ODDITY AV-17: date and time are quoted, name and version are not, here as in all commands.
    String output;
    const int code = Execute(
        SCHEDULE_COMMAND + Name + " " + Version + " \"" + date + "\" \"" + time + "\"", output);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    return output;
}

void AvaliableUpdateProvider::initialize(const ProviderEnvironmentIFCRef&) {
    // ODDITY AV-8: the first record of the list has the InstanceID of a second one: until an
    // enumeration clients find it as "1".
    AvaliableUpdate placeholder;
    placeholder.InstanceID = "1";
    placeholder.Name = "Dummy";
    ChangeList(gAvaliableList, [&](List& list) { list.push_back(placeholder); });
}

void AvaliableUpdateProvider::cleanup() {
}

Array<AvaliableUpdate> AvaliableUpdateProvider::GetCachedList() {
    ListRefresh<AvaliableUpdate> refresh(gAvaliableList);
    List& records = refresh.Records();
    StringArray lines;
    // ODDITY AV-20: the runner collects the tool's error output too, and each of its lines counts.
    const int code = Execute(COMMAND, lines);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    std::string line;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i == MOST_RECORDS) {
            ThrowCimFailed(TOO_MANY_RECORDS);
        }
        line = static_cast<const StringArray&>(lines)[i].c_str();
        records.push_back(ReadRecord(static_cast<UInt16>(i), &line[0]));
    }
    return records;
}

CIMInstance AvaliableUpdateProvider::GetInstance(int index, const StringArray* properties,
                                                 const List& list) const {
    const AvaliableUpdate& record = list[static_cast<size_t>(index)];
    CIMInstance instance(UPDATE_CLASS);
    instance.setProperty(ProvPropCreateKey(INSTANCE_ID, CIMValue(record.InstanceID)));
    instance.setProperty(NAME, CIMValue(record.Name));
    instance.setProperty(SHORT_DESCRIPTION, CIMValue(record.ShortDescription));
    instance.setProperty(VERSION_STRING, CIMValue(record.Version));
    instance.setProperty(SIZE, CIMValue(record.Size));
    instance.setProperty(REBOOT_REQUIRED, CIMValue(record.RebootRequired));
    instance.setProperty(STATUS, CIMValue(record.Status));
    if (properties == nullptr) {
        // ODDITY AV-9: a request for all properties goes without the description; it is fetched
        // only for those who name it.
        return instance;
    }
    for (const String& property : *properties) {
        if (property == UPDATE_DESCRIPTION) {
            // ODDITY AV-21: named twice, it is fetched and set twice.
            instance.setProperty(UPDATE_DESCRIPTION, CIMValue(DescriptionOf(record)));
        }
    }
    return instance;
}

void AvaliableUpdateProvider::SetObjectPathKeys(CIMObjectPath& path, unsigned int index,
                                                const List& list) const {
    path.setKeys(
        CIMPropertyArray(1, ProvPropCreateKey(INSTANCE_ID, CIMValue(list[index].InstanceID))));
}

void AvaliableUpdateProvider::enumInstanceNames(const ProviderEnvironmentIFCRef&, const String& ns,
                                                const String& className,
                                                CIMObjectPathResultHandlerIFC& result,
                                                const CIMClass&) {
    const List list = GetCachedList();
    for (size_t i = 0; i < list.size(); ++i) {
        CIMObjectPath path(className, ns);
        SetObjectPathKeys(path, static_cast<unsigned int>(i), list);
        result.handle(path);
    }
}

void AvaliableUpdateProvider::enumInstances(const ProviderEnvironmentIFCRef&, const String&,
                                            const String&, CIMInstanceResultHandlerIFC& result,
                                            ELocalOnlyFlag, EDeepFlag, EIncludeQualifiersFlag,
                                            EIncludeClassOriginFlag, const StringArray* properties,
                                            const CIMClass&, const CIMClass&) {
    const List list = GetCachedList();
    for (size_t i = 0; i < list.size(); ++i) {
        result.handle(GetInstance(static_cast<int>(i), properties, list));
    }
}

CIMInstance AvaliableUpdateProvider::getInstance(const ProviderEnvironmentIFCRef&, const String&,
                                                 const CIMObjectPath& instanceName, ELocalOnlyFlag,
                                                 EIncludeQualifiersFlag, EIncludeClassOriginFlag,
                                                 const StringArray* properties, const CIMClass&) {
    // ODDITY AV-18: answers from the last enumeration and never asks the tool for the list.
    const List list = ListSnapshot(gAvaliableList);
    return GetInstance(GetIndexFromObjectPath(instanceName, list), properties, list);
}

CIMObjectPath AvaliableUpdateProvider::createInstance(const ProviderEnvironmentIFCRef&,
                                                      const String&, const CIMInstance&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void AvaliableUpdateProvider::deleteInstance(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMObjectPath&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

void AvaliableUpdateProvider::modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
                                             const CIMInstance&, const CIMInstance&,
                                             EIncludeQualifiersFlag, const StringArray*,
                                             const CIMClass&) {
    OW_THROWCIM(CIMException::NOT_SUPPORTED);
}

String AvaliableUpdateProvider::GetViaFtp(const String& server, const String& first,
                                          const String& second, const String& third) const {
    String refusal = RefusalOf(server, first, second, third);
    if (!refusal.empty()) {
        return refusal;
    }
    SpawnBackgroundThread(FTP_COMMAND + SourceArguments(server, first, second, third));
    return String();
}

String AvaliableUpdateProvider::GetViaHttp(const String& server, const String& first,
                                           const String& second, const String& third,
                                           bool flag) const {
    String refusal = RefusalOf(server, first, second, third);
    if (!refusal.empty()) {
        return refusal;
    }
    SpawnBackgroundThread(HTTP_COMMAND + SourceArguments(server, first, second, third) +
                          (flag ? " true" : " false"));
    return String();
}

String AvaliableUpdateProvider::GetViaSamba(const String& server, const String& first,
                                            const String& second, const String& third) const {
    String refusal = RefusalOf(server, first, second, third);
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
        // ODDITY AV-23: each text carries the day and the time of day; the tool takes the one from
        // the first and the other from the second.
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
    // ODDITY AV-22: compared with its case, although names of methods have none.
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
        SetOutParameter(out, STATUS_PARAMETER, CIMValue(text));
        return CIMValue(code);
    }
    return InvokeOnUpdate(path, methodName, in);
}
