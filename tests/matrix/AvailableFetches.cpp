#include "matrix/Available.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const std::string ASKS_PROGRESS = "/qv/bin/patchkeeper --status  2>&1";

const std::string INVALID_PARAMETERS = "string \"Invalid Parameters\"";
const std::string INVALID_ADDRESS = "string \"Invalid IP Address\"";

Call OfClass(const char* method, const Values& in = {}) {
    return Invoke(ClassPath(UPDATE), method, in);
}

// A fetch from a server: Server, User, Password, Path, and Secure of GetViaHttp.
struct Fetch {
    const char* method;
    const char* option;
    Values behind;      // the parameters behind the four texts
    const char* ending; // and what they become on the command line
    int wrongCount;     // the code of a wrong count
};

Values With(Values values, std::size_t position, const OpenWBEM::CIMValue& value) {
    values.at(position) = value;
    return values;
}

Values Sources(const Fetch& fetch) {
    Values values = {Text("10.0.0.1"), Text("u"), Text("p"), Text("f")};
    values.insert(values.end(), fetch.behind.begin(), fetch.behind.end());
    return values;
}

std::string CommandOf(const Fetch& fetch, const std::string& server, const std::string& user,
                      const std::string& password, const std::string& path) {
    return std::string("/qv/bin/patchkeeper ") + fetch.option + " " + server + " '" + user + "' '" +
           password + "' '" + path + "'" + fetch.ending;
}

Rows FetchesThatStart(const Fetch& fetch) {
    const Values in = Sources(fetch);
    const std::string command = CommandOf(fetch, "10.0.0.1", "u", "p", "f");
    const auto from = [&](const char* server) {
        return OfClass(fetch.method, With(in, 0, Text(server)));
    };
    return {
        {OfClass(fetch.method, in), "four good texts", {}, {MARKS, command}, STARTED},
        {Invoke(Update("9"), fetch.method, in),
         "on an unknown update",
         {},
         {MARKS, command},
         STARTED},
        {OfClass(fetch.method, in),
         "the tool fails in the background",
         {Ends(fetch.option, 11)},
         {MARKS, command},
         STARTED},
        {OfClass(fetch.method, in),
         "the tool is killed in the background",
         {Plays(fetch.option, ToolAnswer().DiesBySignal(SIGKILL))},
         {MARKS, command},
         STARTED},
        {OfClass(fetch.method, in),
         "the mark fails",
         {Ends("--setinprogress", 1)},
         {MARKS},
         Unmarked(command)},
        {OfClass(fetch.method, in),
         "there is no tool",
         {ToolIsGone()},
         {},
         Unmarked(command),
         {MARKS}},
        {from("10.1"),
         "a short address",
         {},
         {MARKS, CommandOf(fetch, "10.1", "u", "p", "f")},
         STARTED},
        {from("0x0a.0.0.01"),
         "a hexadecimal and octal address",
         {},
         {MARKS, CommandOf(fetch, "0x0a.0.0.01", "u", "p", "f")},
         STARTED},
        {from("127.0.0.1 more"),
         "further text behind the address",
         {},
         {MARKS, CommandOf(fetch, "127.0.0.1 more", "u", "p", "f")},
         STARTED},
        {from("127.0.0.1 #; "),
         "a comment sign behind the address",
         {},
         {MARKS, CommandOf(fetch, "127.0.0.1 #; ", "u", "p", "f")},
         STARTED},
    };
}

