#include "patchkeeper/bundle/ManifestText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <set>

#include <nlohmann/json.hpp>

#include "patchkeeper/bundle/Digest.hpp"
#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper {

namespace bundle {

namespace {

using Json = nlohmann::json;

constexpr std::uint64_t formatNumber = 1;
constexpr int deepest = 3;                    // the object, its list of files, a file
constexpr std::size_t mostValues = 1'000'000; // more than 65,000 files come to
constexpr std::size_t digestDigits = 64;
constexpr std::string_view filesFolder = "files/";
constexpr std::string_view componentsFolder = "components/";

constexpr auto classifications = std::to_array<std::string_view>(
    {"Other", "Driver", "Configuration Software", "Application Software", "Instrumentation",
     "Firmware/BIOS", "Diagnostic Software", "Operating System", "Middleware", "Firmware",
     "BIOS/FCode"});

// Looks at a document before it is built up: nothing deep, endless or ambiguous ever is. What the
// names mean is no business of this class.
class Watch : public nlohmann::json_sax<Json> {
public:
    bool null() override { return See(); }
    bool boolean(bool /*value*/) override { return See(); }
    bool number_integer(std::int64_t /*value*/) override { return See(); }
    bool number_unsigned(std::uint64_t /*value*/) override { return See(); }
    bool number_float(double /*value*/, const std::string& /*text*/) override { return See(); }
    bool string(std::string& /*value*/) override { return See(); }
    bool binary(binary_t& /*value*/) override { return See(); }
    bool start_object(std::size_t /*size*/) override {
        names_.emplace_back();
        return Enter();
    }
    bool end_object() override {
        names_.pop_back();
        --depth_;
        return true;
    }
    bool start_array(std::size_t /*size*/) override { return Enter(); }
    bool end_array() override {
        --depth_;
        return true;
    }
    bool key(std::string& name) override {
        if (!names_.back().insert(name).second) {
            throw ManifestError("manifest.json has " + Quoted(name) + " twice in one place");
        }
        return See();
    }
    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const Json::exception& error) override {
        if (dynamic_cast<const Json::out_of_range*>(&error) != nullptr) {
            throw ManifestError("manifest.json is not JSON: a number in it is out of range");
        }
        throw ManifestError("manifest.json is not JSON: it goes wrong at byte " +
                            std::to_string(position));
    }

private:
    bool See() {
        if (++values_ > mostValues) {
            throw ManifestError("manifest.json has too many values");
        }
        return true;
    }
    bool Enter() {
        if (++depth_ > deepest) {
            throw ManifestError("manifest.json is nested too deep");
        }
        return See();
    }

    int depth_ = 0;
    std::size_t values_ = 0;
    std::vector<std::set<std::string>> names_; // of the objects around the current place
};

Json ParseJson(std::string_view text) {
    Watch watch;
    Json::sax_parse(text, &watch);
    return Json::parse(text);
}

bool IsControl(std::string_view text, std::size_t at) {
    const auto code = static_cast<unsigned char>(text[at]);
    const bool isUpper = code == 0xC2 && at + 1 < text.size() &&
                         static_cast<unsigned char>(text[at + 1]) < 0xA0; // U+0080 to U+009F
    return code < 0x20 || code == 0x7F || isUpper;
}

bool IsUtf8(std::string_view text) {
    try {
        return !Json(text).dump().empty();
    } catch (const Json::type_error&) {
        return false;
    }
}

std::string CheckedText(const std::string& item, const std::string& text) {
    if (text.size() > longestBundleText) {
        throw ManifestError("manifest.json: '" + item + "' has more than " +
                            std::to_string(longestBundleText) + " bytes");
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsControl(text, i) && text[i] != '\t' && text[i] != '\n') {
            throw ManifestError("manifest.json: '" + item + "' holds a control character");
        }
    }
    return text;
}

std::string CheckedName(const std::string& item, const std::string& text) {
    if (!IsPlainName(text)) {
        throw ManifestError("manifest.json: '" + item + "' is " + Quoted(text) +
                            "; only 1 to 64 letters, digits and . _ + ~ - may stand there, and no "
                            "dash in front");
    }
    return text;
}

