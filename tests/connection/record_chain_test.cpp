// Inputs the record chain fuzz target found, each kept with the fix it led to: the file
// text read, written, read again and written again gives the same text.
#include <gtest/gtest.h>

#include <string>

#include "connection/option_line.h"
#include "tests/connection/fuzz/record_chain.h"

TEST(RecordChain, SeedFileComesBackAsWritten) {
    EXPECT_EQ(record_chain::CheckChain("\xbe-h \"my server\" -u bob -V 5000 -v svc -l -C prog -x \"a b\""), "");
}

TEST(RecordChain, HostHoldingATabIsWrittenInQuotesAndReadBackWhole) {
    // Found by the fuzz target: client 660, the host read from a quoted value with a tab.
    const std::string input = "\xbe-h \"p\x97\xc5\x98\xdfl\tdisguise-http\"";
    EXPECT_EQ(record_chain::CheckChain(input), "");
    const ConnectionSettings record = record_chain::ReadBytes(input.substr(1), 660);
    EXPECT_EQ(record.host, "p\x97\xc5\x98\xdfl\tdisguise-http");
    EXPECT_EQ(BuildOptionLine(record, nullptr), "-h \"p\x97\xc5\x98\xdfl\tdisguise-http\" ");
}

TEST(EmitOption, ValueWithATabIsQuotedLikeOneWithABlank) {
    std::string out;
    EmitOption(out, 'u', "a\tb", false);
    EXPECT_EQ(out, "-u \"a\tb\" ");
}
