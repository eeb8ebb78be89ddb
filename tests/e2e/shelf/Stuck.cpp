// Names a thousand instances, waits for a file (its name is the configuration item stuck.release),
// and names as many again.
#include "cimserver/host/providers/Plain.hpp"

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace {

using namespace OpenWBEM;

class Stuck : public Plain {
public:
    void enumInstanceNames(const Env& env, const String& ns, const String& className,
                           CIMObjectPathResultHandlerIFC& result, const CIMClass&) override {
        Name(0, ns, className, result);
        const std::string release = env->getConfigItem("stuck.release").c_str();
        const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!std::filesystem::exists(release) && std::chrono::steady_clock::now() < limit) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        Name(1000, ns, className, result);
    }

private:
    static void Name(int first, const String& ns, const String& className,
                     CIMObjectPathResultHandlerIFC& result) {
        for (int i = first; i < first + 1000; ++i) {
            CIMObjectPath path(CIMName(className), ns);
            path.setKeyValue("Id", CIMValue(String(std::to_string(i).append(100, 'x').c_str())));
            result.handle(path);
        }
    }
};

} // namespace

OW_PROVIDERFACTORY(Stuck, Stuck)