Rows FetchesThatAreRefused(const Fetch& fetch) {
    const Values in = Sources(fetch);
    const std::string wrongCount = Fails(fetch.wrongCount);
    const Values tooFew(in.begin(), in.end() - 1);
    Values tooMany = in;
    tooMany.push_back(Text("x"));
    const auto from = [&](const char* server) {
        return OfClass(fetch.method, With(in, 0, Text(server)));
    };
    const auto quote = [&](std::size_t position) {
        return OfClass(fetch.method, With(With(in, 0, Text("server")), position, Text("it's")));
    };
    Rows rows = {
        {OfClass(fetch.method), "no parameter", {}, {}, wrongCount},
        {OfClass(fetch.method, tooFew), "one parameter too few", {}, {}, wrongCount},
        {OfClass(fetch.method, tooMany), "one parameter too many", {}, {}, wrongCount},
        {from("server"), "a host name", {}, {}, INVALID_ADDRESS},
        {from("256.1.1.1"), "a number that is no byte", {}, {}, INVALID_ADDRESS},
        {from("::1"), "an IPv6 address", {}, {}, INVALID_ADDRESS},
        {from(" 10.0.0.1"), "a blank before the address", {}, {}, INVALID_ADDRESS},
        {from("10.0.0.1;x"), "text behind the address without a blank", {}, {}, INVALID_ADDRESS},
        {quote(1), "a quote in the first text and no address", {}, {}, INVALID_PARAMETERS},
        {quote(2), "a quote in the second text and no address", {}, {}, INVALID_PARAMETERS},
        {quote(3), "a quote in the third text and no address", {}, {}, INVALID_PARAMETERS},
    };
    for (std::size_t i = 0; i < in.size(); ++i) {
        const std::string which = "parameter " + std::to_string(i);
        const auto with = [&](const OpenWBEM::CIMValue& value) {
            return OfClass(fetch.method, With(in, i, value));
        };
        Append(rows, {{with(Null()), which + " is null", {}, {}, Fails(4)},
                      {with(Number(1)), which + " is a number", {}, {}, Fails(4)},
                      {with(i < 4 ? Flag(true) : Text("true")),
                       which + " is of the other type in use",
                       {},
                       {},
                       Fails(4)},
                      {with(OpenWBEM::CIMValue(OpenWBEM::StringArray(1, "10.0.0.1"))),
                       which + " is an array",
                       {},
                       {},
                       Fails(4)}});
    }
    return rows;
}

Rows HostileFetches(const Fetch& fetch) {
    const Values in = Sources(fetch);
    Rows rows;
    for (const Hostile& hostile : HostileTexts()) {
        const std::string& text = hostile.text;
        const auto call = [&](std::size_t position) {
            return OfClass(fetch.method, With(in, position, Text(text)));
        };
        const std::string what = hostile.what;
        rows.push_back({call(0), what + " as server", {}, {}, INVALID_ADDRESS});
        if (text == "a'b") {
            rows.push_back({call(1), what + " as user", {}, {}, INVALID_PARAMETERS});
            rows.push_back({call(2), what + " as password", {}, {}, INVALID_PARAMETERS});
            rows.push_back({call(3), what + " as path", {}, {}, INVALID_PARAMETERS});
            continue;
        }
        rows.push_back({call(1),
                        what + " as user",
                        {},
                        {MARKS, CommandOf(fetch, "10.0.0.1", text, "p", "f")},
                        STARTED});
        rows.push_back({call(2),
                        what + " as password",
                        {},
                        {MARKS, CommandOf(fetch, "10.0.0.1", "u", text, "f")},
                        STARTED});
        rows.push_back({call(3),
                        what + " as path",
                        {},
                        {MARKS, CommandOf(fetch, "10.0.0.1", "u", "p", text)},
                        STARTED});
    }
    return rows;
}

Rows Fetches() {
    const Fetch ftp = {"GetViaFtp", "--ftp", {}, "", 4};
    const Fetch https = {"GetViaHttp", "--http", {Flag(true)}, " true", 4};
    const Fetch samba = {"GetViaSamba", "--samba", {}, "", 1};
    Rows rows;
    for (const Fetch& fetch : {ftp, https, samba}) {
        Append(rows, FetchesThatStart(fetch));
        Append(rows, FetchesThatAreRefused(fetch));
        Append(rows, HostileFetches(fetch));
    }
    rows.push_back(
        {OfClass("GetViaHttp", {Text("10.0.0.1"), Text("u"), Text("p"), Text("f"), Flag(false)}),
         "not secure",
         {},
         {MARKS, "/qv/bin/patchkeeper --http 10.0.0.1 'u' 'p' 'f' false"},
         STARTED});
    return rows;
}

