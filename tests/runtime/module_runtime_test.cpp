// The process's module as the pages see it: a plain module of the program's own image when
// the program has none, and a module made later for as long as it lives.
#include "runtime/module_runtime.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

// A module of a test's own: an instance it names, a lock count and a list of its own.
class StandInModule final : public ModuleRuntime {
public:
    explicit StandInModule(HINSTANCE instance) : instance_(instance) {}
    HINSTANCE Instance() const noexcept override { return instance_; }
    UINT* LockCountAddress() noexcept override { return &lockCount_; }
    WindowCreationList& WindowCreation() noexcept override { return windowCreation_; }

private:
    HINSTANCE instance_;
    UINT lockCount_ = 0;
    WindowCreationList windowCreation_;
};

HINSTANCE FakeInstance(std::uintptr_t value) { return reinterpret_cast<HINSTANCE>(value); }

}  // namespace

TEST(ModuleRuntime, WithoutAModuleTheProgramsOwnImageIsTheModule) {
    ModuleRuntime& module = TheModuleRuntime();
    EXPECT_EQ(module.Instance(), GetModuleHandleA(nullptr));
    EXPECT_NE(module.LockCountAddress(), nullptr);
    EXPECT_TRUE(module.WindowCreation().Initialized());
    EXPECT_EQ(&TheModuleRuntime(), &module);
}

TEST(ModuleRuntime, AModuleMadeLaterIsTheProcessModuleWhileItLives) {
    ModuleRuntime& before = TheModuleRuntime();
    {
        StandInModule standIn(FakeInstance(0x10000));
        EXPECT_EQ(&TheModuleRuntime(), &standIn);
        EXPECT_EQ(TheModuleRuntime().Instance(), FakeInstance(0x10000));
    }
    EXPECT_EQ(&TheModuleRuntime(), &before);
}

TEST(ModuleRuntime, NestedModulesGiveWayInTheOrderTheyGo) {
    ModuleRuntime& before = TheModuleRuntime();
    {
        StandInModule outer(FakeInstance(0x10000));
        {
            StandInModule inner(FakeInstance(0x20000));
            EXPECT_EQ(&TheModuleRuntime(), &inner);
        }
        EXPECT_EQ(&TheModuleRuntime(), &outer);
    }
    EXPECT_EQ(&TheModuleRuntime(), &before);
}

TEST(ModuleRuntime, TheLockCountIsTheOneTheSheetCountsPagesIn) {
    StandInModule standIn(FakeInstance(0x10000));
    UINT* count = TheModuleRuntime().LockCountAddress();
    ASSERT_EQ(count, standIn.LockCountAddress());
    InterlockedIncrement(reinterpret_cast<volatile LONG*>(count));
    EXPECT_EQ(*standIn.LockCountAddress(), 1u);
}
