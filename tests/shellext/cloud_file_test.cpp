// Connection files whose data a cloud provider (OneDrive, SharePoint) or offline files keep
// off the disk, as the fault layer's attribute query shows them (Wine keeps none of these
// bits itself): the icon handler leaves such a file unopened and answers the DLL's own icon,
// as for a file without one; the file's Properties still read it and show its values.
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "common/com_ptr.h"
#include "connection/cloud_placeholder.h"
#include "connection/vqc_file_info.h"
#include "resources/dialog_ids.h"
#include "tests/faults/fault_layer.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/icon_cycle.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;

namespace {

constexpr COLORREF kBackground = RGB(0x30, 0x70, 0xB0);

struct CloudAttribute {
    const char* name;
    DWORD bit;
};

void PrintTo(const CloudAttribute& attribute, std::ostream* out) { *out << attribute.name; }

// A loaded copy of the built DLL with the fault layer installed, and a connection file with
// an icon of its own beside it.
class CloudFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(extension_.Module(), nullptr);
        ASSERT_GT(faults::InstallInto(extension_.Module()), 0u);
        WriteFileBytes(file_, test_support::ConnectionLineWithIcon({32, 16}));
    }

    // What the shell asks of a new object for the file in a folder view.
    icon_cycle::IconAnswer AskForTheIcon() {
        const ComApartment apartment;
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(extension_.GetClassObject()(kVQCPropClassId, IID_IClassFactory, factory.PutVoid()), S_OK);
        if (!factory) return {};
        ComPtr<IPersistFile> persist;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersistFile, persist.PutVoid()), S_OK);
        if (!persist) return {};
        return icon_cycle::AskForTheIcon(persist.Get(), test_support::Wide(file_));
    }

    ExtensionCopy extension_{"cloud-file"};
    std::string file_ = extension_.File("in the cloud.vqc");
};

// The file's own icon drawn as a page or the shell would draw it.
std::vector<std::uint32_t> FilesOwnIcon(const std::string& file) {
    VQCFileInfo record(file.c_str());
    if (record.Read(file.c_str()) != 0 || !record.icon) return {};
    return RenderedIcon(record.icon.Get(), 32, kBackground);
}

HICON Shown(HWND page, int id) {
    return reinterpret_cast<HICON>(SendMessageA(GetDlgItem(page, id), STM_GETICON, 0, 0));
}

class CloudFile : public CloudFileTest, public ::testing::WithParamInterface<CloudAttribute> {};

}  // namespace

// Without a cloud bit the counting sees the icon handler's open, and the file's own icon is
// answered: the tests below mean something.
TEST_F(CloudFileTest, FileOnTheDiskIsOpenedAndAnswersItsOwnIcon) {
    const icon_cycle::IconAnswer answer = AskForTheIcon();
    EXPECT_EQ(answer.load, S_OK);
    EXPECT_GE(faults::FileOpens(file_), 1u);
    EXPECT_EQ(answer.location, S_OK);
    EXPECT_EQ(answer.file, file_);
    EXPECT_EQ(answer.flags, 26u);
    EXPECT_EQ(answer.extract, S_OK);
    EXPECT_TRUE(answer.large);
    EXPECT_TRUE(answer.small);
}

TEST_P(CloudFile, IconHandlerLeavesTheFileUnopenedAndAnswersTheDllsIcon) {
    faults::AddAttributes(file_, GetParam().bit);
    const icon_cycle::IconAnswer answer = AskForTheIcon();
    EXPECT_EQ(answer.load, S_OK);
    EXPECT_EQ(faults::FileOpens(file_), 0u);
    EXPECT_EQ(answer.location, S_OK);
    EXPECT_EQ(_stricmp(answer.file.c_str(), extension_.DllPath().c_str()), 0) << answer.file;
    EXPECT_EQ(answer.index, 0);
    EXPECT_EQ(answer.flags, static_cast<UINT>(GIL_PERINSTANCE));
    EXPECT_EQ(answer.extract, S_FALSE);
    EXPECT_FALSE(answer.large);
    EXPECT_FALSE(answer.small);
}

TEST_P(CloudFile, PropertiesStillReadTheFileAndShowItsValues) {
    faults::AddAttributes(file_, GetParam().bit);
    ShellPropertySheet sheet(extension_.GetClassObject(), file_);
    ASSERT_TRUE(sheet.Open());
    EXPECT_GE(faults::FileOpens(file_), 1u);
    const HWND connection = PageWindow(sheet.Sheet(), 0);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(WindowText(GetDlgItem(connection, dialog_ids::kServerBox)), "server.example");
    EXPECT_EQ(WindowText(GetDlgItem(connection, dialog_ids::kLoginEdit)), "tester");
    ShowPage(sheet.Sheet(), 2);
    const HWND options = PageWindow(sheet.Sheet(), 2);
    ASSERT_NE(options, nullptr);
    ASSERT_NE(Shown(options, dialog_ids::kLargeIconView), nullptr);
    const std::vector<std::uint32_t> own = FilesOwnIcon(file_);
    ASSERT_FALSE(own.empty());
    EXPECT_EQ(RenderedIcon(Shown(options, dialog_ids::kLargeIconView), 32, kBackground), own);
    sheet.Destroy();
}

INSTANTIATE_TEST_SUITE_P(Attributes, CloudFile,
                         ::testing::Values(CloudAttribute{"Offline", cloud_placeholder::kOffline},
                                           CloudAttribute{"RecallOnOpen", cloud_placeholder::kRecallOnOpen},
                                           CloudAttribute{"RecallOnDataAccess",
                                                          cloud_placeholder::kRecallOnDataAccess}),
                         [](const ::testing::TestParamInfo<CloudAttribute>& info) { return info.param.name; });
