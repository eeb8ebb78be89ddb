// The commands beside the server: `cimserver passwd` and `cimserver certificate`.
#include "cimserver/config/program/Running.hpp"
#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/PasswordFile.hpp"
#include "cimserver/http/PasswordHash.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace programtest {
namespace {

using cimserver::http::Matches;
using cimserver::http::ReadPasswordFile;
using testing::HasSubstr;
using testing::IsEmpty;

class Commands : public testing::Test {
protected:
    Commands() {
        std::string name = (std::filesystem::temp_directory_path() / "commands.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no directory for the test");
        }
        directory = name;
    }
    ~Commands() override { std::filesystem::remove_all(directory); }

    std::string File(const std::string& name) const { return directory / name; }
    /// What the program reads from standard input, which is no terminal.
    std::function<void()> Given(const std::string& input) const {
        std::ofstream(File("input")) << input;
        return [file = File("input")] { dup2(open(file.c_str(), O_RDONLY), STDIN_FILENO); };
    }
    unsigned ModeOf(const std::string& name) const {
        return static_cast<unsigned>(std::filesystem::status(File(name)).permissions());
    }
    /// The last line on standard error of a command that must fail with that code.
    std::string Failure(const std::vector<std::string>& arguments, const std::string& input,
                        int exitCode) const {
        Running command(arguments, Given(input));
        EXPECT_EQ(command.Wait(), exitCode) << command.Error();
        EXPECT_THAT(command.Output(), IsEmpty());
        return command.Error();
    }

    std::filesystem::path directory;
};

TEST_F(Commands, PasswdTakesOneLineOfStandardInput) {
    Running command({"passwd", "anna", "--file", File("users")}, Given("the word\nanother\n"));
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_EQ(command.Output(), "Wrote the password of anna to " + File("users") + "\n");
    EXPECT_THAT(command.Error(), IsEmpty());
    EXPECT_EQ(ModeOf("users"), 0600U);
    EXPECT_TRUE(Matches("the word", ReadPasswordFile(File("users")).at("anna")));
}

TEST_F(Commands, PasswdFindsTheFileInTheConfiguration) {
    std::ofstream(File("my.conf")) << "simple_auth.password_file = " << File("users") << "\n";
    Running command({"passwd", "anna", "--config", File("my.conf")}, Given("word"));
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_TRUE(Matches("word", ReadPasswordFile(File("users")).at("anna")));
}

TEST_F(Commands, PasswdRefusesWhatCannotBeAPassword) {
    const std::vector<std::string> arguments{"passwd", "anna", "--file", File("users")};
    EXPECT_THAT(Failure(arguments, "", 1), HasSubstr("standard input has no line"));
    EXPECT_THAT(Failure(arguments, "\n", 1), HasSubstr("an empty password lets everybody in"));
    EXPECT_THAT(Failure(arguments, "a\tb\n", 1), HasSubstr("control characters"));
    EXPECT_THAT(Failure(arguments, std::string(600, 'x') + "\n", 1),
                HasSubstr("longer than 511 bytes"));
    EXPECT_FALSE(std::filesystem::exists(File("users")));
}

TEST_F(Commands, PasswdSaysWhatIsMissing) {
    EXPECT_THAT(Failure({"passwd", "anna"}, "word\n", 2), HasSubstr("which file?"));
    EXPECT_THAT(Failure({"passwd", "--file", File("users")}, "word\n", 2), HasSubstr("USER"));
    EXPECT_THAT(Failure({"passwd", "a:b", "--file", File("users")}, "word\n", 2),
                HasSubstr("no colon"));
    EXPECT_THAT(Failure({"passwd", "anna", "--file", "/absent/users"}, "word\n", 1),
                HasSubstr("/absent: No such file or directory"));
}

