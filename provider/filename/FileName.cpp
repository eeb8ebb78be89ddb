#include "provider/filename/FileName.hpp"

#include "provider/common/Common.hpp"

using OpenWBEM::CIMException;
using OpenWBEM::String;
using OpenWBEM::StringArray;
using OpenWBEM::UInt16;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper --files ";
const char* const TOO_MANY_RECORDS = "Too many records: more than 65535 names from ";

// ODDITY FN-1: an update without files shows these two names.
const char* const DEFAULT_NAMES = "Filename1     Testname";
// ODDITY FN-2: a name ends at any white space, so none holds a blank.
const char* const SEPARATORS = " \n\r\t\v";

const UInt16 BEFORE_THE_FIRST = 65535;
// The cursor is a 16-bit number.
const size_t MAXIMUM_RECORDS = 65535;

} // namespace

FileName_ObjectList::FileName_ObjectList() : cursor(BEFORE_THE_FIRST) {
}

FileName_ObjectList::FileName_ObjectList(const String& patch) : cursor(BEFORE_THE_FIRST) {
    setPatchName(patch);
}

void FileName_ObjectList::Initialize() {
    names.clear();
    cursor = BEFORE_THE_FIRST;
}

void FileName_ObjectList::setPatchName(const String& patch) {
    patchName = patch;
}

bool FileName_ObjectList::getObjectList() {
    return getObjectList(patchName);
}

bool FileName_ObjectList::getObjectList(const String& patch) {
    Initialize();
    setPatchName(patch);
    // ODDITY FN-3: unquoted for the shell; without an update the command line ends in a blank.
    const String command = COMMAND + patchName;
    String output;
    // ODDITY FN-4: the runner collects the tool's error output too, and its words are names.
    const int code = Execute(command, output);
    if (code != 0) {
        ThrowPatchKeeperError(code);
    }
    if (output.empty()) {
        output = DEFAULT_NAMES;
        OutputDebug("no file name, use default: %s", output.c_str());
    }
    const StringArray pieces = output.tokenize(SEPARATORS);
    for (const String& piece : pieces) {
        if (names.size() == MAXIMUM_RECORDS) {
            ThrowCimFailed((TOO_MANY_RECORDS + command).c_str());
        }
        names.push_back(piece);
    }
    return true;
}

void FileName_ObjectList::begin() {
    cursor = BEFORE_THE_FIRST;
}

void FileName_ObjectList::next() {
}

void FileName_ObjectList::end() {
}

bool FileName_ObjectList::hasObject() {
    // ODDITY FN-5: asking moves on, and next() does not.
    ++cursor;
    return cursor < names.size();
}

String FileName_ObjectList::getName() const {
    return names[cursor];
}

FileNameRecord::FileNameRecord(const FileName_ObjectList& list) : name(list.getName()) {
}

bool FileNameRecord::getName(String& out) const {
    out = name;
    return true;
}

void FileNameManager::init() {
}

void FileNameManager::startIteration() {
    if (!files.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    files.begin();
}

bool FileNameManager::hasNext() {
    return files.hasObject();
}

void FileNameManager::getNext(FileNameRecord& record) const {
    getOneObject(files, record);
}

void FileNameManager::endIteration() {
    files.end();
}

void FileNameManager::getOneObject(const String& name, FileNameRecord& record) const {
    FileName_ObjectList list;
    if (!list.getObjectList()) {
        OW_THROWCIM(CIMException::FAILED);
    }
    for (list.begin(); list.hasObject(); list.next()) {
        if (list.getName() == name) {
            getOneObject(list, record);
            return;
        }
    }
    OW_THROWCIM(CIMException::NOT_FOUND);
}

void FileNameManager::getOneObject(const FileName_ObjectList& list, FileNameRecord& record) const {
    record = FileNameRecord(list);
}
