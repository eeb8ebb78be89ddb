#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/filename/FileName.hpp"
#include "provider/filename/FileNameProvider.hpp"

#include <string>
#include <vector>

// The name of the class, as clients write it.
inline constexpr const char* FILE_NAMES = "ZNX_AvailableSoftwareFileName";

// What the tool prints for the files of an update, and what it says of its failures.
class FileNameTest : public ToolTest {
protected:
    FileNameTest() { tool.Plays("--errors", test_support::ToolAnswer().Output("It failed.\n")); }

    void Prints(const std::string& output) {
        tool.Plays("--files", test_support::ToolAnswer().Output(output));
    }
};

// The names of a list, from its beginning to its end.
inline std::vector<std::string> NamesOf(FileName_ObjectList& list) {
    std::vector<std::string> names;
    for (list.begin(); list.hasObject(); list.next()) {
        names.push_back(Text(list.getName()));
    }
    list.end();
    return names;
}
