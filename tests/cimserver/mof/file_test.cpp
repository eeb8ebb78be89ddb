// Files, and files that include others.

#include "ReadText.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using cimserver::mof::MofError;
using cimserver::mof::Schema;

class MofFile : public testing::Test {
protected:
    MofFile() {
        const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
        directory_ = fs::current_path() / "mof_files" / info->name();
        fs::remove_all(directory_);
        fs::create_directories(directory_);
    }
    ~MofFile() override { fs::remove_all(directory_); }

    std::string Path(const std::string& name) const { return (directory_ / name).string(); }

    void Write(const std::string& name, const std::string& text) const {
        fs::create_directories(fs::path(Path(name)).parent_path());
        std::ofstream(Path(name)) << text;
    }

    std::string ErrorOf(const std::string& name) {
        try {
            schema_.AddFile(Path(name));
        } catch (const MofError& error) {
            return error.what();
        }
        return {};
    }

    fs::path directory_;
    Schema schema_;
};

TEST_F(MofFile, IncludesAreRelativeToTheIncludingFileAndReadInPlace) {
    Write("top.mof", "class A { };\n#pragma include (\"sub/one.mof\")\nclass C : B { };");
    Write("sub/one.mof", "#pragma Include(\"two.\" \"mof\")\nclass B : Two { };");
    Write("sub/two.mof", "class Two : A { };");
    EXPECT_EQ(ErrorOf("top.mof"), "");
    EXPECT_EQ(schema_.Subclasses("A", true).size(), 3U);
}

TEST_F(MofFile, IncludesOfATextAreRelativeToItsName) {
    Write("one.mof", "class A { };");
    schema_.AddText("#pragma include (\"one.mof\")", Path("text"));
    EXPECT_NE(schema_.FindClass("A"), nullptr);
}

TEST_F(MofFile, AFileMayBeIncludedByItsAbsoluteName) {
    Write("sub/one.mof", "class A { };");
    Write("top.mof", "#pragma include (\"" + Path("sub/one.mof") + "\")");
    EXPECT_EQ(ErrorOf("top.mof"), "");
    EXPECT_NE(schema_.FindClass("A"), nullptr);
}

TEST_F(MofFile, MistakesAreToldWithTheFileThatHoldsThem) {
    Write("top.mof", "class A { };\n#pragma include (\"sub/bad.mof\")");
    Write("sub/bad.mof", "class B { };\n\nclass B { };");
    EXPECT_EQ(ErrorOf("top.mof"), Path("sub/bad.mof") + ":3:7: class B is declared already");
    EXPECT_NE(schema_.FindClass("A"), nullptr);
    EXPECT_NE(schema_.FindClass("B"), nullptr);
}

TEST_F(MofFile, AFileThatCannotBeReadIsToldWithTheReason) {
    EXPECT_EQ(ErrorOf("none.mof"), Path("none.mof") + ": No such file or directory");
    fs::create_directory(Path("folder.mof"));
    EXPECT_EQ(ErrorOf("folder.mof"), Path("folder.mof") + ": Is a directory");
}

TEST_F(MofFile, AnIncludeThatCannotBeReadIsToldWithThePlaceOfTheInclude) {
    schema_.AddText("class A { };", "first.mof");
    try {
        schema_.AddText("\n  #pragma include (\"none.mof\")", "text.mof");
        ADD_FAILURE() << "read a file that is not there";
    } catch (const MofError& error) {
        EXPECT_STREQ(error.what(),
                     "text.mof:2:20: cannot read 'none.mof': No such file or directory");
    }
}

TEST_F(MofFile, AFileThatIncludesItselfIsRefused) {
    Write("self.mof",
          "\n #pragma include (\"../" + directory_.filename().string() + "/self.mof\")");
    const std::string error = ErrorOf("self.mof");
    EXPECT_EQ(error.substr(0, Path("self.mof:2:19: ").size()), Path("self.mof:2:19: "));
    EXPECT_NE(error.find("includes itself"), std::string::npos) << error;
}

TEST_F(MofFile, FilesThatIncludeEachOtherAreRefused) {
    Write("a.mof", "class A { };\n#pragma include (\"b.mof\")\nclass C { };");
    Write("b.mof", "class B { };\n#pragma include (\"c.mof\")");
    fs::create_symlink(Path("a.mof"), Path("c.mof"));
    const std::string error = ErrorOf("a.mof");
    EXPECT_EQ(error.substr(0, Path("b.mof:2:18: ").size()), Path("b.mof:2:18: "));
    EXPECT_NE(error.find("includes itself"), std::string::npos) << error;
    EXPECT_NE(schema_.FindClass("A"), nullptr);
    EXPECT_NE(schema_.FindClass("B"), nullptr);
    EXPECT_EQ(schema_.FindClass("C"), nullptr);
}

TEST_F(MofFile, TheSameFileMayBeReadTwiceOneAfterTheOther) {
    Write("empty.mof", "// nothing");
    Write("top.mof", "#pragma include (\"empty.mof\")\n#pragma include (\"empty.mof\")");
    EXPECT_EQ(ErrorOf("top.mof"), "");
}

TEST_F(MofFile, IncludesGoThirtyTwoFilesDeepAndNoFurther) {
    for (int i = 0; i < 33; ++i) {
        Write(std::to_string(i) + ".mof",
              "#pragma include (\"" + std::to_string(i + 1) + ".mof\")");
    }
    Write("33.mof", "class Last { };");
    EXPECT_EQ(ErrorOf("1.mof"), "");
    EXPECT_NE(schema_.FindClass("Last"), nullptr);
    EXPECT_EQ(ErrorOf("0.mof"), Path("32.mof:1:18: too many files include each other"));
}

} // namespace
