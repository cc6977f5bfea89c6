#include "tools/vqctool/dump_text.h"

#include "common/ansi_text.h"

std::string QuotedForDump(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\r': out += "\\r"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                ansi_text::AppendFormat(out, "\\x%02X", static_cast<unsigned char>(c));
            else
                out.push_back(c);
        }
    }
    out += "\"";
    return out;
}
