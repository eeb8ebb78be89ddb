#include "matrix/Scene.hpp"

#include "provider/available/AvaliableProvider.hpp"
#include "provider/common/Common.hpp"
#include "provider/component/ComponentProvider.hpp"
#include "provider/history/HistoryProvider.hpp"
#include "provider/inventory/InventoryProvider.hpp"

#include <map>
#include <thread>

namespace matrix {

using namespace OpenWBEM;
using test_support::ToolAnswer;
using test_support::ToolDouble;

namespace {

void PlaysOrdinaryAnswers(ToolDouble& tool) {
    tool.Plays("--cache", ToolAnswer().Output("N\tV\tDesc\t12\treboot\tApplied\n"
                                              "M\t2.0\tMore\t7\tno\tAvailable\n"));
    tool.Plays("--sched", ToolAnswer().Output("N\tV\tDesc\tftp\tJan 2 2026 03:04\t"
                                              "Feb 3 2026 04:05\treboot\t12\tScheduled\n"));
    tool.Plays("--apply",
               ToolAnswer().Output("N\tV\tDesc\tftp\tFeb 3 2026 04:05\treboot\t12\tApplying\n"));
    tool.Plays("--hist", ToolAnswer().Output("N\tV\tDesc\tSecurity\tJan 2 2026 03:04\tRemovable\n"
                                             "M\t2.0\tMore\tFix\tFeb 3 2026 04:05\tno\n"));
    tool.Plays("--components", ToolAnswer().Output("a\nb\nc\n"));
    tool.Plays("--files", ToolAnswer().Output("one\ntwo\n"));
    tool.Plays("", ToolAnswer().Output("bash\t5.2\tOperating System\tJan 2 2026 03:04\n"
                                       "znxliteEMcartridge\t7.1\tFirmware\tJan 2 2026 03:04\n"));
    tool.Plays("-l", ToolAnswer().Output("The long\ntext.\n"));
    tool.Plays("--warnings", ToolAnswer().Output("Beware.\n"));
    tool.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
    tool.Plays("--errors", ToolAnswer().Output("What it means.\n"));
    tool.PlaysOtherwise(ToolAnswer());
}

} // namespace

// The scene is that of a fresh process.
Scene::Scene() : env(new test_support::Environment(log)), calls(master, env) {
    setenv("TZ", "UTC", 1);
    PlaysOrdinaryAnswers(tool);
    gAvaliableList = Array<AvaliableUpdate>();
    gHistoryList = Array<HistoryUpdate>();
    gComponentList = Array<Component>();
    gInventoryList = Array<InventoryObject>();
    gPatchName = String();
    gPatchVersion = String();
    master.initialize(env);
}

Scene::~Scene() {
    Settle();
}

void Scene::Settle() {
    while (BackgroundTasksRun()) {
        std::this_thread::yield();
    }
}

std::string IdOf(int exitCode) {
    static const std::map<int, const char*> ids = {
        {11, "FtpFailed"},           {12, "SoftwareUpdateFailed"}, {13, "RpmInstallFailed"},
        {14, "PatchDownloadFailed"}, {15, "PatchApplyFailed"},     {16, "PatchRemoveFailed"},
        {17, "PatchScheduleFailed"}, {18, "PatchModifyFailed"},    {19, "HttpFailed"},
        {20, "HttpsFailed"},         {21, "SambaFailed"},          {22, "UsbFailed"},
        {23, "NoPatchesFound"},      {33, "NoLocalPatchesFound"},  {34, "TimeZoneNotSet"}};
    const auto found = ids.find(exitCode);
    return std::string("SWU_Patchkeeper_") + (found == ids.end() ? "Unknown" : found->second);
}

} // namespace matrix