// Where the shell cannot read the command line the tool is not run.
Rows HostilePaths(const char* method, const std::string& command) {
    const auto call = [&](const char* path) { return OfClass(method, {Text(path)}); };
    const std::string large(100'000, 'x');
    const std::vector<std::string> only = {MARKS};
    return {
        {call(""), "an empty text", {}, {MARKS, command}, STARTED},
        {call(large.c_str()), "100,000 characters", {}, {MARKS, command + large}, STARTED},
        {call("/media/a b"), "a blank", {}, {MARKS, command + "/media/a b"}, STARTED},
        {call("\xc3\xa4\xe2\x82\xac"),
         "non-ASCII letters",
         {},
         {MARKS, command + "\xc3\xa4\xe2\x82\xac"},
         STARTED},
        {call("'a b'"), "a text in apostrophes", {}, {MARKS, command + "'a b'"}, STARTED},
        {call("a\nb\tc"), "a newline and a tab", {}, {MARKS, command + "a\nb\tc"}, STARTED},
        {call("a>&2"), "an ampersand and an angle bracket", {}, {MARKS, command + "a>&2"}, STARTED},
        {call("a`true`"), "back-quotes", {}, {MARKS, command + "a`true`"}, STARTED},
        {call("a'b"), "a single apostrophe", {}, only, STARTED, {command + "a'b"}},
        {call("a\"b"), "a single double quote", {}, only, STARTED, {command + "a\"b"}},
        {call("a`b"), "a single back-quote", {}, only, STARTED, {command + "a`b"}},
        {call("a;b"), "a semicolon", {}, {}, INVALID_PARAMETERS},
        {call("a(b"), "an opening parenthesis", {}, {}, INVALID_PARAMETERS},
        {call("a)b"), "a closing parenthesis", {}, {}, INVALID_PARAMETERS},
        {call("a[b"), "an opening bracket", {}, {}, INVALID_PARAMETERS},
        {call("a]b"), "a closing bracket", {}, {}, INVALID_PARAMETERS},
        {call("a*b"), "an asterisk", {}, {}, INVALID_PARAMETERS},
        {call("a$b"), "a dollar sign", {}, {}, INVALID_PARAMETERS},
        {call("a#b"), "a number sign", {}, {}, INVALID_PARAMETERS},
        {call("a|b"), "a bar", {}, {}, INVALID_PARAMETERS},
    };
}

Rows LocalFetches(const char* method, const char* option, int wrongCount) {
    const std::string command = std::string("/qv/bin/patchkeeper ") + option + " ";
    const Call good = OfClass(method, {Text("/media/x")});
    Rows rows = {
        {good, "a good path", {}, {MARKS, command + "/media/x"}, STARTED},
        {good,
         "the tool fails in the background",
         {Ends(option, 22)},
         {MARKS, command + "/media/x"},
         STARTED},
        {good,
         "the mark fails",
         {Ends("--setinprogress", 7)},
         {MARKS},
         Unmarked(command + "/media/x")},
        {good, "there is no tool", {ToolIsGone()}, {}, Unmarked(command + "/media/x"), {MARKS}},
        {OfClass(method), "no parameter", {}, {}, Fails(wrongCount)},
        {OfClass(method, {Text("a"), Text("b")}),
         "one parameter too many",
         {},
         {},
         Fails(wrongCount)},
        {OfClass(method, {Null()}), "the path is null", {}, {}, Fails(4)},
        {OfClass(method, {Number(1)}), "the path is a number", {}, {}, Fails(4)},
        {OfClass(method, {Flag(true)}), "the path is a boolean", {}, {}, Fails(4)},
        {OfClass(method, {OpenWBEM::CIMValue(OpenWBEM::StringArray(1, "a"))}),
         "the path is an array",
         {},
         {},
         Fails(4)},
    };
    Append(rows, HostilePaths(method, command));
    return rows;
}

Rows ElementManager() {
    const Call call = OfClass("GetViaElementManager");
    const std::string command = "/qv/bin/patchkeeper --em ";
    return {
        {call, "nothing special", {}, {MARKS, command}, STARTED},
        {call, "the tool fails in the background", {Ends("--em", 14)}, {MARKS, command}, STARTED},
        {call, "the mark fails", {Ends("--setinprogress", 1)}, {MARKS}, Unmarked(command)},
        {call, "there is no tool", {ToolIsGone()}, {}, Unmarked(command), {MARKS}},
        {OfClass("GetViaElementManager", {Text("x")}), "one parameter too many", {}, {}, Fails(1)},
        {OfClass("GetViaElementManager", {Null()}), "a null parameter too many", {}, {}, Fails(1)},
    };
}

Rows Progress() {
    const Call call = Invoke(ClassPath(UPDATE), "GetProgress", {}, {"Status"});
    const std::string noStatus =
        "sint8 -1, Status = string \"Failed to parse Progress status string\"";
    const std::string noCode = "sint8 -1, Status = string \"Invalid GetProgress Return Code\"";
    const std::string longText(3000, 'x');
    std::string lines = "1\tFirst\n";
    while (lines.size() < 2 * 70'000) {
        lines += "x\n";
    }
    const auto row = [&](const std::string& output, const char* situation,
                         const std::string& answer) {
        return Row{call, situation, {Prints("--status", output)}, {ASKS_PROGRESS}, answer};
    };
    return {
        row("1\tHalf of it\n", "running", "sint8 1, Status = string \"Half of it\""),
        row("-1\tBroken\n", "failed", "sint8 -1, Status = string \"Broken\""),
        row("0\tNothing\n", "idle", "sint8 0, Status = string \"Nothing\""),
        row("2\nAll of it\n", "done, the text on a line of its own",
            "sint8 2, Status = string \"All of it\""),
        row("3\tx\n", "a code above 2", noCode),
        row("-2\tx\n", "a code below -1", noCode),
        row("1\n", "a code without a text", noStatus),
        row("", "no output", noStatus),
        row("\n\t\n", "delimiters only", noStatus),
        row("soon\tAlmost there\n", "a code that is no number",
            "sint8 0, Status = string \"Almost there\""),
        row(" +2x\tText\n", "a code with more around it", "sint8 2, Status = string \"Text\""),
        row("\n\n1\t\tText\tmore\n", "empty pieces and further ones",
            "sint8 1, Status = string \"Text\""),
        row("1\tText\r\n", "a carriage return", "sint8 1, Status = string \"Text\r\""),
        row("1\t\xff\xc3\n", "bytes that are no UTF-8", "sint8 1, Status = string \"\xff\xc3\""),
        row("1\tText", "no final newline", "sint8 1, Status = string \"Text\""),
        row(std::string("1\tTe\0xt\n", 8), "a zero byte, which ends its line",
            "sint8 1, Status = string \"Te\""),
        row("1\t" + longText + "\n", "a line beyond the runner's buffer",
            "sint8 1, Status = string \"" + longText + "\""),
        row(lines, "70,000 lines", "sint8 1, Status = string \"First\""),
        {call, "the tool fails", {Ends("--status", 11)}, {ASKS_PROGRESS, Asks(11)}, ToolFails(11)},
        {call,
         "the tool is killed",
         {Plays("--status", ToolAnswer().DiesBySignal(SIGTERM))},
         {ASKS_PROGRESS, Asks(143)},
         ToolFails(143)},
        {call,
         "there is no tool",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --status ")},
        {Invoke(ClassPath(UPDATE), "GetProgress"),
         "the server has no out-parameter",
         {},
         {ASKS_PROGRESS},
         "sint8 1, Status = string \"Half of it\""},
        {Invoke(ClassPath(UPDATE), "GetProgress", {}, {"Other", "status"}),
         "the out-parameter stands behind another and in another case",
         {},
         {ASKS_PROGRESS},
         "sint8 1, Other = null, status = string \"Half of it\""},
        {Invoke(ClassPath(UPDATE), "GetProgress", {Text("x"), Null()}, {"Status"}),
         "parameters that it does not have",
         {},
         {ASKS_PROGRESS},
         "sint8 1, Status = string \"Half of it\""},
        {Invoke(Update("9"), "GetProgress", {}, {"Status"}),
         "on an unknown update",
         {},
         {ASKS_PROGRESS},
         "sint8 1, Status = string \"Half of it\""},
    };
}

} // namespace

Rows FetchRows() {
    Rows rows = Fetches();
    Append(rows, LocalFetches("GetViaUsb", "--usb", 4));
    Append(rows, LocalFetches("GetViaHardDrive", "--hd", 1));
    Append(rows, ElementManager());
    Append(rows, Progress());
    return rows;
}

} // namespace matrix
