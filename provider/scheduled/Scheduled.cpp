#include "provider/scheduled/Scheduled.hpp"

#include "provider/common/Common.hpp"

#include <string>

using OpenWBEM::CIMDateTime;
using OpenWBEM::CIMException;
using OpenWBEM::DateTime;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt16;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper --sched ";
const char* const DESCRIPTION_COMMAND = "/qv/bin/patchkeeper -l ";
// ODDITY SC-1: one option moves and drops the schedule; without a day and a time the tool drops it.
const char* const MODIFY_COMMAND = "/qv/bin/patchkeeper --msched ";
const char* const TOO_MANY_RECORDS =
    "Too many records: more than 65535 lines from /qv/bin/patchkeeper --sched ";

const UInt16 BEFORE_THE_FIRST = 65535;
// The cursor is a 16-bit number.
const size_t MAXIMUM_RECORDS = 65535;

void ThrowUnlessSuccessful(int code) {
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
}

} // namespace

ScheduledUpdate_ObjectList::ScheduledUpdate_ObjectList() : cursor(BEFORE_THE_FIRST) {
}

void ScheduledUpdate_ObjectList::Initialize() {
    names.clear();
    versions.clear();
    shortDescriptions.clear();
    locations.clear();
    downloadDates.clear();
    applyDates.clear();
    rebootFlags.clear();
    statuses.clear();
    sizes.clear();
    cursor = BEFORE_THE_FIRST;
}

