// The COM-boundary guard and the COM pointer owner.
#include <gtest/gtest.h>

#include <stdexcept>

#include "common/com_boundary.h"
#include "common/com_ptr.h"

namespace {

class CountedObject : public IUnknown {
public:
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++count; }
    STDMETHODIMP_(ULONG) Release() override { return --count; }
    ULONG count = 1;
};

}  // namespace

TEST(ComBoundary, BodyResultPassesThrough) {
    EXPECT_EQ(GuardComCall([] { return S_FALSE; }), S_FALSE);
}

TEST(ComBoundary, HResultErrorAnswersItsCode) {
    EXPECT_EQ(GuardComCall([]() -> HRESULT { throw HResultError(kResultInvalidArg); }), E_INVALIDARG);
}

TEST(ComBoundary, ExhaustedMemoryAnswersOutOfMemory) {
    EXPECT_EQ(GuardComCall([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
}

TEST(ComBoundary, AnyOtherExceptionAnswersEFail) {
    EXPECT_EQ(GuardComCall([]() -> HRESULT { throw std::out_of_range("x"); }), E_FAIL);
    EXPECT_EQ(GuardComCall([]() -> HRESULT { throw 42; }), E_FAIL);
}

TEST(ComPtr, TakesAndGivesBackItsOwnReference) {
    CountedObject object;
    {
        ComPtr<IUnknown> owner(&object);
        EXPECT_EQ(object.count, 2u);
        ComPtr<IUnknown> copy = owner;
        EXPECT_EQ(object.count, 3u);
        ComPtr<IUnknown> moved = std::move(copy);
        EXPECT_EQ(object.count, 3u);
        EXPECT_FALSE(copy);
    }
    EXPECT_EQ(object.count, 1u);
}

TEST(ComPtr, AdoptTakesNoReferenceButReleasesOne) {
    CountedObject object;
    object.AddRef();
    {
        ComPtr<IUnknown> owner = ComPtr<IUnknown>::Adopt(&object);
        EXPECT_EQ(object.count, 2u);
    }
    EXPECT_EQ(object.count, 1u);
}

TEST(ComPtr, PutReleasesWhatWasHeld) {
    CountedObject first;
    ComPtr<IUnknown> owner(&first);
    EXPECT_NE(owner.Put(), nullptr);
    EXPECT_EQ(first.count, 1u);
    EXPECT_FALSE(owner);
}
