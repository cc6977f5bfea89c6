// Connection files whose data a cloud provider (OneDrive, SharePoint) or offline files keep
// off the disk, as the fault layer's attribute query shows them (Wine keeps none of these
// bits itself): the icon handler leaves such a file unopened and answers the DLL's own icon,
// as for a file without one; the file's Properties still read it and show its values.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

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
        return icon_cycle::AskANewObject(extension_.GetClassObject(), kVQCPropClassId, test_support::Wide(file_));
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

// A OneDrive folder of 500 connection files not on the disk, drawn by Explorer: no file is
// opened (none is downloaded). The same folder once the files are on the disk opens each.
TEST_F(CloudFileTest, AFolderOfFiveHundredPlaceholdersIsDrawnWithoutOpeningOne) {
    constexpr int kFiles = 500;
    std::vector<std::string> files;
    for (int i = 0; i < kFiles; ++i) {
        files.push_back(extension_.File("connection " + std::to_string(i) + ".vqc"));
        WriteFileBytes(files.back(), test_support::ConnectionLineWithIcon({32, 16}));
    }
    struct Drawn {
        std::uint64_t opens = 0;
        int ownIcons = 0;
        int dllIcons = 0;
        double seconds = 0;
    };
    const auto drawFolder = [&] {
        Drawn drawn;
        const auto start = std::chrono::steady_clock::now();
        for (const std::string& file : files) {
            const icon_cycle::IconAnswer answer =
                icon_cycle::AskANewObject(extension_.GetClassObject(), kVQCPropClassId, test_support::Wide(file));
            drawn.ownIcons += answer.flags == 26u && answer.extract == S_OK && answer.large && answer.small;
            drawn.dllIcons += answer.flags == static_cast<UINT>(GIL_PERINSTANCE) && answer.extract == S_FALSE &&
                              !answer.large && !answer.small;
        }
        drawn.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        for (const std::string& file : files) drawn.opens += faults::FileOpens(file);
        return drawn;
    };

    for (const std::string& file : files) faults::AddAttributes(file, cloud_placeholder::kRecallOnDataAccess);
    const Drawn inTheCloud = drawFolder();
    EXPECT_EQ(inTheCloud.opens, 0u);
    EXPECT_EQ(inTheCloud.dllIcons, kFiles);

    for (const std::string& file : files) faults::AddAttributes(file, 0);
    const Drawn onTheDisk = drawFolder();
    EXPECT_GE(onTheDisk.opens, static_cast<std::uint64_t>(kFiles));
    EXPECT_EQ(onTheDisk.ownIcons, kFiles);
    std::printf("%d files not on the disk: %llu opened, %.2f s; on the disk: %llu opens, %.2f s\n", kFiles,
                static_cast<unsigned long long>(inTheCloud.opens), inTheCloud.seconds,
                static_cast<unsigned long long>(onTheDisk.opens), onTheDisk.seconds);
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
