#include "pages/save_failure_text.h"

#include "common/ansi_text.h"

std::string SaveFailureText(const std::string& path, const std::string& systemText, std::uint32_t error,
                            bool oldContentLost) {
    // The system's texts end in a line break; the box draws its own margins.
    std::string reason = ansi_text::Trimmed(systemText);
    if (reason.empty())
        ansi_text::AppendFormat(reason, "Error %lu (0x%08lX).", static_cast<unsigned long>(error),
                                static_cast<unsigned long>(error));
    std::string text = path + "\r\n\r\n" + reason;
    if (oldContentLost) text += std::string("\r\n\r\n") + kOldContentLostSentence;
    return text;
}
