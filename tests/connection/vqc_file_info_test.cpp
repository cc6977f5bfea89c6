#include "connection/vqc_file_info.h"

#include <gtest/gtest.h>

namespace {

HICON MakeIcon(int size) {
    std::vector<BYTE> andMask(static_cast<std::size_t>(size * size / 8), 0x00);
    std::vector<BYTE> xorMask(static_cast<std::size_t>(size * size / 8), 0xAA);
    return CreateIcon(nullptr, size, size, 1, 1, andMask.data(), xorMask.data());
}

bool IconIsAlive(HICON icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return false;
    DeleteObject(info.hbmMask);
    if (info.hbmColor) DeleteObject(info.hbmColor);
    return true;
}

// A record that reports its destruction.
class ObservedRecord : public VQCFileInfo {
public:
    ObservedRecord(const char* path, bool* destroyed) : VQCFileInfo(path), destroyed_(destroyed) {}
    ~ObservedRecord() override { *destroyed_ = true; }

private:
    bool* destroyed_;
};

void* const kUntouched = reinterpret_cast<void*>(static_cast<uintptr_t>(0xdeadbeef));

}  // namespace

TEST(VQCFileInfo, FreshRecordHasNoIconsNoReferencesAndTheSettingsDefaults) {
    VQCFileInfo record("C:\\conn\\a.vqc");
    EXPECT_EQ(record.refCount, 0u);
    EXPECT_EQ(record.icon.Get(), nullptr);
    EXPECT_EQ(record.smallIcon.Get(), nullptr);
    EXPECT_EQ(record.filePath, "C:\\conn\\a.vqc");
    EXPECT_EQ(record.servicePort, -1);
    EXPECT_EQ(record.clientVersion, 726);
}

TEST(VQCFileInfo, NullPathGivesAnEmptyFilePath) {
    VQCFileInfo record(nullptr);
    EXPECT_EQ(record.filePath, "");
}

TEST(VQCFileInfo, FieldsKeepTheirDeclaredOrderInMemory) {
    VQCFileInfo record("a.vqc");
    const auto at = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&record);
    };
    EXPECT_LT(at(&record.answerBack), at(&record.spareText));
    EXPECT_LT(at(&record.spareText), at(&record.servicePort));
    EXPECT_LT(at(&record.lastError), at(&record.modified));
    EXPECT_LT(at(&record.inDomainKnown), at(&record.clientVersion));
    EXPECT_LT(at(&record.route), at(&record.filePath));
    EXPECT_LT(at(&record.filePath), at(&record.refCount));
    EXPECT_LT(at(&record.refCount), at(&record.icon));
    EXPECT_LT(at(&record.icon), at(&record.smallIcon));
}

TEST(VQCFileInfo, QueryInterfaceForIUnknownFailsAndLeavesTheOutPointer) {
    VQCFileInfo record("a.vqc");
    void* out = kUntouched;
    EXPECT_EQ(record.QueryInterface(IID_IUnknown, &out), E_NOINTERFACE);
    EXPECT_EQ(out, kUntouched);
    EXPECT_EQ(record.refCount, 0u);
}

