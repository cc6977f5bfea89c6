// vqctool icon set, export and remove on real files: the icon embedded at both sizes from
// an .ico file, exported again byte for byte, taken out, and refused sources.
#include <gtest/gtest.h>

#include "connection/icon_stream.h"
#include "tests/support/test_icons.h"
#include "tests/tools/vqctool_run.h"

using namespace vqctool_test;

namespace {

// An .ico file of our own: a 32 and a 16 pixel image at 32 bits per pixel.
std::string IconFileBytes() {
    const IconImage images[] = {MakeTestIconImage(32, 32), MakeTestIconImage(16, 32, 2)};
    const std::vector<std::uint8_t> stream = BuildIconStream(images, 2);
    return std::string(stream.begin(), stream.end());
}

// The -I part of a connection file: from "-I" to the end of its quoted value.
std::string IconPart(const std::string& bytes) {
    const std::size_t start = bytes.find("-I \"");
    if (start == std::string::npos) return {};
    const std::size_t end = bytes.find('"', start + 4);
    return bytes.substr(start, end == std::string::npos ? std::string::npos : end + 1 - start);
}

}  // namespace

TEST(VqctoolIcon, SetEmbedsBothSizesOfTheSource) {
    TempFolder folder("tool-icon-set");
    WriteFileBytes(folder.File("source.ico"), IconFileBytes());
    WriteFileBytes(folder.File("a.vqc"), "-h server -u bob");
    const ToolRun run =
        RunTool("icon set " + Quoted(folder.File("a.vqc")) + " --from " + Quoted(folder.File("source.ico")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    const ToolRun shown = RunTool("show " + Quoted(folder.File("a.vqc")));
    EXPECT_NE(shown.out.find("\nicon=32x32\nsmallIcon=16x16\n"), std::string::npos) << shown.out;
    EXPECT_EQ(ReadFileBytes(folder.File("a.vqc")).rfind("-h server -u bob \r\n-I \"", 0), 0u);
}

TEST(VqctoolIcon, ExportThenSetFromTheExportRoundTripsThePixelsExactly) {
    TempFolder folder("tool-icon-trip");
    WriteFileBytes(folder.File("source.ico"), IconFileBytes());
    WriteFileBytes(folder.File("first.vqc"), "-h one");
    WriteFileBytes(folder.File("second.vqc"), "-h two");
    ASSERT_EQ(RunTool("icon set " + Quoted(folder.File("first.vqc")) + " --from " + Quoted(folder.File("source.ico")))
                  .exitCode,
              0u);
    const ToolRun exported =
        RunTool("icon export " + Quoted(folder.File("first.vqc")) + " " + Quoted(folder.File("first.ico")));
    ASSERT_EQ(exported.exitCode, 0u) << exported.err;
    const ToolRun set =
        RunTool("icon set " + Quoted(folder.File("second.vqc")) + " --from " + Quoted(folder.File("first.ico")));
    ASSERT_EQ(set.exitCode, 0u) << set.err;
    ASSERT_EQ(
        RunTool("icon export " + Quoted(folder.File("second.vqc")) + " " + Quoted(folder.File("second.ico"))).exitCode,
        0u);

    // The same pixels in both files, and the export is the embedded stream itself.
    const std::string firstIcon = IconPart(ReadFileBytes(folder.File("first.vqc")));
    ASSERT_FALSE(firstIcon.empty());
    EXPECT_EQ(IconPart(ReadFileBytes(folder.File("second.vqc"))), firstIcon);
    EXPECT_EQ(ReadFileBytes(folder.File("second.ico")), ReadFileBytes(folder.File("first.ico")));
    const std::string exportedBytes = ReadFileBytes(folder.File("first.ico"));
    EXPECT_EQ("-I \"" + HexTextOf(std::vector<std::uint8_t>(exportedBytes.begin(), exportedBytes.end())) + "\"",
              firstIcon);
    // Two images, 32 and 16 pixels at 32 bits per pixel, as the icon stream's directory says.
    ASSERT_GT(exportedBytes.size(), 6u + 2 * 16u);
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(exportedBytes[i]); };
    EXPECT_EQ(byte(4), 2);
    EXPECT_EQ(byte(6), 32);
    EXPECT_EQ(byte(6 + 6), 32);
    EXPECT_EQ(byte(22), 16);
    EXPECT_EQ(byte(22 + 6), 32);
}

TEST(VqctoolIcon, SetOnAFolderWithRecursiveAndAWildcard) {
    TempFolder folder("tool-icon-many");
    WriteFileBytes(folder.File("source.ico"), IconFileBytes());
    WriteFileBytes(folder.File("a.vqc"), "-h a");
    CreateDirectoryA(folder.File("sub").c_str(), nullptr);
    WriteFileBytes(folder.File("sub\\b.vqc"), "-h b");
    WriteFileBytes(folder.File("sub\\c.vqc"), "-h c");
    const ToolRun run =
        RunTool("icon set -r " + Quoted(folder.Path()) + " --from " + Quoted(folder.File("source.ico")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(run.err, "3 files, 3 changed, 0 failed\n");
    const std::string icon = IconPart(ReadFileBytes(folder.File("a.vqc")));
    ASSERT_FALSE(icon.empty());
    EXPECT_EQ(IconPart(ReadFileBytes(folder.File("sub\\b.vqc"))), icon);
    const ToolRun removed = RunTool("icon remove " + Quoted(folder.File("sub\\*.vqc")));
    EXPECT_EQ(removed.exitCode, 0u) << removed.err;
    EXPECT_EQ(ReadFileBytes(folder.File("sub\\b.vqc")), "-h b ");
    EXPECT_EQ(ReadFileBytes(folder.File("sub\\c.vqc")), "-h c ");
    EXPECT_EQ(IconPart(ReadFileBytes(folder.File("a.vqc"))), icon);
}

TEST(VqctoolIcon, ASourceWithoutTheIconIsAUsageErrorAndNoFileChanges) {
    TempFolder folder("tool-icon-bad");
    WriteFileBytes(folder.File("source.ico"), IconFileBytes());
    WriteFileBytes(folder.File("a.vqc"), "-h a");
    WriteFileBytes(folder.File("not-an-icon.ico"), "plain text");
    for (const std::string& source : {Quoted(folder.File("source.ico")) + " --index 5",
                                      Quoted(folder.File("not-an-icon.ico")), Quoted(folder.File("missing.ico"))}) {
        const ToolRun run = RunTool("icon set " + Quoted(folder.File("a.vqc")) + " --from " + source);
        EXPECT_EQ(run.exitCode, 2u) << source;
        EXPECT_NE(run.err.find("has no icon"), std::string::npos) << run.err;
        EXPECT_EQ(ReadFileBytes(folder.File("a.vqc")), "-h a") << source;
    }
}

TEST(VqctoolIcon, ExportOfAFileWithoutIconFails) {
    TempFolder folder("tool-icon-none");
    WriteFileBytes(folder.File("a.vqc"), "-h a");
    const ToolRun run = RunTool("icon export " + Quoted(folder.File("a.vqc")) + " " + Quoted(folder.File("a.ico")));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err, "vqctool: cannot export the icon of " + folder.File("a.vqc") + ": the file has no icon\n");
    EXPECT_EQ(ReadFileBytes(folder.File("a.ico")), "<missing>");
}
