#include "patchkeeper/Commands.hpp"

#include <array>
#include <limits>

#include "patchkeeper/Apply.hpp"
#include "patchkeeper/Fetch.hpp"
#include "patchkeeper/Housekeeping.hpp"
#include "patchkeeper/Lists.hpp"
#include "patchkeeper/Operation.hpp"
#include "patchkeeper/RollBack.hpp"
#include "patchkeeper/Scheduling.hpp"

namespace patchkeeper {

namespace {

using Context = CommandContext;

constexpr std::size_t any = std::numeric_limits<std::size_t>::max();

Listing ListingOf(const Context& context) {
    return {context.out, context.table};
}

Messages MessagesOf(const Context& context) {
    return {context.out, context.err, context.toPerson};
}

ExitCode Cache(const Context& context, const Arguments&) {
    ListCache(context.state, ListingOf(context));
    return ExitCode::Ok;
}

ExitCode Description(const Context& context, const Arguments& arguments) {
    PrintDescription(context.state, arguments[0], context.out);
    return ExitCode::Ok;
}

ExitCode Files(const Context& context, const Arguments& arguments) {
    ListFiles(context.state, arguments.empty() ? "" : arguments[0], context.out);
    return ExitCode::Ok;
}

ExitCode Warnings(const Context& context, const Arguments& arguments) {
    ListWarnings(context.state, arguments[0], arguments[1], context.out);
    return ExitCode::Ok;
}

ExitCode AsksForComponents(const Context& context, const Arguments& arguments) {
    constexpr ExitCode no{1};
    return HasComponents(context.state, arguments[0], arguments[1]) ? ExitCode::Ok : no;
}

ExitCode Components(const Context& context, const Arguments& arguments) {
    ListComponents(context.state, arguments[0], arguments[1], context.out);
    return ExitCode::Ok;
}

ExitCode History(const Context& context, const Arguments&) {
    ListHistory(context.state, ListingOf(context));
    return ExitCode::Ok;
}

ExitCode Scheduled(const Context& context, const Arguments&) {
    ListSchedules(context.state, ListingOf(context));
    return ExitCode::Ok;
}

ExitCode Active(const Context& context, const Arguments&) {
    ListActive(context.state, ListingOf(context));
    return ExitCode::Ok;
}

ExitCode TellStatus(const Context& context, const Arguments&) {
    auto store = context.state.OpenExisting(context.state.Settings());
    const Status status = store ? ReadStatus(context.state, *store) : NothingRunning();
    context.out << status.code << '\t' << status.text << '\n';
    return ExitCode::Ok;
}

ExitCode Usb(const Context& context, const Arguments& arguments) {
    FetchFromUsb(context.state, arguments[0], MessagesOf(context));
    return ExitCode::Ok;
}

ExitCode Disk(const Context& context, const Arguments& arguments) {
    FetchFromDisk(context.state, arguments[0], MessagesOf(context));
    return ExitCode::Ok;
}

ExitCode ElementManager(const Context& context, const Arguments&) {
    FetchFromElementManager(context.state, MessagesOf(context));
    return ExitCode::Ok;
}

ExitCode ForgetOne(const Context& context, const Arguments& arguments) {
    Forget(context.state, arguments[0], arguments[1], context.err);
    return ExitCode::Ok;
}

ExitCode PruneAll(const Context& context, const Arguments&) {
    Prune(context.state, context.out, context.err);
    return ExitCode::Ok;
}

void FetchByWords(const Context& context, Protocol protocol, const Arguments& arguments) {
    FetchFromServer(context.state, protocol,
                    {arguments[0], {arguments[1], arguments[2]}, arguments[3]},
                    MessagesOf(context));
}

ExitCode Ftp(const Context& context, const Arguments& arguments) {
    FetchByWords(context, Protocol::Ftp, arguments);
    return ExitCode::Ok;
}

ExitCode Http(const Context& context, const Arguments& arguments) {
    const std::string tls = arguments.size() > 4 ? arguments[4] : "false";
    if (tls != "true" && tls != "false") {
        const std::string sentence = "--http: what follows the path is neither true nor false";
        FailMark(context.state, sentence);
        throw Failure(ExitCode::Usage, sentence);
    }
    FetchByWords(context, tls == "true" ? Protocol::Https : Protocol::Http, arguments);
    return ExitCode::Ok;
}

ExitCode Samba(const Context& context, const Arguments& arguments) {
    FetchByWords(context, Protocol::Smb, arguments);
    return ExitCode::Ok;
}

ExitCode Apply(const Context& context, const Arguments& arguments) {
    ApplyUpdate(context.state, arguments[0], arguments[1],
                Arguments(arguments.begin() + 2, arguments.end()), MessagesOf(context));
    return ExitCode::Ok;
}

ExitCode TakeBack(const Context& context, const Arguments& arguments) {
    RollBack(context.state, arguments[0], arguments[1], MessagesOf(context));
    return ExitCode::Ok;
}

ExitCode Schedule(const Context& context, const Arguments& arguments) {
    ScheduleUpdate(context.state, arguments[0], arguments[1], arguments[2], arguments[3],
                   context.err);
    return ExitCode::Ok;
}

ExitCode Move(const Context& context, const Arguments& arguments) {
    MoveSchedule(context.state, arguments[0], arguments[1], arguments[2], arguments[3],
                 context.err);
    return ExitCode::Ok;
}

ExitCode Drop(const Context& context, const Arguments& arguments) {
    DropSchedule(context.state, arguments[0], arguments[1], context.err);
    return ExitCode::Ok;
}

ExitCode ApplyAllDue(const Context& context, const Arguments&) {
    RunDue(context.state, MessagesOf(context));
    return ExitCode::Ok;
}

constexpr auto lists = Command::Kind::List;
constexpr auto changes = Command::Kind::Change;
constexpr auto operates = Command::Kind::Operation;
constexpr auto general = ExitCode::SoftwareUpdateFailed;

constexpr auto commands = std::to_array<Command>({
    {"--cache", "", 0, 0, lists, general, "List the updates that are held", Cache},
    {"-l", "NAME-VERSION", 1, 1, lists, general, "Describe an update", Description},
    {"--files", "[NAME-VERSION]", 0, 1, lists, general, "List the files of an update, or of all",
     Files},
    {"--warnings", "NAME VERSION", 2, 2, lists, general, "List the warnings of an update",
     Warnings},
    {"--hascomponents", "NAME VERSION", 2, 2, lists, general,
     "Exit with 0 when an update has optional components, with 1 when it has none",
     AsksForComponents},
    {"--components", "NAME VERSION", 2, 2, lists, general,
     "List the optional components of an update", Components},
    {"--hist", "", 0, 0, lists, general, "List the updates that have been applied", History},
    {"--sched", "", 0, 0, lists, general, "List the updates that are scheduled", Scheduled},
    {"--apply", "", 0, 0, lists, general, "List the update that is being applied", Active},
    {"--status", "", 0, 0, lists, general, "Tell what runs, or how the last operation ended",
     TellStatus},
    {"--usb", "PATH", 1, 1, operates, ExitCode::UsbFailed,
     "Take in a bundle, or every bundle in a directory, from a USB device", Usb},
    {"--hd", "PATH", 1, 1, operates, ExitCode::DownloadFailed,
     "Take in a bundle, or every bundle in a directory", Disk},
    {"--ftp", "ADDRESS USER PASSWORD PATH", 4, 4, operates, ExitCode::FtpFailed,
     "Take in a bundle, or every bundle in a directory, from an FTP server", Ftp, 3},
    {"--http", "ADDRESS USER PASSWORD PATH [TLS]", 4, 5, operates, ExitCode::HttpFailed,
     "The same from an HTTP server; TLS is true for HTTPS, or false", Http, 3},
    {"--samba", "ADDRESS USER PASSWORD PATH", 4, 4, operates, ExitCode::SambaFailed,
     "The same from an SMB server; PATH begins with the share", Samba, 3},
    {"--em", "", 0, 0, operates, ExitCode::DownloadFailed,
     "Take in what stands at em_url of the settings", ElementManager},
    {"--apply", "NAME VERSION [COMPONENT...]", 2, any, operates, ExitCode::ApplyFailed,
     "Apply an update, with these optional components", Apply},
    {"--rback", "NAME VERSION", 2, 2, operates, ExitCode::RemoveFailed,
     "Take back an applied update, or cancel the running apply of it", TakeBack},
    {"--sched", "NAME VERSION DATE TIME", 4, 4, changes, ExitCode::ScheduleFailed,
     "Schedule an update: the day of DATE, the time of day of TIME", Schedule},
    {"--msched", "NAME VERSION DATE TIME", 4, 4, changes, ExitCode::ModifyFailed,
     "Move a scheduled update to another day and time", Move},
    {"--msched", "NAME VERSION", 2, 2, changes, ExitCode::ModifyFailed,
     "Drop the schedule of an update", Drop},
    {"--run-due", "", 0, 0, changes, ExitCode::ApplyFailed, "Apply the updates that are due",
     ApplyAllDue},
    {"forget", "NAME VERSION", 2, 2, changes, general, "Remove a bundle that is held", ForgetOne},
    {"prune", "", 0, 0, changes, general, "Remove the bundles that are obsolete or invalid",
     PruneAll},
});

} // namespace

std::span<const Command> Commands() {
    return commands;
}

} // namespace patchkeeper