TEST(VQCFileInfo, QueryInterfaceFailsForEveryInterface) {
    VQCFileInfo record("a.vqc");
    void* out = kUntouched;
    EXPECT_EQ(record.QueryInterface(IID_IClassFactory, &out), E_NOINTERFACE);
    EXPECT_EQ(record.QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(out, kUntouched);
}

TEST(VQCFileInfo, AddRefReturnsTheNewCount) {
    VQCFileInfo record("a.vqc");
    EXPECT_EQ(record.AddRef(), 1u);
    EXPECT_EQ(record.AddRef(), 2u);
    EXPECT_EQ(record.refCount, 2u);
}

TEST(VQCFileInfo, ReleaseAboveOneReturnsTheNewCountAndKeepsTheRecord) {
    bool destroyed = false;
    auto* record = new ObservedRecord("a.vqc", &destroyed);
    record->AddRef();
    record->AddRef();
    EXPECT_EQ(record->Release(), 1u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(record->refCount, 1u);
    EXPECT_EQ(record->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(VQCFileInfo, ReleaseFromOneDestroysTheRecordAndReturnsZero) {
    bool destroyed = false;
    auto* record = new ObservedRecord("a.vqc", &destroyed);
    record->AddRef();
    EXPECT_EQ(record->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(VQCFileInfo, DestructionDestroysBothIcons) {
    const HICON large = MakeIcon(32);
    const HICON small = MakeIcon(16);
    ASSERT_TRUE(IconIsAlive(large));
    ASSERT_TRUE(IconIsAlive(small));
    auto* record = new VQCFileInfo("a.vqc");
    record->SetIcons(large, small);
    record->AddRef();
    record->Release();
    EXPECT_FALSE(IconIsAlive(large));
    EXPECT_FALSE(IconIsAlive(small));
}

TEST(VQCFileInfo, ReplacingTheIconsDestroysTheOldOnes) {
    VQCFileInfo record("a.vqc");
    const HICON oldLarge = MakeIcon(32);
    const HICON oldSmall = MakeIcon(16);
    record.SetIcons(oldLarge, oldSmall);
    const HICON newLarge = MakeIcon(32);
    record.SetIcons(newLarge, nullptr);
    EXPECT_FALSE(IconIsAlive(oldLarge));
    EXPECT_FALSE(IconIsAlive(oldSmall));
    EXPECT_TRUE(IconIsAlive(newLarge));
    EXPECT_EQ(record.icon.Get(), newLarge);
    EXPECT_EQ(record.smallIcon.Get(), nullptr);
}

namespace {

int g_domainQueries = 0;
int g_lastNameFormat = -1;
ULONG g_lastBufferSize = 0;

BOOLEAN WINAPI DomainQueryAnswering(bool answer, int nameFormat, PULONG size) {
    ++g_domainQueries;
    g_lastNameFormat = nameFormat;
    g_lastBufferSize = *size;
    return answer ? TRUE : FALSE;
}
BOOLEAN WINAPI InDomain(int nameFormat, LPSTR, PULONG size) { return DomainQueryAnswering(true, nameFormat, size); }
BOOLEAN WINAPI NotInDomain(int nameFormat, LPSTR, PULONG size) { return DomainQueryAnswering(false, nameFormat, size); }

class DomainCheck : public ::testing::Test {
protected:
    void Use(DomainNameQuery query) { previous_ = SetDomainNameQuery(query); }
    void SetUp() override { g_domainQueries = 0; }
    void TearDown() override { SetDomainNameQuery(previous_); }

private:
    DomainNameQuery previous_ = nullptr;
};

}  // namespace

TEST_F(DomainCheck, AsksWindowsOnceWhenTheFirstAnswerIsYes) {
    Use(InDomain);
    VQCFileInfo record("a.vqc");
    EXPECT_TRUE(record.IsInDomain());
    EXPECT_TRUE(record.IsInDomain());
    EXPECT_TRUE(record.IsInDomain());
    EXPECT_EQ(g_domainQueries, 1);
    EXPECT_EQ(record.inDomain, 1);
    EXPECT_EQ(record.inDomainKnown, 1);
}

TEST_F(DomainCheck, AsksWindowsOnceWhenTheFirstAnswerIsNo) {
    Use(NotInDomain);
    VQCFileInfo record("a.vqc");
    EXPECT_FALSE(record.IsInDomain());
    EXPECT_FALSE(record.IsInDomain());
    EXPECT_EQ(g_domainQueries, 1);
    EXPECT_EQ(record.inDomain, 0);
    EXPECT_EQ(record.inDomainKnown, 1);
}

TEST_F(DomainCheck, AsksForTheDnsDomainNameIntoA261CharacterBuffer) {
    Use(InDomain);
    VQCFileInfo record("a.vqc");
    record.IsInDomain();
    EXPECT_EQ(g_lastNameFormat, 12);  // NameDnsDomain
    EXPECT_EQ(g_lastBufferSize, 261u);
}

TEST_F(DomainCheck, EveryRecordAsksOnceForItself) {
    Use(InDomain);
    VQCFileInfo first("a.vqc");
    VQCFileInfo second("b.vqc");
    first.IsInDomain();
    second.IsInDomain();
    first.IsInDomain();
    EXPECT_EQ(g_domainQueries, 2);
}

TEST_F(DomainCheck, TheAnswerIsNeverRefreshed) {
    Use(NotInDomain);
    VQCFileInfo record("a.vqc");
    EXPECT_FALSE(record.IsInDomain());
    Use(InDomain);
    EXPECT_FALSE(record.IsInDomain());
    EXPECT_EQ(g_domainQueries, 1);
}

TEST(VQCFileInfo, RealDomainCheckUnderAMachineOutsideADomainSaysNo) {
    // This machine (a Wine prefix) is in no domain: GetUserNameExA(NameDnsDomain) fails.
    VQCFileInfo record("a.vqc");
    EXPECT_FALSE(record.IsInDomain());
    EXPECT_EQ(record.inDomainKnown, 1);
}
