// Keeps items and boxes in memory and does what a client asks. At the start there are the items
// "1" and "two words", both in the box "A".
#include "OW_CppProviderIncludes.hpp"
#include "OW_NoSuchPropertyException.hpp"

#include <map>
#include <string>

namespace {

using namespace OpenWBEM;

String Text(const CIMValue& value) {
    return value ? value.getCIMDataType().toString() + (value.isArray() ? "[] " : " ") +
                       value.toString()
                 : String("null");
}

CIMInstance WithKey(const char* className, const String& id) {
    CIMProperty key("Id", CIMValue(id));
    key.addQualifier(CIMQualifier::createKeyQualifier());
    CIMInstance instance(className);
    instance.setProperty(key);
    return instance;
}

class Shelf : public CppMethodProviderIFC, public CppAssociatorProviderIFC {
public:
    using Env = ProviderEnvironmentIFCRef;

    Shelf() {
        for (const char* id : {"1", "two words"}) {
            CIMInstance item = WithKey("ET_Item", id);
            item.setProperty("Name", CIMValue(String("item ") + id));
            item.setProperty("Count", CIMValue(UInt8(1)));
            items_[id] = item;
        }
    }

    void enumInstanceNames(const Env&, const String& ns, const String& className,
                           CIMObjectPathResultHandlerIFC& result, const CIMClass&) override {
        if (className == "ET_Item") {
            for (const auto& [id, item] : items_) {
                result.handle(CIMObjectPath(ns, item));
            }
        } else if (className == "ET_Holds") {
            for (const CIMInstance& link : Links(ns)) {
                result.handle(CIMObjectPath(ns, link));
            }
        }
    }
    CIMInstance getInstance(const Env&, const String&, const CIMObjectPath& path,
                            WBEMFlags::ELocalOnlyFlag, WBEMFlags::EIncludeQualifiersFlag,
                            WBEMFlags::EIncludeClassOriginFlag, const StringArray*,
                            const CIMClass&) override {
        return Find(path);
    }

    CIMObjectPath createInstance(const Env&, const String& ns,
                                 const CIMInstance& instance) override {
        const std::string id = IdOf(CIMObjectPath(ns, instance));
        if (items_.count(id) != 0) {
            OW_THROWCIMMSG(CIMException::ALREADY_EXISTS, id.c_str());
        }
        items_[id] = instance;
        return CIMObjectPath(CIMNULL);
    }
    void modifyInstance(const Env&, const String&, const CIMInstance& modified,
                        const CIMInstance& previous, WBEMFlags::EIncludeQualifiersFlag,
                        const StringArray* list, const CIMClass& cimClass) override {
        const CIMValue id = modified.getPropertyValue("Id");
        if (!id) {
            OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "no Id");
        }
        items_[id.toString().c_str()] = modified.createModifiedInstance(
            previous, WBEMFlags::E_INCLUDE_QUALIFIERS, list, cimClass);
    }
    void deleteInstance(const Env&, const String&, const CIMObjectPath& path) override {
        items_.erase(IdOf(path));
    }

    CIMValue invokeMethod(const Env&, const String&, const CIMObjectPath& path, const String& name,
                          const CIMParamValueArray& in, CIMParamValueArray& out) override {
        if (name == "Fail") {
            Fail(in[0].getValue());
        }
        if (name == "Silent") {
            return CIMValue(CIMNULL);
        }
        if (name == "Tell") {
            out[0].setValue(path.getKeyValue("Id"));
            out[1].setValue(in[0].getValue());
        }
        if (name != "Describe") {
            return CIMValue(UInt32(0));
        }
        String text;
        for (const CIMParamValue& parameter : in) {
            text += parameter.getName() + "=" + Text(parameter.getValue()) + "; ";
        }
        UInt16Array numbers;
        numbers.push_back(1);
        numbers.push_back(2);
        out[0].setValue(CIMValue(path.toString()));
        out[1].setValue(CIMValue(numbers));
        return CIMValue(text);
    }

    void associators(const Env&, CIMInstanceResultHandlerIFC& result, const String&,
                     const CIMObjectPath& source, const String&, const String&, const String&,
                     const String&, WBEMFlags::EIncludeQualifiersFlag,
                     WBEMFlags::EIncludeClassOriginFlag, const StringArray*) override {
        if (source.getClassName() == "ET_Item") {
            result.handle(WithKey("ET_Box", "A"));
            return;
        }
        for (const auto& [id, item] : items_) {
            result.handle(item);
        }
    }
    void associatorNames(const Env&, CIMObjectPathResultHandlerIFC& result, const String& ns,
                         const CIMObjectPath&, const String&, const String&, const String&,
                         const String& resultRole) override {
        if (resultRole == "fail") {
            OW_THROWCIMMSG(CIMException::NOT_SUPPORTED, "as told");
        }
        for (const auto& [id, item] : items_) {
            result.handle(CIMObjectPath(ns, item));
        }
    }
    void references(const Env&, CIMInstanceResultHandlerIFC& result, const String& ns,
                    const CIMObjectPath&, const String&, const String&,
                    WBEMFlags::EIncludeQualifiersFlag, WBEMFlags::EIncludeClassOriginFlag,
                    const StringArray*) override {
        for (const CIMInstance& link : Links(ns)) {
            result.handle(link);
        }
    }
    void referenceNames(const Env&, CIMObjectPathResultHandlerIFC& result, const String& ns,
                        const CIMObjectPath&, const String&, const String&) override {
        for (const CIMInstance& link : Links(ns)) {
            result.handle(CIMObjectPath(ns, link));
        }
    }

private:
    static std::string IdOf(const CIMObjectPath& path) {
        const CIMValue id = path.getKeyValue("Id");
        if (!id) {
            OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "no Id");
        }
        return id.toString().c_str();
    }
    CIMInstance Find(const CIMObjectPath& path) const {
        const auto found = items_.find(IdOf(path));
        if (found == items_.end()) {
            OW_THROWCIMMSG(CIMException::NOT_FOUND, path.toString().c_str());
        }
        return found->second;
    }
    [[noreturn]] static void Fail(const CIMValue& how) {
        if (how == CIMValue(String("cim"))) {
            OW_THROWCIMMSG(CIMException::ACCESS_DENIED, "line one\nline two");
        }
        if (how == CIMValue(String("other"))) {
            OW_THROW(NoSuchPropertyException, "no CIM exception");
        }
        throw 7;
    }
    CIMInstanceArray Links(const String& ns) const {
        CIMInstanceArray links;
        for (const auto& [id, item] : items_) {
            CIMInstance link("ET_Holds");
            link.setProperty(
                CIMProperty("Box", CIMValue(CIMObjectPath(ns, WithKey("ET_Box", "A")))));
            link.setProperty(CIMProperty("Item", CIMValue(CIMObjectPath(ns, item))));
            links.push_back(link);
        }
        return links;
    }

    std::map<std::string, CIMInstance> items_;
};

} // namespace

OW_PROVIDERFACTORY(Shelf, Shelf)
