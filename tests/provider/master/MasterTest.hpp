#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/master/MasterProvider.hpp"

#include <cstdlib>

extern OpenWBEM::String gEMCartridgeName;

// The master as the server holds it after initialize; the lines logged so far are forgotten.
class MasterTest : public ToolTest {
protected:
    MasterTest() {
        tool.Plays("", test_support::ToolAnswer().Output(
                           "bash\t5.2\tOperating System\tThu Jan  2 03:04:05 UTC 2025\n"
                           "znxliteEMcartridge\t7.1\tFirmware\tThu Jan  2 03:04:05 UTC 2025\n"));
        master.initialize(env);
        log->Forget();
    }

    SoftwareUpdateProvider master;
    test_support::Calls calls{master, env};
};
