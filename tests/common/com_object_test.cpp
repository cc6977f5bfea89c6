// The interface table and the reference counting base, on a COM class of the test's own.
#include "common/com_object.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

struct IFirst : public IUnknown {
    virtual int STDMETHODCALLTYPE First() = 0;
};
struct ISecond : public IUnknown {
    virtual int STDMETHODCALLTYPE Second() = 0;
};

// {0d1e5a20-7c41-4f0b-9a3e-5b6c7d8e9f01} and the next two.
constexpr IID kFirstIid = {0x0d1e5a20, 0x7c41, 0x4f0b, {0x9a, 0x3e, 0x5b, 0x6c, 0x7d, 0x8e, 0x9f, 0x01}};
constexpr IID kSecondIid = {0x0d1e5a20, 0x7c41, 0x4f0b, {0x9a, 0x3e, 0x5b, 0x6c, 0x7d, 0x8e, 0x9f, 0x02}};
constexpr IID kSharedIid = {0x0d1e5a20, 0x7c41, 0x4f0b, {0x9a, 0x3e, 0x5b, 0x6c, 0x7d, 0x8e, 0x9f, 0x03}};

void* const kUntouched = reinterpret_cast<void*>(static_cast<uintptr_t>(0xdeadbeef));

// Counts plainly, tells its destruction, and (when asked) takes and drops a reference while
// it is being destroyed, as a member's clean-up calling back into its owner would.
class Sample : public ComObject<Sample, IFirst, ISecond> {
public:
    explicit Sample(int* destructions, bool strayReference = false)
        : destructions_(destructions), strayReference_(strayReference) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    int STDMETHODCALLTYPE First() override { return 1; }
    int STDMETHODCALLTYPE Second() override { return 2; }

    ULONG References() const noexcept { return refCount_; }

private:
    friend ComObject;

    ~Sample() override {
        ++*destructions_;
        if (strayReference_) {
            AddRef();
            Release();
        }
    }

    ULONG refCount_ = 0;
    static constexpr auto kReferenceCount = &Sample::refCount_;
    int* destructions_;
    bool strayReference_;
};

// clang-format off
constexpr InterfaceRow<Sample> kSampleInterfaces[] = {
    {&kFirstIid,  InterfaceOf<Sample, IFirst>},
    {&kSecondIid, InterfaceOf<Sample, ISecond>},
};

// One IID in two rows: the row met first answers.
constexpr InterfaceRow<Sample> kSharedFirstAsSecond[] = {
    {&kFirstIid,  InterfaceOf<Sample, IFirst>},
    {&kSharedIid, InterfaceOf<Sample, ISecond>},
    {&kSharedIid, InterfaceOf<Sample, IFirst>},
};
constexpr InterfaceRow<Sample> kSharedFirstAsFirst[] = {
    {&kFirstIid,  InterfaceOf<Sample, IFirst>},
    {&kSharedIid, InterfaceOf<Sample, IFirst>},
    {&kSharedIid, InterfaceOf<Sample, ISecond>},
};
// clang-format on

STDMETHODIMP Sample::QueryInterface(REFIID iid, void** object) {
    return QueryInterfaceFromTable(this, kSampleInterfaces, iid, object);
}

// Counts with interlocked operations, as an object that any thread may reach.
class SharedSample : public ComObject<SharedSample, IFirst> {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    int STDMETHODCALLTYPE First() override { return 1; }

private:
    friend ComObject;

    volatile LONG refCount_ = 0;
    static constexpr auto kReferenceCount = &SharedSample::refCount_;
};

constexpr InterfaceRow<SharedSample> kSharedSampleInterfaces[] = {{&kFirstIid, InterfaceOf<SharedSample, IFirst>}};

STDMETHODIMP SharedSample::QueryInterface(REFIID iid, void** object) {
    return QueryInterfaceFromTable(this, kSharedSampleInterfaces, iid, object);
}

// A sample with one reference of the test's, released at the end.
class SampleFixture : public testing::Test {
protected:
    SampleFixture() : sample_(new Sample(&destructions_)) { sample_->AddRef(); }
    ~SampleFixture() override { sample_->Release(); }

    int destructions_ = 0;
    Sample* sample_;
};

using InterfaceTable = SampleFixture;

}  // namespace

TEST_F(InterfaceTable, EachRowAnswersItsInterfaceWithAReference) {
    void* answer = kUntouched;
    ASSERT_EQ(sample_->QueryInterface(kSecondIid, &answer), S_OK);
    EXPECT_EQ(answer, static_cast<ISecond*>(sample_));
    EXPECT_EQ(static_cast<ISecond*>(answer)->Second(), 2);
    EXPECT_EQ(sample_->References(), 2u);
    static_cast<ISecond*>(answer)->Release();

    ASSERT_EQ(sample_->QueryInterface(kFirstIid, &answer), S_OK);
    EXPECT_EQ(answer, static_cast<IFirst*>(sample_));
    EXPECT_EQ(sample_->References(), 2u);
    static_cast<IFirst*>(answer)->Release();
}

