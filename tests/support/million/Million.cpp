// A million instances of one class and 200,000 of another, made while they are enumerated: what a
// server must not keep.
#include "cimserver/host/providers/Plain.hpp"

#include <cstdio>

namespace {

using namespace OpenWBEM;

CIMInstance Numbered(const CIMName& className, UInt32 number) {
    static const CIMQualifierArray key(1, CIMQualifier::createKeyQualifier());
    char text[32];
    std::snprintf(text, sizeof text, "number %u of them", static_cast<unsigned>(number));
    CIMProperty property("Number", CIMValue(number));
    property.setQualifiers(key);
    CIMInstance instance(className);
    instance.setProperty(property);
    instance.setProperty("Text", CIMValue(text));
    return instance;
}

class Million : public Plain {
public:
    void enumInstances(const Env&, const String&, const String& className,
                       CIMInstanceResultHandlerIFC& result, WBEMFlags::ELocalOnlyFlag,
                       WBEMFlags::EDeepFlag, WBEMFlags::EIncludeQualifiersFlag,
                       WBEMFlags::EIncludeClassOriginFlag, const StringArray*, const CIMClass&,
                       const CIMClass&) override {
        const UInt32 count = className == "TS_Million" ? 1'000'000 : 200'000;
        for (UInt32 i = 0; i < count; ++i) {
            result.handle(Numbered(className, i));
        }
    }
};

} // namespace

OW_PROVIDERFACTORY(Million, Million)
