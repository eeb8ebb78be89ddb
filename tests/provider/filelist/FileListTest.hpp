#pragma once

#include "provider/ProviderTest.hpp"

#include "provider/available/AvaliableProvider.hpp"
#include "provider/common/SharedList.hpp"
#include "provider/filelist/FileListProvider.hpp"

#include <string>
#include <vector>

// The names of the three classes, as clients write them.
inline constexpr const char* FILE_LIST = "ZNX_AvailableSoftwareFileList";
inline constexpr const char* UPDATES = "ZNX_AvailableSoftwareUpdate";
inline constexpr const char* FILE_NAMES = "ZNX_AvailableSoftwareFileName";

// The class provider by itself, on two updates, vim 9.0 and bash 5, of two files each.
class FileListTest : public ToolTest {
protected:
    FileListTest() {
        tool.Plays("--errors", test_support::ToolAnswer().Output("It failed.\n"));
        tool.Plays("--files", test_support::ToolAnswer().Output("one\ntwo\n"));
        Holds({{"vim", "9.0"}, {"bash", "5"}});
    }

    // Makes these, names and versions, the available updates.
    static void Holds(const std::vector<std::pair<std::string, std::string>>& updates) {
        OpenWBEM::Array<AvaliableUpdate> list;
        for (const auto& [name, version] : updates) {
            AvaliableUpdate update;
            update.InstanceID = OpenWBEM::String(static_cast<OpenWBEM::UInt32>(list.size()));
            update.Name = name.c_str();
            update.Version = version.c_str();
            list.push_back(update);
        }
        PublishList(gAvaliableList, list);
    }

    static OpenWBEM::CIMObjectPath Update(const char* id) {
        return test_support::PathOf(UPDATES, "InstanceID", id);
    }

    static OpenWBEM::CIMObjectPath File(const char* name) {
        return test_support::PathOf(FILE_NAMES, "FileName", name);
    }

    OpenWBEM::CIMInstanceArray Associators(const OpenWBEM::CIMObjectPath& path,
                                           const char* resultClass, const char* role = "",
                                           const char* resultRole = "",
                                           const char* assocClass = FILE_LIST) {
        using namespace OpenWBEM::WBEMFlags;
        OpenWBEM::CIMInstanceArray instances;
        OpenWBEM::CIMInstanceArrayBuilder result(instances);
        provider.associators(env, result, "root/cimv2", path, assocClass, resultClass, role,
                             resultRole, E_EXCLUDE_QUALIFIERS, E_EXCLUDE_CLASS_ORIGIN, nullptr);
        return instances;
    }

    OpenWBEM::CIMObjectPathArray AssociatorNames(const OpenWBEM::CIMObjectPath& path,
                                                 const char* resultClass,
                                                 const char* ns = "root/cimv2") {
        OpenWBEM::CIMObjectPathArray paths;
        OpenWBEM::CIMObjectPathArrayBuilder result(paths);
        provider.associatorNames(env, result, ns, path, FILE_LIST, resultClass, "", "");
        return paths;
    }

    OpenWBEM::CIMInstanceArray References(const OpenWBEM::CIMObjectPath& path,
                                          const char* resultClass = FILE_LIST,
                                          const char* role = "", const char* ns = "root/cimv2") {
        using namespace OpenWBEM::WBEMFlags;
        OpenWBEM::CIMInstanceArray instances;
        OpenWBEM::CIMInstanceArrayBuilder result(instances);
        provider.references(env, result, ns, path, resultClass, role, E_EXCLUDE_QUALIFIERS,
                            E_EXCLUDE_CLASS_ORIGIN, nullptr);
        return instances;
    }

    OpenWBEM::CIMObjectPathArray ReferenceNames(const OpenWBEM::CIMObjectPath& path,
                                                const char* resultClass = FILE_LIST) {
        OpenWBEM::CIMObjectPathArray paths;
        OpenWBEM::CIMObjectPathArrayBuilder result(paths);
        provider.referenceNames(env, result, "root/cimv2", path, resultClass, "");
        return paths;
    }

    FileListMapProvider provider;
    test_support::Calls calls{provider, env};
};

// What a reference property or a path's reference key points at.
inline OpenWBEM::CIMObjectPath Target(const OpenWBEM::CIMInstance& instance, const char* role) {
    return instance.getPropertyValue(role).toCIMObjectPath();
}
