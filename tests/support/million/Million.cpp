// A million instances, made while they are enumerated: what a server must not keep.
#include "cimserver/host/providers/Plain.hpp"

#include <cstdio>

namespace {

using namespace OpenWBEM;

CIMInstance Numbered(UInt32 number) {
    static const CIMQualifierArray key(1, CIMQualifier::createKeyQualifier());
    char text[32];
    std::snprintf(text, sizeof text, "number %u of them", static_cast<unsigned>(number));
    CIMProperty property("Number", CIMValue(number));
    property.setQualifiers(key);
    CIMInstance instance("TS_Numbered");
    instance.setProperty(property);
    instance.setProperty("Text", CIMValue(text));
    return instance;
}

class Million : public Plain {
public:
    void enumInstances(const Env&, const String&, const String&,
                       CIMInstanceResultHandlerIFC& result, WBEMFlags::ELocalOnlyFlag,
                       WBEMFlags::EDeepFlag, WBEMFlags::EIncludeQualifiersFlag,
                       WBEMFlags::EIncludeClassOriginFlag, const StringArray*, const CIMClass&,
                       const CIMClass&) override {
        for (UInt32 i = 0; i < 1'000'000; ++i) {
            result.handle(Numbered(i));
        }
    }
};

} // namespace

OW_PROVIDERFACTORY(Million, Million)
