// The writer's order of steps on a file, and what each failure leaves: scripted steps on a
// file held in memory, each of which can be made to fail.
#include "connection/file_replacement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

// A file as bytes, with the steps' failures chosen by the test. A failed write leaves what
// a volume that fills up leaves: the first `room` bytes written.
struct ScriptedFile {
    explicit ScriptedFile(std::string content = "") : bytes(std::move(content)) {}

    std::string bytes;
    bool exists = true;
    bool readable = true;
    bool creatable = true;
    std::size_t room = std::string::npos;  // bytes a write gets in before it fails
    bool putBackFails = false;
    std::vector<std::string> steps;

    bool ReadCurrent(std::string& out) {
        steps.emplace_back("read");
        if (!exists || !readable) return false;
        out = bytes;
        return true;
    }
    bool CreateEmpty() {
        steps.emplace_back("create");
        if (!creatable) return false;
        bytes.clear();
        exists = true;
        return true;
    }
    bool Write(const std::string& text) {
        steps.emplace_back("write");
        return WriteFromStart(text);
    }
    bool PutBack(const std::string& old) {
        steps.emplace_back("put back");
        if (putBackFails) return false;
        if (!WriteFromStart(old)) return false;
        bytes.resize(old.size());
        return true;
    }

private:
    bool WriteFromStart(const std::string& text) {
        const std::size_t fits = std::min(text.size(), room);
        bytes.replace(0, std::min(bytes.size(), fits), text, 0, fits);
        return fits == text.size();
    }
};

using Steps = std::vector<std::string>;

}  // namespace

TEST(ReplaceFile, ReadsTheOldBytesThenCreatesThenWrites) {
    ScriptedFile file("-h old ");
    EXPECT_EQ(ReplaceFile(file, "-h new -u me "), Replacement::Written);
    EXPECT_EQ(file.bytes, "-h new -u me ");
    EXPECT_EQ(file.steps, (Steps{"read", "create", "write"}));
}

TEST(ReplaceFile, AFileThatCannotBeCreatedKeepsItsBytesAndNothingIsWritten) {
    ScriptedFile file("-h old ");
    file.creatable = false;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::NotCreated);
    EXPECT_EQ(file.bytes, "-h old ");
    EXPECT_EQ(file.steps, (Steps{"read", "create"}));
}

TEST(ReplaceFile, AWriteThatFailsOnTheEmptiedFilePutsTheOldBytesBack) {
    ScriptedFile file("-h old -u tester ");
    file.room = 20;
    EXPECT_EQ(ReplaceFile(file, "-h new -u a-much-longer-login "), Replacement::OldPutBack);
    EXPECT_EQ(file.bytes, "-h old -u tester ");
    EXPECT_EQ(file.steps, (Steps{"read", "create", "write", "put back"}));
}

TEST(ReplaceFile, PuttingBackCutsWhatTheFailedWriteLeftBeyondTheOldBytes) {
    ScriptedFile file("-h a ");
    file.room = 12;
    EXPECT_EQ(ReplaceFile(file, "-h new-server -u me "), Replacement::OldPutBack);
    EXPECT_EQ(file.bytes, "-h a ");
}

TEST(ReplaceFile, AnEmptyOldFileIsPutBackEmpty) {
    ScriptedFile file("");
    file.room = 3;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::OldPutBack);
    EXPECT_EQ(file.bytes, "");
}

TEST(ReplaceFile, WhenPuttingBackFailsTooTheOldBytesAreLost) {
    ScriptedFile file("-h old ");
    file.room = 4;
    file.putBackFails = true;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::OldLost);
    EXPECT_EQ(file.bytes, "-h n");
}

TEST(ReplaceFile, OldBytesLargerThanTheRoomCannotBePutBack) {
    ScriptedFile file("-h old-and-long ");
    file.room = 6;
    EXPECT_EQ(ReplaceFile(file, "-h new-and-longer "), Replacement::OldLost);
}

