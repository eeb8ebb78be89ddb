// Names two thousand instances, then fails: with the words of a tool for ET_Breaking, with what is
// no exception for its subclass.
#include "cimserver/host/providers/Plain.hpp"

#include <string>

namespace {

using namespace OpenWBEM;

class Breaking : public Plain {
public:
    void enumInstanceNames(const Env&, const String& ns, const String& className,
                           CIMObjectPathResultHandlerIFC& result, const CIMClass&) override {
        for (int i = 0; i < 2000; ++i) {
            CIMObjectPath path(CIMName(className), ns);
            path.setKeyValue("Id", CIMValue(String(std::to_string(i).append(100, 'x').c_str())));
            result.handle(path);
        }
        if (className != "ET_Breaking") {
            throw 7;
        }
        OW_THROWCIMMSG(CIMException::ACCESS_DENIED, "Not \"\xC3\xA4\", 100%.\n#SWU_17,a b#");
    }
};

} // namespace

OW_PROVIDERFACTORY(Breaking, Breaking)
