// Who may not change anything reads, and no provider hears of what he tried.
#include "cimserver/operations/OperationsTest.hpp"

namespace operationstest {
namespace {

using namespace cimserver::operations; // the names of the calls
using OpenWBEM::CIMInstance;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* denied =
    "2 Access to CIM resource unavailable to client (anna may only read)";

class Rights : public OperationsTest {
protected:
    Rights() { mayChange = false; }
};

TEST_F(Rights, EveryChangeAndMethodIsDeniedToReaders) {
    const auto path = Path("HT_Base", "Id", "1");
    EXPECT_EQ(Failure(CreateInstance{CIMInstance("HT_Base")}), denied);
    EXPECT_EQ(Failure(ModifyInstance{path, CIMInstance("HT_Base")}), denied);
    EXPECT_EQ(Failure(DeleteInstance{path}), denied);
    EXPECT_EQ(Failure(SetProperty{path, "Number"}), denied);
    EXPECT_EQ(Failure(InvokeMethod{path, "Start"}), denied);
    EXPECT_THAT(source.asked, IsEmpty());
}

TEST_F(Rights, DenialComesBeforeWhatElseIsWrong) {
    const DeleteInstance call{Path("HT_Absent", "Id", "1")};
    EXPECT_EQ(Failure(call, "root/none"), denied);
    mayChange = true;
    EXPECT_EQ(Failure(call, "root/none"), "3 namespace does not exist (root/none)");
}

TEST_F(Rights, ReadersRead) {
    const auto path = Path("HT_Base", "Id", "1");
    base.answer = CIMInstance("HT_Base");
    Run(EnumerateInstances{"HT_Base"});
    Run(EnumerateInstanceNames{"HT_Base"});
    Run(GetInstance{path});
    Run(GetProperty{path, "Number"});
    Run(GetClass{"HT_Base"});
    Run(EnumerateClasses{});
    Run(EnumerateClassNames{});
    Run(GetQualifier{"Key"});
    Run(EnumerateQualifiers{});
    Run(Associators{path});
    Run(AssociatorNames{path});
    Run(References{path});
    Run(ReferenceNames{path});
    EXPECT_THAT(base.calls, testing::Not(IsEmpty()));
}

TEST_F(Rights, ClientsWithoutNameAreDeniedToo) {
    try {
        operations.Execute({"root/cimv2", "", DeleteInstance{Path("HT_Base", "Id", "1")}}, sink);
        ADD_FAILURE() << "nothing was refused";
    } catch (const OpenWBEM::CIMException& error) {
        EXPECT_EQ(error.getErrNo(), OpenWBEM::CIMException::ACCESS_DENIED);
        EXPECT_THAT(error.getMessage(), testing::HasSubstr("anonymous clients may only read"));
    }
    EXPECT_THAT(source.asked, IsEmpty());
}

} // namespace
} // namespace operationstest
