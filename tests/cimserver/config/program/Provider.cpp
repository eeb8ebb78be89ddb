// Does what a provider may do to its process: prints, and starts a program in both ways. What the
// program says goes to standard output, so to the server's log.
#include "cimserver/host/providers/Plain.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

class Program : public Plain {
public:
    void initialize(const Env& env) override {
        child_ = env->getConfigItem("test.child").c_str();
        env->getLogger("test.provider")->logError(env->getConfigItem("test.text"));
        env->getLogger("test.provider")->logInfo("not at the default level");
    }
    void enumInstanceNames(const Env&, const OpenWBEM::String&, const OpenWBEM::String&,
                           OpenWBEM::CIMObjectPathResultHandlerIFC& result,
                           const OpenWBEM::CIMClass&) override {
        std::printf("printed on standard output\n");
        RunByPipe();
        std::system((child_ + " | sed 's/^/system: /'").c_str());
        OpenWBEM::CIMObjectPath path("HT_Program");
        path.setKeyValue("Id", OpenWBEM::CIMValue(OpenWBEM::String("1")));
        result.handle(path);
    }

private:
    void RunByPipe() const {
        std::FILE* pipe = popen(child_.c_str(), "re");
        char line[512];
        while (std::fgets(line, sizeof line, pipe) != nullptr) {
            std::printf("popen: %s", line);
        }
        std::printf("popen: status %d\n", pclose(pipe));
    }

    std::string child_;
};

} // namespace

OW_PROVIDERFACTORY(Program, Program)
