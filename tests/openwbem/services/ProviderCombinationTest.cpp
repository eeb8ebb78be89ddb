#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

struct Compilation {
    bool succeeded;
    std::string output;
};

// Has the project's compiler look at Combination.cpp under the given definitions.
Compilation compile(const std::string& definitions) {
    const std::string command = std::string("LC_ALL=C '") + COMPILER +
                                "' -std=c++17 -fsyntax-only -I'" + API_HEADERS + "' " +
                                definitions + " '" + TEST_DATA_DIRECTORY + "/Combination.cpp' 2>&1";
    Compilation result = {};
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return result;
    }
    char chunk[4096];
    std::size_t length = 0;
    while ((length = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) {
        result.output.append(chunk, length);
    }
    result.succeeded = pclose(pipe) == 0;
    return result;
}

void expectCompiles(const std::string& definitions) {
    const Compilation compilation = compile(definitions);
    EXPECT_TRUE(compilation.succeeded) << compilation.output;
}

void expectRefused(const std::string& definitions, const std::string& because) {
    const Compilation compilation = compile(definitions);
    EXPECT_FALSE(compilation.succeeded);
    EXPECT_NE(compilation.output.find(because), std::string::npos) << compilation.output;
}

} // namespace

TEST(ProviderCombination, MethodsAndAssociationsCompile) {
    expectCompiles("-DMETHODS_AND_ASSOCIATIONS");
}

TEST(ProviderCombination, DirectInstanceBaseBesideAssociationsDoesNotCompile) {
    expectRefused("-DDIRECT_INSTANCE_BASE", "getInstanceProvider");
}

TEST(ProviderCombination, VirtualInstanceBaseBesideAssociationsCompiles) {
    expectCompiles("-DVIRTUAL_INSTANCE_BASE");
}

TEST(ProviderCombination, AssociationsCanBeSwitchedOff) {
    expectCompiles("-DNAMES_ASSOCIATIONS");
    expectCompiles("-DOW_DISABLE_ASSOCIATION_TRAVERSAL");
    expectRefused("-DNAMES_ASSOCIATIONS -DOW_DISABLE_ASSOCIATION_TRAVERSAL",
                  "CppAssociatorProviderIFC");
}

TEST(ProviderCombination, InstanceManipulationCanBeSwitchedOff) {
    expectRefused("-DREADS_ONLY", "createInstance");
    expectCompiles("-DREADS_ONLY -DOW_DISABLE_INSTANCE_MANIPULATION");
}
