#pragma once

// The files of an update as the tool lists them. Nothing is shared: each list belongs to the call
// that made it.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// The file names of one update, and a cursor over them:
///
///     FileName_ObjectList files("update-1.0");
///     files.getObjectList();
///     for (files.begin(); files.hasObject(); files.next()) { ... files.getName() ... }
class FileName_ObjectList {
public:
    /// No update is named.
    FileName_ObjectList();
    explicit FileName_ObjectList(const OpenWBEM::String& patch);

    /// Forgets the names and goes before the first; the update stays.
    void Initialize();
    /// The update whose files are listed: its name, a hyphen and its version.
    void setPatchName(const OpenWBEM::String& patch);

    /// Fills the list from the tool. Returns true; throws CIM_ERR_FAILED when the tool fails, and
    /// when it prints more names than the cursor can number: the list then holds those that fit.
    bool getObjectList();
    /// The same for another update, which is kept as setPatchName does.
    bool getObjectList(const OpenWBEM::String& patch);

    /// Goes before the first name.
    void begin();
    void next();
    void end();
    /// Moves on to the following name and tells whether there is one. Each call moves on.
    bool hasObject();
    /// The name at the cursor; OutOfBoundsException where there is none.
    OpenWBEM::String getName() const;

private:
    OpenWBEM::UInt16 cursor; ///< 65535: before the first name
    OpenWBEM::String patchName;
    OpenWBEM::StringArray names; ///< in the order of the tool's output
};

/// One file name.
class FileNameRecord {
public:
    FileNameRecord() = default;
    /// The name at the list's cursor.
    explicit FileNameRecord(const FileName_ObjectList& list);

    /// Copies the name to `out`; returns true.
    bool getName(OpenWBEM::String& out) const;

private:
    OpenWBEM::String name;
};

/// Walks the files that the tool lists when no update is named.
class FileNameManager {
public:
    static void init();

    /// Runs the tool and goes before the first name. Throws CIM_ERR_FAILED.
    void startIteration();
    /// Moves on, as hasObject does.
    bool hasNext();
    void getNext(FileNameRecord& record) const;
    void endIteration();

    /// Runs the tool anew and looks for the name, exactly; CIM_ERR_NOT_FOUND without it.
    void getOneObject(const OpenWBEM::String& name, FileNameRecord& record) const;
    /// The list's current name.
    void getOneObject(const FileName_ObjectList& list, FileNameRecord& record) const;

private:
    FileName_ObjectList files;
};