// The items of one JSON object, with the words for what is wrong with them.
class Items {
public:
    Items(const Json& object, std::string place, std::initializer_list<std::string_view> known)
        : object_(object), place_(std::move(place)) {
        if (!object.is_object()) {
            throw ManifestError("manifest.json: " + place_ + " is no object");
        }
        for (const auto& item : object.items()) {
            if (std::find(known.begin(), known.end(), item.key()) == known.end()) {
                throw ManifestError("manifest.json: " + place_ + " has an unknown item " +
                                    Quoted(item.key()));
            }
        }
    }

    bool Has(const char* name) const { return object_.contains(name); }

    std::string Text(const char* name) const {
        const Json& value = Value(name);
        Require(value.is_string(), name, "a text");
        return value.get<std::string>();
    }
    std::string TextOr(const char* name, const char* otherwise) const {
        return CheckedText(name, Has(name) ? Text(name) : otherwise);
    }
    bool Flag(const char* name) const {
        const Json& value = Value(name);
        Require(value.is_boolean(), name, "true or false");
        return value.get<bool>();
    }
    std::uint64_t Number(const char* name) const {
        const Json& value = Value(name);
        Require(value.is_number_unsigned(), name, "a whole number");
        return value.get<std::uint64_t>();
    }
    const Json& List(const char* name) const {
        const Json& value = Value(name);
        Require(value.is_array(), name, "a list");
        return value;
    }
    std::vector<std::string> TextsOrNone(const char* name) const {
        std::vector<std::string> texts;
        if (Has(name)) {
            for (const Json& value : List(name)) {
                Require(value.is_string(), name, "a list of texts");
                texts.push_back(value.get<std::string>());
            }
        }
        return texts;
    }

private:
    const Json& Value(const char* name) const {
        const auto found = object_.find(name);
        if (found == object_.end()) {
            throw ManifestError("manifest.json: " + place_ + " lacks '" + name + "'");
        }
        return *found;
    }
    void Require(bool fits, const char* name, const char* kind) const {
        if (!fits) {
            throw ManifestError("manifest.json: '" + std::string(name) + "' of " + place_ +
                                " is not " + kind);
        }
    }

    const Json& object_;
    std::string place_;
};

std::string CheckedEntryText(const std::string& text) {
    const std::string fault = EntryTextFault(text);
    if (!fault.empty()) {
        throw ManifestError("manifest.json: the file name " + Quoted(text) + " " + fault);
    }
    return text;
}

unsigned ParseMode(const std::string& entry, const std::string& text) {
    unsigned mode = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), mode, 8);
    if (error != std::errc() || end != text.data() + text.size() || text.size() < 3 ||
        text.size() > 5 || mode > 07777) {
        throw ManifestError("manifest.json: the mode of " + Quoted(entry) + " is " + Quoted(text) +
                            " and not octal digits such as 0644");
    }
    return mode;
}

std::string ParseDigest(const std::string& entry, const std::string& text) {
    if (text.size() != digestDigits ||
        text.find_first_not_of("0123456789abcdef") != std::string::npos) {
        throw ManifestError("manifest.json: the SHA-256 of " + Quoted(entry) +
                            " is not 64 lower-case hexadecimal digits");
    }
    return text;
}

BundleFile ParseFile(const Json& json) {
    const bool isLink = json.is_object() && json.contains("link");
    const Items items = isLink ? Items(json, "a link", {"path", "link"})
                               : Items(json, "a file", {"path", "size", "mode", "sha256"});
    BundleFile file;
    file.entry = CheckedEntryText(items.Text("path"));
    SplitEntry(file);
    if (isLink) {
        file.link = CheckedEntryText(items.Text("link"));
        return file;
    }
    file.size = items.Number("size");
    file.mode = ParseMode(file.entry, items.Text("mode"));
    file.sha256 = ParseDigest(file.entry, items.Text("sha256"));
    return file;
}

std::vector<std::string> ParseComponents(const Items& items) {
    std::vector<std::string> components = items.TextsOrNone("components");
    std::set<std::string> seen;
    for (const auto& name : components) {
        if (!seen.insert(CheckedName("components", name)).second) {
            throw ManifestError("manifest.json: the component " + Quoted(name) + " is there twice");
        }
    }
    return components;
}

std::string ParseClassification(const Items& items) {
    std::string text = items.TextOr("classification", "Other");
    if (std::find(classifications.begin(), classifications.end(), text) == classifications.end()) {
        throw ManifestError("manifest.json: " + Quoted(text) + " is no classification");
    }
    return text;
}