TEST(ReplaceFile, AFileWhoseBytesCannotBeReadIsWrittenAsBefore) {
    ScriptedFile file("-h old ");
    file.readable = false;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::Written);
    EXPECT_EQ(file.bytes, "-h new ");
}

TEST(ReplaceFile, AFailedWriteWithoutTheOldBytesLeavesWhatTheWriteLeft) {
    ScriptedFile file("-h old ");
    file.readable = false;
    file.room = 3;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::OldUnknown);
    EXPECT_EQ(file.bytes, "-h ");
    EXPECT_EQ(file.steps, (Steps{"read", "create", "write"}));
}

TEST(ReplaceFile, ANewFileThatCannotBeWrittenHasNothingToPutBack) {
    ScriptedFile file;
    file.exists = false;
    file.room = 0;
    EXPECT_EQ(ReplaceFile(file, "-h new "), Replacement::OldUnknown);
    EXPECT_EQ(file.bytes, "");
}

namespace {

// What one call of the system's write does: takes `takes` bytes (all when npos) and answers.
struct WriteCall {
    std::size_t takes;
    bool answer;
};

// Runs WriteWhole over scripted calls; the calls made are kept (size asked, bytes taken).
struct ScriptedWrites {
    explicit ScriptedWrites(std::vector<WriteCall> calls) : script(std::move(calls)) {}

    std::vector<WriteCall> script;
    std::vector<std::uint32_t> asked;
    std::string landed;
    std::uint32_t done = 0xdeadbeef;

    WholeWrite Run(const std::string& text) {
        return WriteWhole(text.data(), static_cast<std::uint32_t>(text.size()), done,
                          [&](const char* data, std::uint32_t size, std::uint32_t& written) {
                              const WriteCall call = script.at(asked.size());
                              asked.push_back(size);
                              written = static_cast<std::uint32_t>(std::min<std::size_t>(call.takes, size));
                              if (call.answer) landed.append(data, written);
                              return call.answer;
                          });
    }
};

}  // namespace

TEST(WriteWhole, OneCallForTheWholeText) {
    ScriptedWrites writes({{std::string::npos, true}});
    EXPECT_EQ(writes.Run("-h server "), WholeWrite::Written);
    EXPECT_EQ(writes.asked, (std::vector<std::uint32_t>{10}));
    EXPECT_EQ(writes.landed, "-h server ");
    EXPECT_EQ(writes.done, 10u);
}

TEST(WriteWhole, AnEmptyTextIsOneCallOfNothing) {
    ScriptedWrites writes({{0, true}});
    EXPECT_EQ(writes.Run(""), WholeWrite::Written);
    EXPECT_EQ(writes.asked, (std::vector<std::uint32_t>{0}));
    EXPECT_EQ(writes.done, 0u);
}

TEST(WriteWhole, ACallThatTookPartIsFollowedByOneForTheRest) {
    ScriptedWrites writes({{4, true}, {std::string::npos, true}});
    EXPECT_EQ(writes.Run("-h server "), WholeWrite::Written);
    EXPECT_EQ(writes.asked, (std::vector<std::uint32_t>{10, 6}));
    EXPECT_EQ(writes.landed, "-h server ");
}

TEST(WriteWhole, TheSystemRefusingTheRestIsARefusal) {
    ScriptedWrites writes({{4, true}, {0, false}});
    EXPECT_EQ(writes.Run("-h server "), WholeWrite::Refused);
    EXPECT_EQ(writes.landed, "-h s");
    EXPECT_EQ(writes.done, 4u);
}

TEST(WriteWhole, BytesARefusedCallTookAreCounted) {
    ScriptedWrites writes({{4, true}, {2, false}});
    EXPECT_EQ(writes.Run("-h server "), WholeWrite::Refused);
    EXPECT_EQ(writes.done, 6u);
}

TEST(WriteWhole, ACallThatTakesNothingWithoutRefusingStalls) {
    ScriptedWrites writes({{4, true}, {0, true}});
    EXPECT_EQ(writes.Run("-h server "), WholeWrite::Stalled);
    EXPECT_EQ(writes.asked.size(), 2u);
    EXPECT_EQ(writes.done, 4u);
}
