#include "provider/active/Active.hpp"

#include "provider/common/Common.hpp"

#include <string>

using OpenWBEM::CIMDateTime;
using OpenWBEM::CIMException;
using OpenWBEM::DateTime;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt16;

namespace {

// ODDITY AC-1: --apply, which applies an update when it is given one, lists those being applied
// when it is given none.
const char* const COMMAND = "/qv/bin/patchkeeper --apply ";
const char* const DESCRIPTION_COMMAND = "/qv/bin/patchkeeper -l ";
const char* const CANCEL_COMMAND = "/qv/bin/patchkeeper --rback ";
const char* const TOO_MANY_RECORDS =
    "Too many records: more than 65535 lines from /qv/bin/patchkeeper --apply ";

const UInt16 BEFORE_THE_FIRST = 65535;
// The cursor is a 16-bit number.
const size_t MAXIMUM_RECORDS = 65535;

void ThrowUnlessSuccessful(int code) {
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
}

} // namespace

ActiveUpdate_ObjectList::ActiveUpdate_ObjectList() : cursor(BEFORE_THE_FIRST) {
}

void ActiveUpdate_ObjectList::Initialize() {
    names.clear();
    versions.clear();
    shortDescriptions.clear();
    locations.clear();
    applyDates.clear();
    rebootFlags.clear();
    statuses.clear();
    sizes.clear();
    cursor = BEFORE_THE_FIRST;
}

bool ActiveUpdate_ObjectList::getObjectList() {
    Initialize();
    StringArray lines;
    // ODDITY AC-2: the runner collects the tool's error output too, and each of its lines counts.
    ThrowUnlessSuccessful(Execute(COMMAND, lines));
    std::string line;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i == MAXIMUM_RECORDS) {
            ThrowCimFailed(TOO_MANY_RECORDS);
        }
        line = static_cast<const StringArray&>(lines)[i].c_str();
        AppendRecord(&line[0]);
    }
    return true;
}

void ActiveUpdate_ObjectList::AppendRecord(char* line) {
    const String name = GetNextToken(line, "Name", COMMAND);
    const String version = GetNextToken(nullptr, "Version", COMMAND);
    const String shortDescription = GetNextToken(nullptr, "Short Description", COMMAND);
    const String location = GetNextToken(nullptr, "Location", COMMAND);
    const String applyDate = GetNextToken(nullptr, "Apply Date", COMMAND);
    const String rebootRequired = GetNextToken(nullptr, "Reboot Required", COMMAND);
    const String size = GetNextToken(nullptr, "Size", COMMAND);
    const String status = GetNextToken(nullptr, "Status", COMMAND);
    names.push_back(name);
    versions.push_back(version);
    shortDescriptions.push_back(shortDescription);
    locations.push_back(location);
    applyDates.push_back(applyDate);
    rebootFlags.push_back(rebootRequired == "reboot");
    statuses.push_back(status);
    sizes.push_back(size);
}

void ActiveUpdate_ObjectList::begin() {
    cursor = BEFORE_THE_FIRST;
}

void ActiveUpdate_ObjectList::next() {
}

void ActiveUpdate_ObjectList::end() {
}

bool ActiveUpdate_ObjectList::hasObject() {
    // ODDITY AC-3: asking moves on, and next() does not; asked twice, a record is skipped.
    ++cursor;
    return names.size() > cursor;
}

String ActiveUpdate_ObjectList::getInstanceID() const {
    return names[cursor] + " " + versions[cursor];
}

String ActiveUpdate_ObjectList::getName() const {
    return names[cursor];
}

String ActiveUpdate_ObjectList::getVersion() const {
    return versions[cursor];
}

String ActiveUpdate_ObjectList::getShortDescription() const {
    return shortDescriptions[cursor];
}

String ActiveUpdate_ObjectList::getLocation() const {
    return locations[cursor];
}

String ActiveUpdate_ObjectList::getApplyDate() const {
    return applyDates[cursor];
}

bool ActiveUpdate_ObjectList::getRebootRequired() const {
    return rebootFlags[cursor];
}

String ActiveUpdate_ObjectList::getStatus() const {
    return statuses[cursor];
}

String ActiveUpdate_ObjectList::getSize() const {
    return sizes[cursor];
}

ActiveUpdate::ActiveUpdate(const ActiveUpdate_ObjectList& list)
    : InstanceID(list.getInstanceID()), Name(list.getName()), Version(list.getVersion()),
      ShortDescription(list.getShortDescription()), Location(list.getLocation()),
      ApplyDate(list.getApplyDate()), RebootRequired(list.getRebootRequired()),
      Status(list.getStatus()), Size(list.getSize()) {
}

bool ActiveUpdate::getInstanceID(String& out) const {
    out = InstanceID;
    return true;
}

bool ActiveUpdate::getName(String& out) const {
    out = Name;
    return true;
}

bool ActiveUpdate::getVersion(String& out) const {
    out = Version;
    return true;
}

bool ActiveUpdate::getShortDescription(String& out) const {
    out = ShortDescription;
    return true;
}

bool ActiveUpdate::getLocation(String& out) const {
    out = Location;
    return true;
}

bool ActiveUpdate::getApplyDate(CIMDateTime& out) const {
    out = CIMDateTime(DateTime(ApplyDate));
    return true;
}

bool ActiveUpdate::getRebootRequired(bool& out) const {
    out = RebootRequired;
    return true;
}

bool ActiveUpdate::getStatus(String& out) const {
    out = Status;
    return true;
}

bool ActiveUpdate::getSize(String& out) const {
    out = Size;
    return true;
}

bool ActiveUpdate::getUpdateDescription(String& out) const {
    // ODDITY AC-4: name and version stand unquoted for the shell, here and after --rback.
    return Execute(DESCRIPTION_COMMAND + Name + "-" + Version, out) == 0;
}

String ActiveUpdate::Cancel() const {
    // ODDITY AC-5: the call lasts as long as the roll-back, which of an applied update is left to a
    // background task.
    ThrowUnlessSuccessful(Execute(CANCEL_COMMAND + Name + " " + Version));
    return String();
}

void ActiveUpdate_ObjectInstanceManager::init() {
}

void ActiveUpdate_ObjectInstanceManager::startIteration() {
    if (!objectList.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    objectList.begin();
}

bool ActiveUpdate_ObjectInstanceManager::hasNext() {
    return objectList.hasObject();
}

void ActiveUpdate_ObjectInstanceManager::getNext(ActiveUpdate& out) const {
    getOneObject(objectList, out);
}

void ActiveUpdate_ObjectInstanceManager::endIteration() {
    objectList.end();
}

void ActiveUpdate_ObjectInstanceManager::getOneObject(const String& instanceID,
                                                      ActiveUpdate& out) const {
    ActiveUpdate_ObjectList list;
    if (!list.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    for (list.begin(); list.hasObject(); list.next()) {
        // ODDITY AC-6: a blank in a name makes "a b" "1" and "a" "b 1" one and the same; the first
        // of them answers.
        if (list.getInstanceID() == instanceID) {
            getOneObject(list, out);
            return;
        }
    }
    OW_THROWCIM(CIMException::NOT_FOUND);
}

void ActiveUpdate_ObjectInstanceManager::getOneObject(const ActiveUpdate_ObjectList& list,
                                                      ActiveUpdate& out) const {
    out = ActiveUpdate(list);
}