/// A terminal whose other side the test holds.
class Terminal {
public:
    Terminal() : side_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (side_ < 0 || grantpt(side_) != 0 || unlockpt(side_) != 0) {
            throw std::runtime_error("no terminal for the test");
        }
        name_ = ptsname(side_);
        held_ = open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Terminal() {
        close(side_);
        close(held_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// For the program: its standard streams but for the output.
    std::function<void()> AsStandardInput() const {
        return [name = name_] {
            setsid();
            const int terminal = open(name.c_str(), O_RDWR);
            ioctl(terminal, TIOCSCTTY, 0);
            dup2(terminal, STDIN_FILENO);
            dup2(terminal, STDERR_FILENO);
        };
    }
    void WaitFor(const std::string& text) {
        while (shown_.find(text) == std::string::npos) {
            std::array<char, 256> part{};
            pollfd wait{side_, POLLIN, 0};
            const ssize_t size =
                poll(&wait, 1, 30000) > 0 ? read(side_, part.data(), part.size()) : -1;
            if (size <= 0) {
                throw std::runtime_error("the terminal never showed " + text + ": " + shown_);
            }
            shown_.append(part.data(), static_cast<std::size_t>(size));
        }
    }
    void Type(const std::string& text) const {
        if (write(side_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("nothing can be typed");
        }
    }
    bool Echoes() const {
        termios settings{};
        tcgetattr(held_, &settings);
        return (settings.c_lflag & ECHO) != 0;
    }
    const std::string& Shown() const { return shown_; }

private:
    int side_;
    int held_ = -1;
    std::string name_;
    std::string shown_;
};

TEST_F(Commands, PasswdAsksTwiceAtATerminalAndShowsNothing) {
    Terminal terminal;
    Running command({"passwd", "anna", "--file", File("users")}, terminal.AsStandardInput());
    terminal.WaitFor("Password of anna: ");
    EXPECT_FALSE(terminal.Echoes());
    terminal.Type("hidden\n");
    terminal.WaitFor("Once more: ");
    terminal.Type("hidden\n");
    EXPECT_EQ(command.Wait(), 0);
    EXPECT_TRUE(terminal.Echoes());
    EXPECT_THAT(terminal.Shown(), testing::Not(HasSubstr("hidden")));
    EXPECT_TRUE(Matches("hidden", ReadPasswordFile(File("users")).at("anna")));
}

TEST_F(Commands, PasswdRefusesTwoDifferentPasswords) {
    Terminal terminal;
    Running command({"passwd", "anna", "--file", File("users")}, terminal.AsStandardInput());
    terminal.WaitFor("Password of anna: ");
    terminal.Type("one\n");
    terminal.WaitFor("Once more: ");
    terminal.Type("two\n");
    terminal.WaitFor("two different passwords");
    EXPECT_EQ(command.Wait(), 1);
    EXPECT_FALSE(std::filesystem::exists(File("users")));
}

TEST_F(Commands, AnInterruptLeavesTheTerminalAsItWas) {
    Terminal terminal;
    Running command({"passwd", "anna", "--file", File("users")}, terminal.AsStandardInput());
    terminal.WaitFor("Password of anna: ");
    terminal.Type("hid\x03");
    terminal.WaitFor("interrupted");
    EXPECT_EQ(command.Wait(), 1);
    EXPECT_TRUE(terminal.Echoes());
    EXPECT_FALSE(std::filesystem::exists(File("users")));
}

TEST_F(Commands, CertificateMakesAPairThatTheServerTakes) {
    Running command({"certificate", "--cert", File("cert"), "--key", File("key"), "--name",
                     "server.example", "--name", "192.0.2.7", "--days", "3"});
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_THAT(command.Output(), HasSubstr("for server.example 192.0.2.7, valid for 3 days"));
    EXPECT_EQ(ModeOf("key"), 0600U);
    EXPECT_EQ(ModeOf("cert"), 0644U);
    EXPECT_NO_THROW(cimserver::http::Certificate({File("cert"), File("key")}));
}

TEST_F(Commands, CertificateAndKeyInOneFileAreForTheOwnerOnly) {
    Running command({"certificate", "--cert", File("pair")});
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_THAT(command.Output(), HasSubstr(" localhost 127.0.0.1 ::1, "));
    EXPECT_EQ(ModeOf("pair"), 0600U);
    EXPECT_NO_THROW(cimserver::http::Certificate({File("pair"), File("pair")}));
}

TEST_F(Commands, CertificateAndKeyOfTheSameNameAreOneFile) {
    Running command({"certificate", "--cert", File("pair"), "--key", File("pair")});
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_EQ(ModeOf("pair"), 0600U);
    EXPECT_NO_THROW(cimserver::http::Certificate({File("pair"), File("pair")}));
}

TEST_F(Commands, CertificateReplacesNothingUnasked) {
    std::ofstream(File("pair")) << "precious\n";
    EXPECT_THAT(Failure({"certificate", "--cert", File("pair")}, "", 1),
                HasSubstr("is there already; --replace"));
    EXPECT_EQ(std::filesystem::file_size(File("pair")), 9U);
    Running command({"certificate", "--cert", File("pair"), "--replace"});
    EXPECT_EQ(command.Wait(), 0) << command.Error();
    EXPECT_EQ(ModeOf("pair"), 0600U);
    EXPECT_NO_THROW(cimserver::http::Certificate({File("pair"), File("pair")}));
}

TEST_F(Commands, EachHasHelp) {
    for (const std::string name : {"passwd", "certificate"}) {
        Running command({name, "--help"});
        EXPECT_EQ(command.Wait(), 0);
        EXPECT_THAT(command.Output(), HasSubstr("cimserver " + name));
    }
    Running server({"--help"});
    EXPECT_EQ(server.Wait(), 0);
    EXPECT_THAT(server.Output(), HasSubstr("cimserver passwd and cimserver certificate"));
    EXPECT_THAT(server.Output(), HasSubstr("--tls-listen ADDR:PORT"));
}

} // namespace
} // namespace programtest
