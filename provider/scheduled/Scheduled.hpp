#pragma once

// The scheduled updates as the tool lists them, and what can be done with one of them. Nothing is
// shared: each list and record belongs to the call that made it, and every call asks the tool anew.

#include <cstddef>
#include <cstdio>

#include "OW_CppProviderIncludes.hpp"

/// The tool's listing in columns, and a cursor over its records:
///
///     ScheduledUpdate_ObjectList list;
///     list.getObjectList();
///     for (list.begin(); list.hasObject(); list.next()) { ... list.getName() ... }
///
/// Where the cursor stands on no record, what reads the current one throws OutOfBoundsException.
class ScheduledUpdate_ObjectList {
public:
    ScheduledUpdate_ObjectList();

    /// Forgets the records and goes before the first.
    void Initialize();

    /// Fills the list from the tool. Returns true. Throws CIM_ERR_FAILED when the tool fails, when
    /// a line lacks a field, and when there are more records than the cursor can number; the list
    /// then holds nothing, the records before that line, or those that the cursor can number.
    bool getObjectList();

    /// Goes before the first record.
    void begin();
    void next();
    void end();
    /// Moves on to the following record and tells whether there is one. Each call moves on.
    bool hasObject();

    /// The name, a blank, and the version of the current record.
    OpenWBEM::String getInstanceID() const;
    OpenWBEM::String getName() const;
    OpenWBEM::String getVersion() const;
    OpenWBEM::String getShortDescription() const;
    OpenWBEM::String getLocation() const;
    /// The tool's text.
    OpenWBEM::String getDownloadDate() const;
    /// The tool's text.
    OpenWBEM::String getApplyDate() const;
    bool getRebootRequired() const;
    OpenWBEM::String getStatus() const;
    OpenWBEM::String getSize() const;

private:
    /// Cuts a line, in place, and appends its record to all columns or, when a field is missing, to
    /// none.
    void AppendRecord(char* line);

    // The columns are of the same length.
    OpenWBEM::UInt16 cursor; ///< 65535: before the first record
    OpenWBEM::StringArray names;
    OpenWBEM::StringArray versions;
    OpenWBEM::StringArray shortDescriptions;
    OpenWBEM::StringArray locations;
    OpenWBEM::StringArray downloadDates;
    OpenWBEM::StringArray applyDates;
    OpenWBEM::BoolArray rebootFlags;
    OpenWBEM::StringArray statuses;
    OpenWBEM::StringArray sizes;
};

/// One scheduled update. The getters copy a value to `out` and return true; a false one would mean
/// that the update has no such value.
class ScheduledUpdate {
public:
    ScheduledUpdate() = default;
    /// The list's current record.
    explicit ScheduledUpdate(const ScheduledUpdate_ObjectList& list);

    bool getInstanceID(OpenWBEM::String& out) const;
    bool getName(OpenWBEM::String& out) const;
    bool getVersion(OpenWBEM::String& out) const;
    bool getShortDescription(OpenWBEM::String& out) const;
    bool getLocation(OpenWBEM::String& out) const;
    /// The tool's text as the provider API's DateTime reads it; DateTimeException when it does not.
    bool getDownloadDate(OpenWBEM::CIMDateTime& out) const;
    /// As getDownloadDate.
    bool getApplyDate(OpenWBEM::CIMDateTime& out) const;
    bool getRebootRequired(bool& out) const;
    bool getStatus(OpenWBEM::String& out) const;
    bool getSize(OpenWBEM::String& out) const;

    /// Asks the tool for the long description and appends what it prints to `out`. False when the
    /// tool fails; `out` then holds whatever it printed.
    bool getUpdateDescription(OpenWBEM::String& out) const;

    /// Has the tool move the schedule, and waits for it: the tool takes the day from `date` and the
    /// time of day from `time`. Returns an empty text; throws CIM_ERR_FAILED when the tool fails.
    OpenWBEM::String modify(const OpenWBEM::String& date, const OpenWBEM::String& time) const;

    /// Has the tool drop the schedule, and waits for it. As modify.
    OpenWBEM::String remove() const;

private:
    OpenWBEM::String InstanceID;
    OpenWBEM::String Name;
    OpenWBEM::String Version;
    OpenWBEM::String ShortDescription;
    OpenWBEM::String Location;
    OpenWBEM::String DownloadDate; ///< the tool's text
    OpenWBEM::String ApplyDate;    ///< the tool's text
    bool RebootRequired = false;
    OpenWBEM::String Status;
    OpenWBEM::String Size;
};

/// Walks the scheduled updates, or finds one of them.
class ScheduledUpdate_ObjectInstanceManager {
public:
    static void init();

    /// Runs the tool and goes before the first record. Throws CIM_ERR_FAILED.
    void startIteration();
    /// Moves on, as hasObject does.
    bool hasNext();
    /// The record that hasNext moved to.
    void getNext(ScheduledUpdate& out) const;
    void endIteration();

    /// Runs the tool anew and looks for the first record with exactly this InstanceID. Throws
    /// CIM_ERR_NOT_FOUND without one, CIM_ERR_FAILED when the listing fails.
    void getOneObject(const OpenWBEM::String& instanceID, ScheduledUpdate& out) const;
    /// The list's current record.
    void getOneObject(const ScheduledUpdate_ObjectList& list, ScheduledUpdate& out) const;

private:
    ScheduledUpdate_ObjectList objectList;
};