TEST_F(InterfaceTable, IUnknownAnswersTheFirstRowsInterface) {
    void* answer = kUntouched;
    ASSERT_EQ(sample_->QueryInterface(IID_IUnknown, &answer), S_OK);
    EXPECT_EQ(answer, static_cast<IFirst*>(sample_));
    EXPECT_EQ(sample_->References(), 2u);
    static_cast<IUnknown*>(answer)->Release();
}

TEST_F(InterfaceTable, EveryInterfaceLeadsBackToTheSameIUnknown) {
    void* second = nullptr;
    ASSERT_EQ(sample_->QueryInterface(kSecondIid, &second), S_OK);
    void* identity = nullptr;
    ASSERT_EQ(static_cast<ISecond*>(second)->QueryInterface(IID_IUnknown, &identity), S_OK);
    EXPECT_EQ(identity, static_cast<IFirst*>(sample_));
    static_cast<IUnknown*>(identity)->Release();
    static_cast<ISecond*>(second)->Release();
}

TEST_F(InterfaceTable, RowsAreWalkedInOrder) {
    void* answer = kUntouched;
    ASSERT_EQ(QueryInterfaceFromTable(sample_, kSharedFirstAsSecond, kSharedIid, &answer), S_OK);
    EXPECT_EQ(answer, static_cast<ISecond*>(sample_));
    static_cast<IUnknown*>(answer)->Release();
    ASSERT_EQ(QueryInterfaceFromTable(sample_, kSharedFirstAsFirst, kSharedIid, &answer), S_OK);
    EXPECT_EQ(answer, static_cast<IFirst*>(sample_));
    static_cast<IUnknown*>(answer)->Release();
}

TEST_F(InterfaceTable, InterfaceWithoutARowIsENoInterfaceWithANullOut) {
    for (const IID* iid : {&kSharedIid, &IID_IDispatch, &IID_IClassFactory}) {
        void* answer = kUntouched;
        EXPECT_EQ(sample_->QueryInterface(*iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(sample_->References(), 1u);
}

TEST_F(InterfaceTable, NullOutIsEPointer) {
    EXPECT_EQ(sample_->QueryInterface(kFirstIid, nullptr), E_POINTER);
    EXPECT_EQ(sample_->References(), 1u);
}

TEST(InterfaceTableOfNoObject, IsEInvalidArgAndLeavesTheOut) {
    void* answer = kUntouched;
    EXPECT_EQ(QueryInterfaceFromTable(static_cast<Sample*>(nullptr), kSampleInterfaces, kFirstIid, &answer),
              E_INVALIDARG);
    EXPECT_EQ(answer, kUntouched);
}

TEST(ComObject, AddRefAndReleaseAnswerTheNewCount) {
    int destructions = 0;
    auto* sample = new Sample(&destructions);
    EXPECT_EQ(sample->AddRef(), 1u);
    EXPECT_EQ(sample->AddRef(), 2u);
    EXPECT_EQ(sample->AddRef(), 3u);
    EXPECT_EQ(sample->Release(), 2u);
    EXPECT_EQ(sample->Release(), 1u);
    EXPECT_EQ(destructions, 0);
    EXPECT_EQ(sample->Release(), 0u);
}

TEST(ComObject, ReleaseOfTheLastReferenceDeletesTheObject) {
    int destructions = 0;
    auto* sample = new Sample(&destructions);
    sample->AddRef();
    sample->AddRef();
    sample->Release();
    EXPECT_EQ(destructions, 0);
    EXPECT_EQ(sample->Release(), 0u);
    EXPECT_EQ(destructions, 1);
}

TEST(ComObject, ReferenceTakenAndDroppedDuringDestructionDeletesNothingAgain) {
    int destructions = 0;
    auto* sample = new Sample(&destructions, true);
    sample->AddRef();
    EXPECT_EQ(sample->Release(), 0u);
    EXPECT_EQ(destructions, 1);
}

TEST(ComObject, InterlockedCountKeepsEveryReferenceOfSeveralThreads) {
    auto* shared = new SharedSample();
    shared->AddRef();
    constexpr int kThreads = 4;
    constexpr int kRounds = 200000;
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            while (!go) std::this_thread::yield();
            for (int i = 0; i < kRounds; ++i) shared->AddRef();
        });
    }
    go = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(shared->AddRef(), static_cast<ULONG>(kThreads * kRounds + 2));
    threads.clear();
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) shared->Release();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(shared->Release(), 1u);
    EXPECT_EQ(shared->Release(), 0u);
}
