// The client probe and version reader with real files: a copy of the built DLL in a
// folder of its own, and stand-in client DLLs with version blocks made by the build.
#include "shellext/client_probe.h"

#include <gtest/gtest.h>

#include "tests/shellext/shellext_test_support.h"

using namespace test_support;

namespace {

// A folder holding a copy of the extension, loaded from there.
class ExtensionFolder {
public:
    explicit ExtensionFolder(const std::string& tag) : folder_(tag) {
        copied_ = CopyInto(BuiltDllPath(), folder_.File(VQC_DLL_FILE_NAME));
        module_.Reset(LoadLibraryA(folder_.File(VQC_DLL_FILE_NAME).c_str()));
    }
    ~ExtensionFolder() { module_.Reset(); }

    bool Ready() const { return copied_ && module_; }
    HMODULE Module() const { return module_.Get(); }
    std::string File(const std::string& name) const { return folder_.File(name); }
    void Place(const std::string& fixture, const std::string& name) const {
        ASSERT_TRUE(CopyInto(ClientFixturePath(fixture), File(name))) << fixture;
    }

private:
    TempFolder folder_;
    bool copied_ = false;
    UniqueModule module_;
};

std::string Probe(const ExtensionFolder& extension, bool* found) {
    std::string path = "unwritten";
    *found = FindClientInstallation(extension.Module(), &path);
    return path;
}

}  // namespace

TEST(ClientProbe, NoClientGivesFalseAndAnEmptyPath) {
    ExtensionFolder extension("probe-none");
    ASSERT_TRUE(extension.Ready());
    bool found = true;
    EXPECT_EQ(Probe(extension, &found), "");
    EXPECT_FALSE(found);
}

TEST(ClientProbe, NullOutputGivesFalse) {
    ExtensionFolder extension("probe-null");
    ASSERT_TRUE(extension.Ready());
    extension.Place("client_7", "vclient.dll");
    EXPECT_FALSE(FindClientInstallation(extension.Module(), nullptr));
}

TEST(ClientProbe, FirstCandidateWinsOverTheThird) {
    ExtensionFolder extension("probe-order");
    ASSERT_TRUE(extension.Ready());
    extension.Place("client_7", "vclient.dll");
    extension.Place("client_6_2", "vclientu.dll");
    bool found = false;
    EXPECT_EQ(Probe(extension, &found), extension.File("vclient.dll"));
    EXPECT_TRUE(found);
}

TEST(ClientProbe, OnlyTheThirdCandidateIsFound) {
    ExtensionFolder extension("probe-third");
    ASSERT_TRUE(extension.Ready());
    extension.Place("client_6_2", "vclientu.dll");
    bool found = false;
    EXPECT_EQ(Probe(extension, &found), extension.File("vclientu.dll"));
    EXPECT_TRUE(found);
}

TEST(ClientProbe, SecondCandidateComesBeforeTheThird) {
    ExtensionFolder extension("probe-second");
    ASSERT_TRUE(extension.Ready());
    extension.Place("client_7", "vlientsh.dll");
    extension.Place("client_6_2", "vclientu.dll");
    bool found = false;
    EXPECT_EQ(Probe(extension, &found), extension.File("vlientsh.dll"));
    EXPECT_TRUE(found);
}

TEST(ClientProbe, ADirectoryNamedLikeACandidateCounts) {
    ExtensionFolder extension("probe-directory");
    ASSERT_TRUE(extension.Ready());
    ASSERT_TRUE(CreateDirectoryA(extension.File("vlientsh.dll").c_str(), nullptr));
    extension.Place("client_6_2", "vclientu.dll");
    bool found = false;
    EXPECT_EQ(Probe(extension, &found), extension.File("vlientsh.dll"));
    EXPECT_TRUE(found);
    EXPECT_EQ(ReadClientVersion(extension.File("vlientsh.dll").c_str()), 726);
}

TEST(ClientProbe, ClientsElsewhereAreNeverLookedFor) {
    ExtensionFolder extension("probe-elsewhere");
    ASSERT_TRUE(extension.Ready());
    // A client in the current directory and beside the test program, none beside the DLL.
    TempFolder current("probe-current");
    ASSERT_TRUE(CopyInto(ClientFixturePath("client_7"), current.File("vclient.dll")));
    char programPath[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, programPath, sizeof(programPath));
    std::string programFolder = programPath;
    programFolder.resize(programFolder.rfind('\\'));
    const std::string besideProgram = programFolder + "\\vclientu.dll";
    ASSERT_TRUE(CopyInto(ClientFixturePath("client_7"), besideProgram));
    SetCurrentDirectoryA(current.Path().c_str());
    bool found = true;
    const std::string path = Probe(extension, &found);
    DeleteFileA(besideProgram.c_str());
    EXPECT_EQ(path, "");
    EXPECT_FALSE(found);
}

TEST(ClientVersion, FourFieldsGiveTheFirstTwoJoined) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_40_0_12").c_str()), 640);
}

TEST(ClientVersion, SixPointTwoGivesSixtyTwo) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_2").c_str()), 62);
}

TEST(ClientVersion, TenPointOnePointThreeGives101) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_10_1_3").c_str()), 101);
}

TEST(ClientVersion, SingleFieldSevenGivesSeven) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_7").c_str()), 7);
}

TEST(ClientVersion, EmptyProductVersionGivesZero) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_empty").c_str()), 0);
}

TEST(ClientVersion, SixNineteenFiveGives619) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_19_5").c_str()), 619);
}

TEST(ClientVersion, FixturesAtThePageGatesReadAsTheirNumbers) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_20").c_str()), 620);
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_64").c_str()), 664);
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_65").c_str()), 665);
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_89").c_str()), 689);
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_6_90").c_str()), 690);
}

TEST(ClientVersion, OnlyAnotherLanguageBlockGives726) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_other_block").c_str()), 726);
}

TEST(ClientVersion, NoVersionResourceGives726) {
    EXPECT_EQ(ReadClientVersion(ClientFixturePath("client_no_version").c_str()), 726);
}

TEST(ClientVersion, MissingFileGives726) { EXPECT_EQ(ReadClientVersion("C:\\no such folder\\vclient.dll"), 726); }

TEST(ClientVersion, ProbedClientIsReadFromBesideTheDll) {
    ExtensionFolder extension("probe-version");
    ASSERT_TRUE(extension.Ready());
    extension.Place("client_6_40_0_12", "vclientu.dll");
    bool found = false;
    const std::string path = Probe(extension, &found);
    ASSERT_TRUE(found);
    EXPECT_EQ(ReadClientVersion(path.c_str()), 640);
}