void ParseDescription(const Items& items, Manifest& manifest) {
    manifest.name = CheckedName("name", items.Text("name"));
    manifest.version = CheckedName("version", items.Text("version"));
    manifest.shortDescription = items.TextOr("short_description", "");
    manifest.longDescription = items.TextOr("long_description", "");
    manifest.category = items.TextOr("category", "");
    manifest.classification = ParseClassification(items);
    manifest.rebootNeeded = items.Flag("reboot_needed");
    manifest.removable = items.Flag("removable");
    manifest.components = ParseComponents(items);
    manifest.warnings = items.TextsOrNone("warnings");
    for (const auto& warning : manifest.warnings) {
        CheckedText("warnings", warning);
    }
}

nlohmann::ordered_json FileJson(const BundleFile& file) {
    nlohmann::ordered_json json = {{"path", file.entry}};
    if (file.IsLink()) {
        json["link"] = file.link;
        return json;
    }
    std::string mode = "0000";
    for (std::size_t i = 0; i < mode.size(); ++i) {
        mode[i] = static_cast<char>('0' + ((file.mode >> (3 * (mode.size() - 1 - i))) & 7U));
    }
    json["size"] = file.size;
    json["mode"] = mode;
    json["sha256"] = file.sha256;
    return json;
}

} // namespace

std::string EntryTextFault(std::string_view text) {
    if (text.empty()) {
        return "is empty";
    }
    if (text.size() > longestBundlePath) {
        return "has more than " + std::to_string(longestBundlePath) + " bytes";
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ' ' || IsControl(text, i)) {
            return "holds white space or a control character";
        }
    }
    return IsUtf8(text) ? "" : "is not UTF-8";
}

void SplitEntry(BundleFile& file) {
    file.path = file.entry;
    file.component.clear();
    if (file.entry.starts_with(filesFolder)) {
        file.path = file.entry.substr(filesFolder.size());
    } else if (file.entry.starts_with(componentsFolder)) {
        const auto slash = file.entry.find('/', componentsFolder.size());
        if (slash != std::string::npos) {
            file.component =
                file.entry.substr(componentsFolder.size(), slash - componentsFolder.size());
            file.path = file.entry.substr(slash + 1);
        }
    }
}

Manifest ParseManifest(std::string_view text, ManifestForm form) {
    const Json json = ParseJson(text);
    const Items items(json, "the manifest",
                      {"format", "name", "version", "short_description", "long_description",
                       "category", "classification", "reboot_needed", "removable", "size",
                       "components", "warnings", "files"});
    if ((form == ManifestForm::Bundle || items.Has("format")) &&
        items.Number("format") != formatNumber) {
        throw ManifestError("manifest.json has the format " +
                            std::to_string(items.Number("format")) +
                            ", which this version does not know");
    }
    Manifest manifest;
    ParseDescription(items, manifest);
    manifest.sha256 = Sha256Of(text);
    if (form == ManifestForm::Bundle) {
        manifest.size = items.Number("size");
        for (const Json& file : items.List("files")) {
            manifest.files.push_back(ParseFile(file));
        }
    }
    return manifest;
}

std::string ManifestText(const Manifest& manifest) {
    nlohmann::ordered_json json;
    json["format"] = formatNumber;
    json["name"] = manifest.name;
    json["version"] = manifest.version;
    json["short_description"] = manifest.shortDescription;
    json["long_description"] = manifest.longDescription;
    json["category"] = manifest.category;
    json["classification"] = manifest.classification;
    json["reboot_needed"] = manifest.rebootNeeded;
    json["removable"] = manifest.removable;
    json["size"] = manifest.size;
    json["components"] = manifest.components;
    json["warnings"] = manifest.warnings;
    json["files"] = nlohmann::ordered_json::array();
    for (const auto& file : manifest.files) {
        json["files"].push_back(FileJson(file));
    }
    return json.dump(1) + "\n";
}

} // namespace bundle

bool IsPlainName(std::string_view text) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789._+~-";
    return !text.empty() && text.size() <= longestName && text.front() != '-' &&
           text.find_first_not_of(plain) == std::string_view::npos;
}

std::vector<BundleFile> Manifest::FilesOf(std::string_view component) const {
    std::vector<BundleFile> found;
    std::copy_if(files.begin(), files.end(), std::back_inserter(found),
                 [&](const BundleFile& file) { return file.component == component; });
    return found;
}

} // namespace patchkeeper
