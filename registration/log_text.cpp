#include "registration/log_text.h"

#include "common/ansi_text.h"

std::string RegistryChildPath(std::string_view keyPath, const char* name) {
    std::string path(keyPath);
    ansi_text::AppendFormat(path, "\\%s", name ? name : "(Default)");
    return path;
}

std::string KeyCreateFailureLine(std::string_view keyPath, std::int32_t errorCode, std::string_view errorText) {
    std::string line;
    ansi_text::AppendFormat(line, "Failed to create registry key %.*s Error %d %.*s", static_cast<int>(keyPath.size()),
                            keyPath.data(), static_cast<int>(errorCode), static_cast<int>(errorText.size()),
                            errorText.data());
    return line;
}

std::string ValueSetFailureLine(std::string_view valuePath, std::string_view data, std::int32_t errorCode,
                                std::string_view errorText) {
    std::string line;
    ansi_text::AppendFormat(line, "Failed to set registry value %.*s to \"%.*s\" Error %d %.*s",
                            static_cast<int>(valuePath.size()), valuePath.data(), static_cast<int>(data.size()),
                            data.data(), static_cast<int>(errorCode), static_cast<int>(errorText.size()),
                            errorText.data());
    return line;
}

std::string ErrorTextOrPlaceholder(std::string_view systemText) {
    return systemText.empty() ? std::string("??") : std::string(systemText);
}

std::string LogFileContents(const std::vector<std::string>& lines) {
    std::string contents;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i != 0) contents += '\n';
        contents += lines[i];
    }
    return contents;
}