bool ScheduledUpdate_ObjectList::getObjectList() {
    Initialize();
    StringArray lines;
    // ODDITY SC-2: the runner collects the tool's error output too, and each of its lines counts.
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

void ScheduledUpdate_ObjectList::AppendRecord(char* line) {
    const String name = GetNextToken(line, "Name", COMMAND);
    const String version = GetNextToken(nullptr, "Version", COMMAND);
    const String shortDescription = GetNextToken(nullptr, "Short Description", COMMAND);
    const String location = GetNextToken(nullptr, "Location", COMMAND);
    const String downloadDate = GetNextToken(nullptr, "Download Date", COMMAND);
    const String applyDate = GetNextToken(nullptr, "Apply Date", COMMAND);
    const String rebootRequired = GetNextToken(nullptr, "Reboot Required", COMMAND);
    const String size = GetNextToken(nullptr, "Size", COMMAND);
    const String status = GetNextToken(nullptr, "Status", COMMAND);
    names.push_back(name);
    versions.push_back(version);
    shortDescriptions.push_back(shortDescription);
    locations.push_back(location);
    downloadDates.push_back(downloadDate);
    applyDates.push_back(applyDate);
    rebootFlags.push_back(rebootRequired == "reboot");
    statuses.push_back(status);
    sizes.push_back(size);
}

void ScheduledUpdate_ObjectList::begin() {
    cursor = BEFORE_THE_FIRST;
}

void ScheduledUpdate_ObjectList::next() {
}

void ScheduledUpdate_ObjectList::end() {
}

bool ScheduledUpdate_ObjectList::hasObject() {
    // ODDITY SC-3: asking moves on, and next() does not; asked twice, a record is skipped.
    ++cursor;
    return downloadDates.size() > cursor;
}

String ScheduledUpdate_ObjectList::getInstanceID() const {
    return names[cursor] + " " + versions[cursor];
}

String ScheduledUpdate_ObjectList::getName() const {
    return names[cursor];
}

String ScheduledUpdate_ObjectList::getVersion() const {
    return versions[cursor];
}

String ScheduledUpdate_ObjectList::getShortDescription() const {
    return shortDescriptions[cursor];
}

String ScheduledUpdate_ObjectList::getLocation() const {
    return locations[cursor];
}

String ScheduledUpdate_ObjectList::getDownloadDate() const {
    return downloadDates[cursor];
}

String ScheduledUpdate_ObjectList::getApplyDate() const {
    return applyDates[cursor];
}

bool ScheduledUpdate_ObjectList::getRebootRequired() const {
    return rebootFlags[cursor];
}

String ScheduledUpdate_ObjectList::getStatus() const {
    return statuses[cursor];
}

String ScheduledUpdate_ObjectList::getSize() const {
    return sizes[cursor];
}

ScheduledUpdate::ScheduledUpdate(const ScheduledUpdate_ObjectList& list)
    : InstanceID(list.getInstanceID()), Name(list.getName()), Version(list.getVersion()),
      ShortDescription(list.getShortDescription()), Location(list.getLocation()),
      DownloadDate(list.getDownloadDate()), ApplyDate(list.getApplyDate()),
      RebootRequired(list.getRebootRequired()), Status(list.getStatus()), Size(list.getSize()) {
}

bool ScheduledUpdate::getInstanceID(String& out) const {
    out = InstanceID;
    return true;
}

bool ScheduledUpdate::getName(String& out) const {
    out = Name;
    return true;
}

bool ScheduledUpdate::getVersion(String& out) const {
    out = Version;
    return true;
}

bool ScheduledUpdate::getShortDescription(String& out) const {
    out = ShortDescription;
    return true;
}

bool ScheduledUpdate::getLocation(String& out) const {
    out = Location;
    return true;
}

bool ScheduledUpdate::getDownloadDate(CIMDateTime& out) const {
    out = CIMDateTime(DateTime(DownloadDate));
    return true;
}

bool ScheduledUpdate::getApplyDate(CIMDateTime& out) const {
    out = CIMDateTime(DateTime(ApplyDate));
    return true;
}

bool ScheduledUpdate::getRebootRequired(bool& out) const {
    out = RebootRequired;
    return true;
}

bool ScheduledUpdate::getStatus(String& out) const {
    out = Status;
    return true;
}

bool ScheduledUpdate::getSize(String& out) const {
    out = Size;
    return true;
}

bool ScheduledUpdate::getUpdateDescription(String& out) const {
    // ODDITY SC-4: name and version stand unquoted for the shell, here and after --msched.
    return Execute(DESCRIPTION_COMMAND + Name + "-" + Version, out) == 0;
}

String ScheduledUpdate::modify(const String& date, const String& time) const {
    ThrowUnlessSuccessful(
        Execute(MODIFY_COMMAND + Name + " " + Version + " \"" + date + "\" \"" + time + "\""));
    return String();
}

String ScheduledUpdate::remove() const {
    ThrowUnlessSuccessful(Execute(MODIFY_COMMAND + Name + " " + Version));
    return String();
}

void ScheduledUpdate_ObjectInstanceManager::init() {
}

void ScheduledUpdate_ObjectInstanceManager::startIteration() {
    if (!objectList.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    objectList.begin();
}

bool ScheduledUpdate_ObjectInstanceManager::hasNext() {
    return objectList.hasObject();
}

void ScheduledUpdate_ObjectInstanceManager::getNext(ScheduledUpdate& out) const {
    getOneObject(objectList, out);
}

void ScheduledUpdate_ObjectInstanceManager::endIteration() {
    objectList.end();
}

void ScheduledUpdate_ObjectInstanceManager::getOneObject(const String& instanceID,
                                                         ScheduledUpdate& out) const {
    ScheduledUpdate_ObjectList list;
    if (!list.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    for (list.begin(); list.hasObject(); list.next()) {
        // ODDITY SC-5: a blank in a name makes "a b" "1" and "a" "b 1" one and the same; the first
        // of them answers.
        if (list.getInstanceID() == instanceID) {
            getOneObject(list, out);
            return;
        }
    }
    OW_THROWCIM(CIMException::NOT_FOUND);
}

void ScheduledUpdate_ObjectInstanceManager::getOneObject(const ScheduledUpdate_ObjectList& list,
                                                         ScheduledUpdate& out) const {
    out = ScheduledUpdate(list);
}
