#include "cimserver/mof/Classes.hpp"
#include "cimserver/mof/Literals.hpp"
#include "cimserver/mof/Mof.hpp"
#include "cimserver/mof/Qualifiers.hpp"
#include "cimserver/mof/Values.hpp"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

namespace cimserver::mof {

namespace fs = std::filesystem;
using syntax::Error;

namespace {

constexpr std::size_t deepestInclude = 32;

/// Throws std::system_error.
std::string ReadFile(const fs::path& path) {
    const auto fail = [] { throw std::system_error(errno, std::generic_category()); };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"),
                                                               &std::fclose);
    if (!file) {
        fail();
    }
    std::string text;
    char buffer[65536];
    while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, file.get())) {
        text.append(buffer, size);
    }
    if (std::ferror(file.get()) != 0) {
        fail();
    }
    return text;
}

std::string Reason(const std::system_error& error) {
    return error.code().message();
}

} // namespace

/// Reads one text into the schema, and through further readers what it includes.
class Schema::Reader final : public syntax::Receiver {
public:
    Reader(Schema& schema, std::string name, const Reader* includer = nullptr)
        : schema_(schema), name_(std::move(name)), includer_(includer),
          depth_(includer == nullptr ? 0 : includer->depth_ + 1) {}

    void Read(std::string_view text) {
        try {
            syntax::Parse(text, *this);
        } catch (const Error& error) {
            throw MofError(name_ + ":" + std::to_string(error.Where().line) + ":" +
                           std::to_string(error.Where().column) + ": " + error.what());
        }
    }

    void Take(const syntax::Class& declaration) override {
        OpenWBEM::CIMClass cimClass = ToClass(declaration, schema_);
        const std::size_t superClass = schema_.IndexOf(cimClass.getSuperClass());
        schema_.index_.emplace(cimClass.getName(), schema_.classes_.size());
        schema_.classes_.push_back({std::move(cimClass), superClass});
    }

    void Take(const syntax::QualifierDeclaration& declaration) override {
        const syntax::Name& name = declaration.name;
        if (schema_.FindQualifier(ToString(name.text)) != nullptr) {
            throw Error(name.place, "qualifier " + name.text + " is declared already");
        }
        schema_.qualifiers_.push_back(ToQualifierType(declaration));
    }

    void Take(const syntax::Pragma& pragma) override {
        if (OpenWBEM::CIMName(ToString(pragma.name.text)) != "include") {
            return;
        }
        const fs::path path = fs::path(name_).parent_path() / pragma.text;
        DemandNotOpen(path, pragma.place);
        if (depth_ == deepestInclude) {
            throw Error(pragma.place, "too many files include each other");
        }
        std::string text;
        try {
            text = ReadFile(path);
        } catch (const std::system_error& error) {
            throw Error(pragma.place,
                        "cannot read " + syntax::Quote(path.string()) + ": " + Reason(error));
        }
        Reader(schema_, path.string(), this).Read(text);
    }

private:
    void DemandNotOpen(const fs::path& path, syntax::Place place) const {
        for (const Reader* open = this; open != nullptr; open = open->includer_) {
            std::error_code noSuchFile;
            if (fs::equivalent(open->name_, path, noSuchFile)) {
                throw Error(place, syntax::Quote(path.string()) + " includes itself");
            }
        }
    }

    Schema& schema_;
    std::string name_;
    const Reader* includer_;
    std::size_t depth_;
};

void Schema::AddFile(const fs::path& file) {
    std::string text;
    try {
        text = ReadFile(file);
    } catch (const std::system_error& error) {
        throw MofError(file.string() + ": " + Reason(error));
    }
    AddText(text, file.string());
}

void Schema::AddText(std::string_view text, const std::string& name) {
    Reader(*this, name).Read(text);
}

std::size_t Schema::IndexOf(const OpenWBEM::String& name) const {
    const auto found = index_.find(OpenWBEM::CIMName(name));
    return found == index_.end() ? noClass : found->second;
}

const OpenWBEM::CIMClass* Schema::FindClass(const OpenWBEM::String& name) const {
    const std::size_t index = IndexOf(name);
    return index == noClass ? nullptr : &classes_[index].cimClass;
}

std::vector<const OpenWBEM::CIMClass*> Schema::Subclasses(const OpenWBEM::String& name,
                                                          bool deep) const {
    const std::size_t top = IndexOf(name);
    if (top == noClass && !name.empty()) {
        return {};
    }
    std::vector<const OpenWBEM::CIMClass*> found;
    std::vector<bool> isBelow(classes_.size(), false);
    for (std::size_t i = 0; i < classes_.size(); ++i) {
        const std::size_t superClass = classes_[i].superClass;
        isBelow[i] = superClass == top || (deep && superClass != noClass && isBelow[superClass]);
        if (isBelow[i]) {
            found.push_back(&classes_[i].cimClass);
        }
    }
    return found;
}

const OpenWBEM::CIMQualifierType* Schema::FindQualifier(const OpenWBEM::String& name) const {
    for (const OpenWBEM::CIMQualifierType& qualifier : qualifiers_) {
        if (OpenWBEM::CIMName(qualifier.getName()) == OpenWBEM::CIMName(name)) {
            return &qualifier;
        }
    }
    return nullptr;
}

} // namespace cimserver::mof
